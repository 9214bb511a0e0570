// Rows of an edge detector on a grey page: Sobel gradients with their magnitudes, and the pixels
// whose magnitude is a local maximum along the gradient.
//
// Use: gradient_row() for rows y - 1, y and y + 1, then local_maxima_row() for row y. The forms in
// simd::plain say what each computes; the vector forms give the same values.
//
// Keep true: rows are padded as padded_rows.h says.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Gradients of one row. |gx| and |gy| are the Sobel responses divided by 4, rounded towards 0, at
// most 127.
struct GradientRow {
    std::uint8_t* magnitude;  // sqrt(gx^2 + gy^2), rounded: at most 180
    std::uint8_t* across;     // |gx|; bit 7 is set where gx and gy have opposite signs
    std::uint8_t* down;       // |gy|
};

// Which local maxima count.
struct EdgeThresholds {
    std::uint8_t candidate;  // the least magnitude of a candidate
    std::uint8_t start;      // the least magnitude that starts an edge
    std::uint8_t follow;     // an edge is followed into magnitudes above this
};

// Beyond their ends rows go on with their first and last pixels, whatever stands there.
void gradient_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, const GradientRow& out);

// Pixels 1 .. width - 2 whose magnitude is at least the candidate threshold and not below the
// magnitude on either side along the gradient: a mean of the two neighbours between which the
// gradient points, weighted by its components. Compared without rounding, so that a mirrored or
// turned page gives the mirrored or turned result; of equal neighbours both are kept.
// `start` and `follow` receive a bit for each candidate that passes these thresholds, pixel 0 in
// the least significant bit of the first word; ceil(width / 64) words are written. Returns whether
// there is a candidate.
bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, std::uint64_t* start,
                      std::uint64_t* follow);

namespace plain {

// The gradient of pixel x, with `left` and `right` for the columns beside it.
inline void gradient_at(const std::uint8_t* above, const std::uint8_t* row,
                        const std::uint8_t* below, std::size_t left, std::size_t x,
                        std::size_t right, const GradientRow& out) {
    const auto column = [=](std::size_t at) { return above[at] + 2 * row[at] + below[at]; };
    const auto line = [=](const std::uint8_t* at) { return at[left] + 2 * at[x] + at[right]; };
    const int gradient_across = column(right) - column(left);
    const int gradient_down = line(below) - line(above);
    const int gx = std::min(std::abs(gradient_across) / 4, 127);
    const int gy = std::min(std::abs(gradient_down) / 4, 127);
    const bool opposite = (gradient_across < 0) != (gradient_down < 0);
    out.across[x] = static_cast<std::uint8_t>(gx | (opposite ? 0x80 : 0));
    out.down[x] = static_cast<std::uint8_t>(gy);
    // No sum of two squares is the square of a half: there are no ties to round.
    out.magnitude[x] =
        static_cast<std::uint8_t>(std::sqrt(static_cast<float>(gx * gx + gy * gy)) + 0.5F);
}

inline void gradient_row(const std::uint8_t* above, const std::uint8_t* row,
                         const std::uint8_t* below, std::size_t width, const GradientRow& out) {
    for (std::size_t x = 0; x < width; ++x) {
        gradient_at(above, row, below, x > 0 ? x - 1 : 0, x, std::min(x + 1, width - 1), out);
    }
}

inline bool is_local_maximum(const ThreeRows& m, const GradientRow& gradient, std::ptrdiff_t x) {
    const int gx = gradient.across[x] & 0x7F;
    const int gy = gradient.down[x];
    const bool opposite = gradient.across[x] >= 0x80;
    const bool level = gx >= gy;
    const int ahead = level ? m.row[x + 1] : m.below[x];
    const int behind = level ? m.row[x - 1] : m.above[x];
    const std::uint8_t above_right = m.above[x + 1];
    const std::uint8_t below_left = m.below[x - 1];
    const int diagonal_ahead = !opposite ? m.below[x + 1] : (level ? above_right : below_left);
    const int diagonal_behind = !opposite ? m.above[x - 1] : (level ? below_left : above_right);
    const int longer = std::max(gx, gy);
    const int shorter = std::min(gx, gy);
    const int here = m.row[x] * longer;
    return here >= (longer - shorter) * ahead + shorter * diagonal_ahead &&
           here >= (longer - shorter) * behind + shorter * diagonal_behind;
}

inline bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient,
                             std::size_t width, const EdgeThresholds& thresholds,
                             std::uint64_t* start, std::uint64_t* follow) {
    std::fill_n(start, (width + 63) / 64, 0);
    std::fill_n(follow, (width + 63) / 64, 0);
    bool found = false;
    for (std::size_t x = 1; x + 1 < width; ++x) {
        const std::uint8_t magnitude = magnitudes.row[x];
        if (magnitude < thresholds.candidate ||
            !is_local_maximum(magnitudes, gradient, static_cast<std::ptrdiff_t>(x))) {
            continue;
        }
        found = true;
        const std::uint64_t bit = std::uint64_t{1} << (x % 64);
        if (magnitude >= thresholds.start) start[x / 64] |= bit;
        if (magnitude > thresholds.follow) follow[x / 64] |= bit;
    }
    return found;
}

}  // namespace plain
}  // namespace simd

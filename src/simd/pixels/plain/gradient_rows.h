// Plain forms of gradient_rows.h.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "simd/pixels/gradient_rows.h"
#include "simd/single_bits.h"

namespace simd::plain {

// The gradient of pixel x, whose neighbours are in columns `left` and `right`.
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

inline void gradient_row(const ThreeRows& grey, std::size_t width, const std::uint64_t* wanted,
                         const GradientRow& out) {
    for (std::size_t x = 0; x < width; ++x) {
        if (wanted[x / 64] == 0 && x != 0 && x + 1 != width) continue;
        gradient_at(grey.above, grey.row, grey.below, x > 0 ? x - 1 : 0, x,
                    std::min(x + 1, width - 1), out);
    }
}

inline bool is_steep(const ThreeRows& grey, std::ptrdiff_t x, int limit) {
    bool steep = false;
    for (const std::uint8_t* row : {grey.above, grey.row, grey.below}) {
        steep = steep || std::abs(row[x + 1] - row[x - 1]) > limit;
    }
    for (std::ptrdiff_t at = x - 1; at <= x + 1; ++at) {
        steep = steep || std::abs(grey.below[at] - grey.above[at]) > limit;
    }
    return steep;
}

inline void steep_pixels(const ThreeRows& grey, std::size_t words, std::uint8_t limit,
                         std::uint64_t* steep) {
    std::fill_n(steep, words, 0);
    for (std::size_t x = 0; x < 64 * words; ++x) {
        if (is_steep(grey, static_cast<std::ptrdiff_t>(x), limit)) mark(steep, x);
    }
}

// Whether the magnitude at x is not below the two on either side of it along the gradient. One is a
// mean of the neighbour straight ahead and the one diagonally ahead, weighted by the gradient:
//
//     . . d      gx > gy: the gradient points between s, straight ahead,
//     . x s      and a diagonal neighbour d, above or below by its sign.
//     . . d
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
                             const std::uint64_t* steep, std::uint64_t* start,
                             std::uint64_t* follow) {
    std::fill_n(start, (width + 63) / 64, 0);
    std::fill_n(follow, (width + 63) / 64, 0);
    bool found = false;
    for (std::size_t x = 1; x + 1 < width; ++x) {
        const std::uint8_t magnitude = magnitudes.row[x];
        if (steep[x / 64] == 0 || magnitude < thresholds.candidate ||
            !is_local_maximum(magnitudes, gradient, static_cast<std::ptrdiff_t>(x))) {
            continue;
        }
        found = true;
        if (magnitude >= thresholds.start) mark(start, x);
        if (magnitude > thresholds.follow) mark(follow, x);
    }
    return found;
}

}  // namespace simd::plain

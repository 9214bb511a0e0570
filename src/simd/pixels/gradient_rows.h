// Rows of an edge detector on a grey page: Sobel gradients with their magnitudes, and the pixels
// whose magnitude is a local maximum along the gradient. plain/gradient_rows.h says what each
// function computes.
//
// Use: steep_pixels() for rows y - 2 to y + 2 tells where gradients are wanted; gradient_row() for
// rows y - 1, y and y + 1, then local_maxima_row() for row y.
//
// Keep true: rows are padded as padded_rows.h says.
//
// Source: J. Canny, A computational approach to edge detection, IEEE Transactions on Pattern
// Analysis and Machine Intelligence, 1986.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Gradients of one row. |gx| and |gy| are the Sobel responses divided by 4, rounded towards 0, at
// most 127.
struct GradientRow {
    std::uint8_t* magnitude;  // sqrt(gx^2 + gy^2), rounded: at most 180
    std::uint8_t* across;     // |gx|; bit 7 is set where gx and gy have opposite signs
    std::uint8_t* down;       // |gy|
};

// Which local maxima count, by their magnitude.
struct EdgeThresholds {
    std::uint8_t candidate;  // the least magnitude of a candidate
    std::uint8_t start;      // the least magnitude that starts an edge
    std::uint8_t follow;     // an edge is followed into magnitudes above this
};

// Sets bit x of `steep` where a component of the gradient of pixel x can be above `limit`: where
// two pixels that lie opposite each other in the 3 x 3 pixels around it, in a row or in a column,
// differ by more. `words` words of 64 pixels are written. For the first and the last pixel of a
// row, and behind it, the padding counts.
void steep_pixels(const ThreeRows& grey, std::size_t words, std::uint8_t limit,
                  std::uint64_t* steep);

// Takes the first and the last pixel of each row for what is beyond its ends, whatever the padding
// contains. Only those words of 64 pixels of which `wanted` has a bit are done, and the first and
// the last pixel.
void gradient_row(const ThreeRows& grey, std::size_t width, const std::uint64_t* wanted,
                  const GradientRow& out);

// A candidate is a pixel among 1 .. width - 2 whose magnitude is at least the candidate threshold
// and not below the magnitude on either side of it along the gradient. That is a mean of the two
// neighbours between which the gradient points, weighted by its components. It is compared without
// rounding, so that a mirrored or turned page gives the mirrored or turned result; of equal
// neighbours both are kept. Words of 64 pixels of which `steep` has no bit have no candidate.
//
// `start` and `follow` receive a bit for each candidate that passes these thresholds, pixel 0 in
// the least significant bit of the first word; ceil(width / 64) words of each are written. Returns
// whether there is a candidate.
bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, const std::uint64_t* steep,
                      std::uint64_t* start, std::uint64_t* follow);

}  // namespace simd

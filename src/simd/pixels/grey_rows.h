// Rows on their way from colour to a smoothed grey page: luminance, the clamp on strongly coloured
// light pixels, the search for contrast and the two kinds of 3 x 3 smoothing. plain/grey_rows.h
// says what each function computes.
//
// Use: one call per row of `width` pixels; a colour row has three bytes per pixel.
//
// Keep true: input and output rows do not overlap, except where a function works in place.
// Nothing is read or written beyond the pixels of a row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Which of a pixel's three bytes comes first.
enum class ChannelOrder { kRedFirst, kBlueFirst };

constexpr int kSaturatedMaximum = 200;  // grey value that pixels of strong colour are clamped to
constexpr int kSaturatedChroma = 84;  // difference between channels above which a colour is strong

// Weight of each of the 8 neighbours in smooth_row(), in 1024ths; 1 .. 127. The pixel itself has
// the rest of the 1024.
using NeighbourWeight = std::int16_t;

// The luminance of each of `width` pixels of 3 bytes.
void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                   std::uint8_t* grey);

// Replaces the first `width` bytes of a row by the luminances of its pixels in weights of 1/1000.
void luminance_in_place(std::uint8_t* row, std::size_t width, ChannelOrder order);

// In place: grey values above kSaturatedMaximum become kSaturatedMaximum where the pixel's colour
// is strong.
void clamp_saturated(const std::uint8_t* colour, std::size_t width, std::uint8_t* grey);

// Whether |first[x] - second[x]| > limit anywhere.
bool differs_above(const std::uint8_t* first, const std::uint8_t* second, std::size_t count,
                   std::uint8_t limit);

// The weighted mean of each inner pixel of `row` and its 8 neighbours, rounded down; the first and
// the last pixel are copied.
void smooth_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                std::size_t width, NeighbourWeight weight, std::uint8_t* out);

// The mean of the 3 x 3 pixels around each inner pixel of `row` with the weights 1 2 1 / 2 4 2 /
// 1 2 1, rounded, halves up. The first and the last pixel of `out` are not written.
void gaussian_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, std::uint8_t* out);

}  // namespace simd

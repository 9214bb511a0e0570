// Pixels along a slanted line through an image, each blended of the four pixels around its place.
// plain/blend_line.h says what each function computes.
//
// Keep true: places are fixed-point numbers with 14 fraction bits; a step is at most one pixel in
// either direction. All places have a right and a lower neighbour in the image, and nothing is read
// beyond the pixels of the image and what lies between its rows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr int kPlaceBits = 14;

struct SlantedLine {
    const std::uint8_t* src;
    std::ptrdiff_t stride;
    std::int64_t height, width;   // of the image
    std::int64_t x, y;            // the place of the first pixel
    std::int64_t x_step, y_step;  // from pixel to pixel
};

// Pixels of one, three and four bytes, each byte of them blended by itself.
void blend_line(const SlantedLine& line, std::size_t count, std::uint8_t* out);
void blend_line_of_3(const SlantedLine& line, std::size_t count, std::uint8_t* out);
void blend_line_of_4(const SlantedLine& line, std::size_t count, std::uint8_t* out);

// A part of a line of its own.
struct MarkedPart {
    std::int64_t x, y;    // the place of the first pixel
    std::size_t count;    // at most 64 pixels
    std::uint64_t marks;  // the result
};

// Of pixels of one byte, 0 or 1: whether more than half of each is 1, the first pixel in the most
// significant bit. Every part has the steps of the line, whose own place does not count.
void blend_marks(const SlantedLine& line, MarkedPart* parts, std::size_t part_count);

}  // namespace simd

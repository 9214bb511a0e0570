// Turns of images of one or more bytes per pixel: the exchange of rows and columns, and the half
// turn. plain/turn_pixels.h says what each function computes.
//
// Use: the strides are signed, so an image is mirrored on the way by handing over its last row and
// a negative stride: that makes the exchange a quarter turn in either direction.
//
// Keep true: source and destination do not overlap; pixel_bytes >= 1. 1, 2, 3 and 4 bytes per pixel
// are fast, any other number is copied pixel by pixel. Nothing is read or written beyond the pixels
// of the image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Destination row x, pixel y = source row y, pixel x, for y < rows and x < columns. Strides in
// bytes.
void transpose_pixels(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                      std::size_t columns, std::size_t pixel_bytes, std::uint8_t* dst,
                      std::ptrdiff_t dst_stride);

// Destination pixel count - 1 - i = source pixel i.
void reverse_pixels(const std::uint8_t* src, std::size_t count, std::size_t pixel_bytes,
                    std::uint8_t* dst);

}  // namespace simd

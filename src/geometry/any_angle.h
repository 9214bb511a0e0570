// Turns of whole images about their centre by any angle.
//
// A pixel of the destination comes from where it lies in the source, in fixed-point numbers with 14
// fraction bits, and is blended of the four pixels around that place with weights of sixteenths.
//
// Use: right_turn() tells the angles that are no blending but a move of pixels (right_angle.h);
// rotate_bitonal() and rotate_pixels() take the others. The centre of the source falls on the
// centre of the destination, whatever its size.
//
// Keep true: -360 < angle < 360, in degrees, positive clockwise. Source and destination do not
// overlap. Both may have sides below 1: such a source is background all over.
#pragma once

#include <cstdint>
#include <optional>

#include "common/views.h"
#include "geometry/right_angle.h"

namespace geometry {

// The right angles, by what moves the pixels; none for 0.
std::optional<Turn> right_turn(double angle);

struct ImageSize {
    std::int64_t height, width;
};

// The size of the image that holds all of a turned one.
ImageSize rotated_size(std::int64_t height, std::int64_t width, double angle);

// Writes every byte of the destination; what lies outside of the source becomes white, padding
// bits, too.
void rotate_bitonal(common::BitonalView src, common::MutableBitonalView dst, double angle);

// Rows of pixels whose bytes are blended each by itself: 1, 3 or 4 of them.
template <class Byte>
struct ChannelView {
    Byte* data = nullptr;
    std::int32_t height = 0;    // rows
    std::int32_t width = 0;     // pixels
    std::ptrdiff_t stride = 0;  // bytes from row to row

    Byte* row(std::ptrdiff_t y) const { return data + y * stride; }
};

// Writes the pixels of the destination and nothing behind them. `background`: one pixel, for what
// lies outside of the source.
void rotate_pixels(int pixel_bytes, ChannelView<const std::uint8_t> src,
                   ChannelView<std::uint8_t> dst, const std::uint8_t* background, double angle);

}  // namespace geometry

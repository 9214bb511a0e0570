// A quarter turn is an exchange of rows and columns with one of the two images read or written from
// its last row to its first: the source for the clockwise turn, the destination for the
// counter-clockwise one. A half turn of rows without padding is a reversal of the whole image as
// one row.
#include "geometry/right_angle.h"

#include "simd/bits/turn_bits.h"
#include "simd/pixels/turn_pixels.h"

namespace geometry {
namespace {

// Where the first row of an exchange is and how far it is to the next one.
template <class Byte>
struct Rows {
    Byte* first;
    std::ptrdiff_t stride;

    static Rows of(Byte* data, std::size_t count, std::ptrdiff_t stride, bool last_first) {
        if (!last_first) return {data, stride};
        return {data + static_cast<std::ptrdiff_t>(count - 1) * stride, -stride};
    }
};

void turn_half(const PixelImage& src, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    const auto row_bytes = static_cast<std::ptrdiff_t>(src.row_bytes());
    if (src.stride == row_bytes && dst_stride == row_bytes) {
        simd::reverse_pixels(src.data, src.height * src.width, src.pixel_bytes, dst);
        return;
    }
    const std::uint8_t* from = src.data;
    Rows<std::uint8_t> to = Rows<std::uint8_t>::of(dst, src.height, dst_stride, true);
    for (std::size_t y = 0; y < src.height; ++y, from += src.stride, to.first += to.stride) {
        simd::reverse_pixels(from, src.width, src.pixel_bytes, to.first);
    }
}

}  // namespace

std::int64_t turned_stride(Turn turn, common::BitonalView src) {
    return turn == Turn::kHalf ? src.stride : common::bitonal_stride(src.height);
}

void turn_bitonal(Turn turn, common::BitonalView src, std::uint8_t* dst) {
    const auto height = static_cast<std::size_t>(src.height);
    const auto width = static_cast<std::size_t>(src.width);
    if (turn == Turn::kHalf) {
        simd::half_turn_bits(src.data, height, width, static_cast<std::size_t>(src.stride), dst);
        return;
    }
    const bool clockwise = turn == Turn::kClockwise;
    const auto from = Rows<const std::uint8_t>::of(src.data, height, src.stride, clockwise);
    const auto to = Rows<std::uint8_t>::of(dst, width, turned_stride(turn, src), !clockwise);
    simd::transpose_bits(from.first, from.stride, height, width, to.first, to.stride);
}

void turn_pixels(Turn turn, const PixelImage& src, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    if (turn == Turn::kHalf) {
        turn_half(src, dst, dst_stride);
        return;
    }
    const bool clockwise = turn == Turn::kClockwise;
    const auto from = Rows<const std::uint8_t>::of(src.data, src.height, src.stride, clockwise);
    const auto to = Rows<std::uint8_t>::of(dst, src.width, dst_stride, !clockwise);
    simd::transpose_pixels(from.first, from.stride, src.height, src.width, src.pixel_bytes,
                           to.first, to.stride);
}

}  // namespace geometry

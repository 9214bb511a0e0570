// A quarter turn is an exchange of rows and columns with one of the two images read or written from
// its last row to its first: the source for the clockwise turn, the destination for the
// counter-clockwise one. A half turn of packed rows is a reversal of the whole image as one row.
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

void turn_packed(Turn turn, const PackedImage& src, std::uint8_t* dst) {
    if (turn == Turn::kHalf) {
        simd::reverse_pixels(src.data, src.height * src.width, src.pixel_bytes, dst);
        return;
    }
    const bool clockwise = turn == Turn::kClockwise;
    const auto src_stride = static_cast<std::ptrdiff_t>(src.width * src.pixel_bytes);
    const auto dst_stride = static_cast<std::ptrdiff_t>(src.height * src.pixel_bytes);
    const auto from = Rows<const std::uint8_t>::of(src.data, src.height, src_stride, clockwise);
    const auto to = Rows<std::uint8_t>::of(dst, src.width, dst_stride, !clockwise);
    simd::transpose_pixels(from.first, from.stride, src.height, src.width, src.pixel_bytes,
                           to.first, to.stride);
}

}  // namespace geometry

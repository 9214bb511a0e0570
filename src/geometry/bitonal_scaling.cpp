#include "geometry/bitonal_scaling.h"

#include <algorithm>

#include "frame/buffer.h"
#include "geometry/plane_scaling.h"
#include "simd/pixels/threshold_bits.h"

namespace geometry {
namespace {

constexpr std::uint8_t kLightest = 255;
constexpr std::uint8_t kFirstWhite = 129;  // darker values are black

void expand_row(const std::uint8_t* bits, std::int32_t width, std::uint8_t* grey) {
    for (std::int32_t x = 0; x < width; ++x)
        grey[x] = (bits[x / 8] >> (7 - x % 8) & 1) != 0 ? 0 : kLightest;
}

}  // namespace

void scale_bitonal(Filter filter, common::BitonalView src, common::MutableBitonalView dst,
                   std::int32_t threads) {
    const auto pixels = [](const auto& page) {
        return static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.width);
    };
    frame::Buffer<std::uint8_t> expanded(pixels(src));
    frame::Buffer<std::uint8_t> scaled(pixels(dst));
    const common::MutableGreyView from{expanded.data(), src.height, src.width, src.width};
    const common::MutableGreyView to{scaled.data(), dst.height, dst.width, dst.width};
    for (std::int32_t y = 0; y < src.height; ++y) expand_row(src.row(y), src.width, from.row(y));
    scale_plane(filter, from, to, threads);
    const std::int64_t bytes = common::bitonal_bytes(dst.width);
    for (std::int32_t y = 0; y < dst.height; ++y) {
        simd::pack_below(to.row(y), static_cast<std::size_t>(dst.width), kFirstWhite, dst.row(y));
        std::fill(dst.row(y) + bytes, dst.row(y) + dst.stride, std::uint8_t{0});
    }
}

}  // namespace geometry

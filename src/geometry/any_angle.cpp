#include "geometry/any_angle.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "geometry/bitonal_tiles.h"
#include "geometry/source_line.h"
#include "simd/pixels/blend_line.h"

namespace geometry {
namespace {

double radians(double angle) {
    return angle * std::numbers::pi / 180.0;
}

SourceLines lines_of(std::int32_t src_height, std::int32_t src_width, std::int32_t dst_height,
                     std::int32_t dst_width, double angle) {
    const double theta = radians(angle);
    return {{src_height, src_width},
            {dst_height, dst_width},
            static_cast<std::int64_t>(kOnePixel * std::cos(theta)),
            static_cast<std::int64_t>(kOnePixel * std::sin(theta))};
}

template <int kPixelBytes>
void fill(std::uint8_t* row, std::int64_t first, std::int64_t end, const std::uint8_t* pixel) {
    if constexpr (kPixelBytes == 1) {
        std::memset(row + first, pixel[0], static_cast<std::size_t>(end - first));
    } else {
        for (std::int64_t u = first; u < end; ++u) {
            std::memcpy(row + u * kPixelBytes, pixel, kPixelBytes);
        }
    }
}

simd::SlantedLine slanted(const std::uint8_t* src, std::ptrdiff_t stride, std::int64_t height,
                          std::int64_t width, const SourceLines& lines, const SourceLine& line) {
    return {src, stride, height, width, line.x, line.y, lines.cosine(), -lines.sine()};
}

template <int kPixelBytes>
void rotate(ChannelView<const std::uint8_t> src, ChannelView<std::uint8_t> dst,
            const std::uint8_t* background, const SourceLines& lines) {
    constexpr auto kBlend = kPixelBytes == 1   ? simd::blend_line
                            : kPixelBytes == 3 ? simd::blend_line_of_3
                                               : simd::blend_line_of_4;
    for (std::int32_t v = 0; v < dst.height; ++v) {
        const SourceLine line = lines.of_row(v);
        std::uint8_t* const row = dst.row(v);
        fill<kPixelBytes>(row, 0, line.first, background);
        kBlend(slanted(src.data, src.stride, src.height, src.width, lines, line),
               static_cast<std::size_t>(line.end - line.first), row + line.first * kPixelBytes);
        fill<kPixelBytes>(row, line.end, dst.width, background);
    }
}

}  // namespace

std::optional<Turn> right_turn(double angle) {
    if (angle == 90 || angle == -270) return Turn::kClockwise;
    if (angle == -90 || angle == 270) return Turn::kCounterClockwise;
    if (angle == 180 || angle == -180) return Turn::kHalf;
    return std::nullopt;
}

ImageSize rotated_size(std::int64_t height, std::int64_t width, double angle) {
    const std::optional<Turn> turn = right_turn(angle);
    if (angle == 0 || turn == Turn::kHalf) return {height, width};
    if (turn.has_value()) return {width, height};
    const double cosine = std::cos(radians(angle));
    const double sine = std::sin(radians(angle));
    const auto w = static_cast<double>(width);
    const auto h = static_cast<double>(height);
    // The corners (0, 0), (w, 0), (0, h) and (w, h), in this order.
    const auto [left, right] = std::minmax({0.0, w * cosine, -(h * sine), w * cosine - h * sine});
    const auto [top, bottom] = std::minmax({0.0, w * sine, h * cosine, w * sine + h * cosine});
    return {static_cast<std::int64_t>(bottom - top), static_cast<std::int64_t>(right - left)};
}

void rotate_bitonal(common::BitonalView src, common::MutableBitonalView dst, double angle) {
    if (dst.height < 1) return;
    std::memset(dst.data, 0, dst.size());
    if (dst.width < 1) return;
    const SourceLines lines = lines_of(src.height, src.width, dst.height, dst.width, angle);
    rotate_tiles(src, dst, lines);
}

void rotate_pixels(int pixel_bytes, ChannelView<const std::uint8_t> src,
                   ChannelView<std::uint8_t> dst, const std::uint8_t* background, double angle) {
    if (dst.height < 1 || dst.width < 1) return;
    const SourceLines lines = lines_of(src.height, src.width, dst.height, dst.width, angle);
    if (pixel_bytes == 1) rotate<1>(src, dst, background, lines);
    if (pixel_bytes == 3) rotate<3>(src, dst, background, lines);
    if (pixel_bytes == 4) rotate<4>(src, dst, background, lines);
}

}  // namespace geometry

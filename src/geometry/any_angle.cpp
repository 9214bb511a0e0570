#include "geometry/any_angle.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "geometry/source_line.h"

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

// The weights of the four pixels around a place, which sum up to 256.
struct Weights {
    int upper_left, upper_right, lower_left, lower_right;
};

Weights weights_at(std::int64_t x, std::int64_t y) {
    const int right = static_cast<int>(x >> (kFractionBits - 4) & 15);
    const int lower = static_cast<int>(y >> (kFractionBits - 4) & 15);
    return {(16 - right) * (16 - lower), right * (16 - lower), (16 - right) * lower, right * lower};
}

int bit(const std::uint8_t* row, std::int64_t x) {
    return row[x / 8] >> (7 - x % 8) & 1;
}

bool black_at(common::BitonalView src, std::int64_t x, std::int64_t y) {
    const Weights weights = weights_at(x, y);
    const std::int64_t column = x >> kFractionBits;
    const std::uint8_t* const upper = src.row(y >> kFractionBits);
    const std::uint8_t* const lower = upper + src.stride;
    return weights.upper_left * bit(upper, column) + weights.upper_right * bit(upper, column + 1) +
               weights.lower_left * bit(lower, column) +
               weights.lower_right * bit(lower, column + 1) >
           128;
}

template <int kPixelBytes>
void blend(ChannelView<const std::uint8_t> src, std::int64_t x, std::int64_t y, std::uint8_t* out) {
    const Weights weights = weights_at(x, y);
    const std::uint8_t* const upper =
        src.row(y >> kFractionBits) + (x >> kFractionBits) * kPixelBytes;
    const std::uint8_t* const lower = upper + src.stride;
    for (int i = 0; i < kPixelBytes; ++i) {
        const int sum =
            weights.upper_left * upper[i] + weights.upper_right * upper[i + kPixelBytes] +
            weights.lower_left * lower[i] + weights.lower_right * lower[i + kPixelBytes];
        out[i] = static_cast<std::uint8_t>((sum + 128) >> 8);
    }
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

template <int kPixelBytes>
void rotate(ChannelView<const std::uint8_t> src, ChannelView<std::uint8_t> dst,
            const std::uint8_t* background, const SourceLines& lines) {
    for (std::int32_t v = 0; v < dst.height; ++v) {
        const SourceLine line = lines.of_row(v);
        std::uint8_t* const row = dst.row(v);
        fill<kPixelBytes>(row, 0, line.first, background);
        std::int64_t x = line.x;
        std::int64_t y = line.y;
        for (std::int64_t u = line.first; u < line.end; ++u) {
            blend<kPixelBytes>(src, x, y, row + u * kPixelBytes);
            x += lines.cosine();
            y -= lines.sine();
        }
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
    for (std::int32_t v = 0; v < dst.height; ++v) {
        const SourceLine line = lines.of_row(v);
        std::uint8_t* const row = dst.row(v);
        std::int64_t x = line.x;
        std::int64_t y = line.y;
        for (std::int64_t u = line.first; u < line.end; ++u) {
            if (black_at(src, x, y)) row[u / 8] |= static_cast<std::uint8_t>(0x80 >> (u % 8));
            x += lines.cosine();
            y -= lines.sine();
        }
    }
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

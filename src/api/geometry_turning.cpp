// Turning pages by any angle; right angles are moves of pixels.
#include <cmath>
#include <cstring>

#include "api/bitonal_turns.h"
#include "api/guard.h"
#include "api/page_size.h"
#include "common/views.h"
#include "geometry/any_angle.h"
#include "vemoprepro/geometry.h"

using api::kFailure;
using api::kSuccess;
using geometry::Turn;

namespace {

// Images as they are handed over.
template <class Byte>
struct Image {
    Byte* data;
    int height, width, bytes_per_line;

    bool empty() const { return height < 1 || width < 1; }
    std::int64_t bytes() const { return std::int64_t{height} * bytes_per_line; }
};

using Source = Image<const unsigned char>;
using Destination = Image<unsigned char>;

// Not a number is no angle.
bool in_range(double angle) {
    return angle > -360 && angle < 360;
}

bool same_size(const Source& src, const Destination& dst) {
    return src.height == dst.height && src.width == dst.width;
}

int copy(const Source& src, const Destination& dst) {
    if (!same_size(src, dst) || src.bytes_per_line != dst.bytes_per_line) return kFailure;
    if (src.height < 1 || src.bytes_per_line < 1) return kSuccess;
    if (src.data == nullptr || dst.data == nullptr) return kFailure;
    std::memcpy(dst.data, src.data, static_cast<std::size_t>(src.bytes()));
    return kSuccess;
}

// Whether the destination has the sides of the turned source.
bool fits_turned(Turn turn, const Source& src, const Destination& dst) {
    if (turn == Turn::kHalf) return same_size(src, dst);
    return dst.height == src.width && dst.width == src.height;
}

int turn_bits(Turn turn, const Source& src, const Destination& dst) {
    const bool half = turn == Turn::kHalf;
    const std::int64_t stride = half ? src.bytes_per_line : common::bitonal_stride(dst.width);
    if (!fits_turned(turn, src, dst) || dst.bytes_per_line != stride) return kFailure;
    const std::int64_t size = half ? dst.bytes() : 8 * stride * src.bytes_per_line;
    unsigned int result_stride = 0;
    return api::turn_bitonal(turn, src.data, src.width, src.height, src.bytes_per_line, dst.data,
                             size, &result_stride);
}

int turn_pixels(Turn turn, int pixel_bytes, const Source& src, const Destination& dst) {
    if (!fits_turned(turn, src, dst)) return kFailure;
    if (src.empty()) return kSuccess;
    if (src.data == nullptr || dst.data == nullptr) return kFailure;
    const geometry::PixelImage image{src.data, static_cast<std::size_t>(src.height),
                                     static_cast<std::size_t>(src.width), src.bytes_per_line,
                                     static_cast<std::size_t>(pixel_bytes)};
    geometry::turn_pixels(turn, image, dst.data, dst.bytes_per_line);
    return kSuccess;
}

int rotate_bits(const Source& src, const Destination& dst, double angle) {
    const bool clears = dst.height > 0 && dst.bytes_per_line > 0;
    if (clears && dst.data == nullptr) return kFailure;
    if (!src.empty() && src.data == nullptr) return kFailure;
    if (clears) {
        geometry::rotate_bitonal({src.data, src.height, src.width, src.bytes_per_line},
                                 {dst.data, dst.height, dst.width, dst.bytes_per_line}, angle);
    }
    return kSuccess;
}

int rotate_pixels(int pixel_bytes, const unsigned char* background, const Source& src,
                  const Destination& dst, double angle) {
    if (pixel_bytes != 1 && pixel_bytes != 3 && pixel_bytes != 4) return kFailure;
    if (dst.empty()) return kSuccess;
    if (background == nullptr || dst.data == nullptr) return kFailure;
    if (!src.empty() && src.data == nullptr) return kFailure;
    geometry::rotate_pixels(pixel_bytes, {src.data, src.height, src.width, src.bytes_per_line},
                            {dst.data, dst.height, dst.width, dst.bytes_per_line}, background,
                            angle);
    return kSuccess;
}

}  // namespace

int rotate_image_dim(int height, int width, int* out_height, int* out_width, double angle) {
    if (!in_range(angle)) return kFailure;
    if (out_height == nullptr || out_width == nullptr) return kFailure;
    return api::guarded([&] {
        return api::store_size(geometry::rotated_size(height, width, angle), out_height, out_width);
    });
}

int rotate_bitonal(const unsigned char* src, int height, int width, int bytes_per_line,
                   unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                   double angle) {
    if (!in_range(angle)) return kFailure;
    if (common::bitonal_stride(width) > bytes_per_line) return kFailure;
    if (common::bitonal_stride(dst_width) > dst_bytes_per_line) return kFailure;
    const Source source{src, height, width, bytes_per_line};
    const Destination destination{dst, dst_height, dst_width, dst_bytes_per_line};
    return api::guarded([&] {
        if (angle == 0) return copy(source, destination);
        if (const auto turn = geometry::right_turn(angle))
            return turn_bits(*turn, source, destination);
        return rotate_bits(source, destination, angle);
    });
}

int rotate_color(int bytes_per_pixel, const unsigned char* background_pixel,
                 const unsigned char* src, int height, int width, int bytes_per_line,
                 unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                 double angle) {
    if (!in_range(angle) || bytes_per_pixel < 1) return kFailure;
    const std::int64_t pixel_bytes = bytes_per_pixel;
    if (width * pixel_bytes > bytes_per_line) return kFailure;
    if (dst_width * pixel_bytes > dst_bytes_per_line) return kFailure;
    const Source source{src, height, width, bytes_per_line};
    const Destination destination{dst, dst_height, dst_width, dst_bytes_per_line};
    return api::guarded([&] {
        if (angle == 0) return copy(source, destination);
        if (const auto turn = geometry::right_turn(angle))
            return turn_pixels(*turn, bytes_per_pixel, source, destination);
        return rotate_pixels(bytes_per_pixel, background_pixel, source, destination, angle);
    });
}

// Turning whole pages by right angles.
#include "vemoprepro/geometry.h"

#include <cstdint>

#include "api/guard.h"
#include "common/views.h"
#include "geometry/right_angle.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using geometry::Turn;

namespace {

// Bytes that the caller must have at dst. The quarter turns ask for a result row for every bit of
// a source row, padding included.
std::int64_t demanded_size(Turn turn, std::int64_t height, std::int64_t bytes_per_line) {
    if (turn == Turn::kHalf) return height * bytes_per_line;
    return 8 * bytes_per_line * common::bitonal_stride(height);
}

int turn_bitonal(Turn turn, const unsigned char* src, int width, int height, int bytes_per_line,
                 unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    if (src == nullptr || dst == nullptr || out_bytes_per_line == nullptr) return kFailure;
    if (width < 1 || height < 1) return kFailure;
    if (bytes_per_line % 4 != 0) return kFailure;
    if (demanded_size(turn, height, bytes_per_line) > dst_size) return kFailure;
    if (bytes_per_line < common::bitonal_bytes(width)) return kFailure;
    return guarded([&] {
        const common::BitonalView page{src, height, width, bytes_per_line};
        geometry::turn_bitonal(turn, page, dst);
        *out_bytes_per_line = static_cast<unsigned int>(geometry::turned_stride(turn, page));
        return kSuccess;
    });
}

}  // namespace

int kyd_rotate_180(const unsigned char* src, int width, int height, int bytes_per_line,
                   unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    return turn_bitonal(Turn::kHalf, src, width, height, bytes_per_line, dst, dst_size,
                        out_bytes_per_line);
}

int kyd_rotate_270(const unsigned char* src, int width, int height, int bytes_per_line,
                   unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    return turn_bitonal(Turn::kCounterClockwise, src, width, height, bytes_per_line, dst, dst_size,
                        out_bytes_per_line);
}

int kyd_rotate_090(const unsigned char* src, int width, int height, int bytes_per_line,
                   unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    return turn_bitonal(Turn::kClockwise, src, width, height, bytes_per_line, dst, dst_size,
                        out_bytes_per_line);
}

int kyd_rotate_bitmap(int mode, const unsigned char* src, int height, int width, int bytes_per_line,
                      unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    switch (mode) {
        case PREPRO_TURN_COUNTER_CLOCKWISE:
        case PREPRO_TURN_HALF:
        case PREPRO_TURN_CLOCKWISE:
            return turn_bitonal(static_cast<Turn>(mode), src, width, height, bytes_per_line, dst,
                                dst_size, out_bytes_per_line);
        case 4:
            return kFailure;
        default:
            return kSuccess;
    }
}

int kyd_rotate_color(int mode, int bytes_per_pixel, const unsigned char* src, int height, int width,
                     unsigned char* dst, int* out_height, int* out_width) {
    if (mode < PREPRO_TURN_COUNTER_CLOCKWISE || mode > PREPRO_TURN_CLOCKWISE) return kFailure;
    if (out_height == nullptr || out_width == nullptr) return kFailure;
    const auto turn = static_cast<Turn>(mode);
    const bool empty = height < 1 || width < 1;
    if (!empty && (src == nullptr || dst == nullptr || bytes_per_pixel < 1)) return kFailure;
    return guarded([&] {
        if (!empty) {
            const geometry::PackedImage image{src, static_cast<std::size_t>(height),
                                              static_cast<std::size_t>(width),
                                              static_cast<std::size_t>(bytes_per_pixel)};
            geometry::turn_packed(turn, image, dst);
        }
        *out_height = turn == Turn::kHalf ? height : width;
        *out_width = turn == Turn::kHalf ? width : height;
        return kSuccess;
    });
}

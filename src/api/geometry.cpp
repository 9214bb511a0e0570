// Turning whole pages by right angles.
#include "vemoprepro/geometry.h"

#include "api/bitonal_turns.h"
#include "api/guard.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using api::turn_bitonal;
using geometry::Turn;

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
            const std::ptrdiff_t pixel_bytes = bytes_per_pixel;
            const geometry::PixelImage image{src, static_cast<std::size_t>(height),
                                             static_cast<std::size_t>(width), width * pixel_bytes,
                                             static_cast<std::size_t>(pixel_bytes)};
            const int turned_width = turn == Turn::kHalf ? width : height;
            geometry::turn_pixels(turn, image, dst, turned_width * pixel_bytes);
        }
        *out_height = turn == Turn::kHalf ? height : width;
        *out_width = turn == Turn::kHalf ? width : height;
        return kSuccess;
    });
}

// Right-angle rotations, one pixel at a time.
//
// Written on success: by kyd_rotate_180 all height * bytes_per_line bytes, by the quarter turns the
// `width` rows of 4 * ceil(height / 32) bytes of the result, not the work area behind them.
#pragma once

#include <cstring>

#include "pixels.h"

namespace model {

inline int kyd_rotate_180(const unsigned char* src, int width, int height, int bytes_per_line,
                          unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    if (bytes_per_line % 4 != 0) return -1;
    const long long size = static_cast<long long>(height) * bytes_per_line;
    if (size > dst_size) return -1;
    std::memset(dst, 0, static_cast<std::size_t>(size));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            set_bit(dst, bytes_per_line, width - 1 - x, height - 1 - y,
                    get_bit(src, bytes_per_line, x, y));
    *out_bytes_per_line = static_cast<unsigned int>(bytes_per_line);
    return 0;
}

inline int quarter_turn(bool clockwise, const unsigned char* src, int width, int height,
                        int bytes_per_line, unsigned char* dst, int dst_size,
                        unsigned int* out_bytes_per_line) {
    if (bytes_per_line % 4 != 0) return -1;
    const int stride = word_stride(height);
    if (8LL * bytes_per_line * stride > dst_size) return -1;
    std::memset(dst, 0, offset(width, stride, 0));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int to_x = clockwise ? height - 1 - y : y;
            const int to_y = clockwise ? x : width - 1 - x;
            set_bit(dst, stride, to_x, to_y, get_bit(src, bytes_per_line, x, y));
        }
    *out_bytes_per_line = static_cast<unsigned int>(stride);
    return 0;
}

inline int kyd_rotate_bitmap(int mode, const unsigned char* src, int height, int width,
                             int bytes_per_line, unsigned char* dst, int dst_size,
                             unsigned int* out_bytes_per_line) {
    if (mode == 1 || mode == 3)
        return quarter_turn(mode == 3, src, width, height, bytes_per_line, dst, dst_size,
                            out_bytes_per_line);
    if (mode == 2)
        return model::kyd_rotate_180(src, width, height, bytes_per_line, dst, dst_size,
                                     out_bytes_per_line);
    return mode == 4 ? -1 : 0;
}

inline int kyd_rotate_color(int mode, int bytes_per_pixel, const unsigned char* src, int height,
                            int width, unsigned char* dst, int* out_height, int* out_width) {
    if (mode < 1 || mode > 3) return -1;
    const std::ptrdiff_t h = height;
    const std::ptrdiff_t w = width;
    for (std::ptrdiff_t y = 0; y < h; ++y)
        for (std::ptrdiff_t x = 0; x < w; ++x) {
            std::ptrdiff_t to = 0;
            if (mode == 1) to = (w - 1 - x) * h + y;
            if (mode == 2) to = (h - 1 - y) * w + (w - 1 - x);
            if (mode == 3) to = x * h + (h - 1 - y);
            std::memcpy(dst + to * bytes_per_pixel, src + (y * w + x) * bytes_per_pixel,
                        static_cast<std::size_t>(bytes_per_pixel));
        }
    *out_height = mode == 2 ? height : width;
    *out_width = mode == 2 ? width : height;
    return 0;
}

}  // namespace model

// Right-angle rotations, one pixel at a time.
//
// Defined bytes of `dst` after success:
//  - kyd_rotate_180: all height * bytes_per_line bytes.
//  - kyd_rotate_270 and kyd_rotate_090: the result is the first `width` rows of 4 * ceil(height /
//  32) bytes. The rest of
//    the demanded work area (up to 8 * bytes_per_line rows) is scratch: the models leave there what
//    the word-block method leaves, row i holding the source's bit column 8 * bytes_per_line - 1 -
//    i, so that a test may compare the whole area if the code under test promises that; a caller
//    may only rely on the first `width` rows.
//  - kyd_rotate_color: height * width * bytes_per_pixel bytes.
// Nothing is written on rejection, nor beyond these bytes.
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

inline int kyd_rotate_270(const unsigned char* src, int width, int height, int bytes_per_line,
                          unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    if (bytes_per_line % 4 != 0) return -1;
    const int columns = 8 * bytes_per_line;
    const int stride = word_stride(height);
    const long long size = static_cast<long long>(columns) * stride;
    if (size > dst_size) return -1;
    std::memset(dst, 0, static_cast<std::size_t>(size));
    for (int row = 0; row < columns; ++row) {
        const int x = row < width ? width - 1 - row : columns - 1 - row;
        for (int y = 0; y < height; ++y)
            set_bit(dst, stride, y, row, get_bit(src, bytes_per_line, x, y));
    }
    *out_bytes_per_line = static_cast<unsigned int>(stride);
    return 0;
}

inline int kyd_rotate_090(const unsigned char* src, int width, int height, int bytes_per_line,
                          unsigned char* dst, int dst_size, unsigned int* out_bytes_per_line) {
    if (model::kyd_rotate_270(src, width, height, bytes_per_line, dst, dst_size,
                              out_bytes_per_line) != 0)
        return -1;
    const int stride = word_stride(height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            set_bit(dst, stride, height - 1 - y, x, get_bit(src, bytes_per_line, x, y));
    return 0;
}

inline int kyd_rotate_bitmap(int mode, const unsigned char* src, int height, int width,
                             int bytes_per_line, unsigned char* dst, int dst_size,
                             unsigned int* out_bytes_per_line) {
    switch (mode) {
        case 1:
            return model::kyd_rotate_270(src, width, height, bytes_per_line, dst, dst_size,
                                         out_bytes_per_line);
        case 2:
            return model::kyd_rotate_180(src, width, height, bytes_per_line, dst, dst_size,
                                         out_bytes_per_line);
        case 3:
            return model::kyd_rotate_090(src, width, height, bytes_per_line, dst, dst_size,
                                         out_bytes_per_line);
        case 4:
            return -1;
        default:
            return 0;
    }
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

// Straightening of bitonal pages, one pixel at a time.
//
// The arguments and results are those of the exported functions; progress goes through the same
// callback, in the same order. Two points that the fast code has to decide as well: bits of the
// plain shear that would fall beyond a destination row (they come from the padding of the source's
// last byte) are lost, and a `scale` of 0 is refused unless `skew` is 0.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include "components_model.h"
#include "pixels.h"

namespace model {

using Progress = void (*)(unsigned int done, unsigned int total);

inline void report(Progress progress, int done, int total) {
    if (progress) progress(static_cast<unsigned int>(done), static_cast<unsigned int>(total));
}

// Pixels of drift over 512 pixels; anything above 96 is refused by the callers.
inline int skew_unit(int skew, int scale) {
    if (skew == 0) return 0;
    if (scale == 0) return 1000;
    const long long unit = static_cast<long long>(skew) * 512 / scale;
    return unit > 96 || unit < -96 ? 1000 : static_cast<int>(unit);
}

inline int drift(int pixels, int yskew) {
    return static_cast<int>(static_cast<long long>(pixels) * yskew / 512);
}

inline int skrotbmp_dim(int skew, int scale, int height, int width, int* out_height,
                        int* out_width) {
    const int yskew = skew_unit(skew, scale);
    if (std::abs(yskew) > 96) return -1;
    *out_width = width + std::abs(drift(height, yskew));
    *out_height = height + std::abs(4 * ceil_div(*out_width, 32) * yskew / 64);
    return 0;
}

inline bool strides_fit(int width, int bytes_per_line, int out_width, int out_bytes_per_line) {
    return bytes_per_line >= word_stride(width) && out_bytes_per_line >= word_stride(out_width);
}

inline void copy_upright(const unsigned char* src, int height, int width, int bytes_per_line,
                         unsigned char* dst, int out_height, int out_bytes_per_line,
                         Progress progress) {
    report(progress, 0, 1);
    for (int y = 0; y < out_height; ++y)
        for (int i = 0; i < out_bytes_per_line; ++i)
            dst[offset(y, out_bytes_per_line, i)] =
                y < height && i < ceil_div(width, 8) ? src[offset(y, bytes_per_line, i)] : 0;
    report(progress, 1, 1);
}

// What both shears of the library's own deskew have in common.
struct Shear {
    int yskew;
    int right;  // Bx: what row 0 moves
    int down;   // By: what column 0 moves
    int row_shift(int y) const { return right - drift(y, yskew); }
};

// Rows sideways, then byte columns down, by the drift of each byte's first pixel.
inline void plain_shear(const Shear& shear, const unsigned char* src, int height, int width,
                        int bytes_per_line, unsigned char* dst, int out_height,
                        int out_bytes_per_line, Progress progress) {
    const int row_steps = ceil_div(height, 256);
    const int total = row_steps + ceil_div(out_bytes_per_line, 256);
    Bits moved(out_height, 8 * out_bytes_per_line);
    for (int i = 0; i < height; ++i) {
        if (i % 256 == 0) report(progress, i / 256, total);
        const int y = height - 1 - i;
        for (int x = 0; x < 8 * ceil_div(width, 8); ++x)
            if (get_bit(src, bytes_per_line, x, y)) moved.set(x + shear.row_shift(y), y, true);
    }
    report(progress, row_steps, total);
    for (int j = 0; j < out_bytes_per_line; ++j) {
        if (j % 256 == 0) report(progress, row_steps + j / 256, total);
        const int dy = shear.down + drift(8 * j, shear.yskew);
        for (int y = 0; y < out_height; ++y)
            for (int x = 8 * j; x < 8 * j + 8; ++x)
                if (moved.get(x, y - dy)) set_bit(dst, out_bytes_per_line, x, y, true);
    }
    report(progress, total, total);
}

inline void place_component(const Component& c, const Shear& shear, unsigned char* dst,
                            int out_bytes_per_line) {
    const int steepness = std::abs(shear.yskew);
    const bool small = (c.y1 - c.y0) * steepness < 512 && (c.x1 - c.x0) * steepness <= 511;
    const int dx = shear.right - drift((c.y0 + c.y1) / 2, shear.yskew);
    const int dy = drift((c.x0 + c.x1) / 2 + dx, shear.yskew);
    for (const Run& run : c.runs)
        for (int x = run.x0; x < run.x1; ++x) {
            const int to_x = x + (small ? dx : shear.row_shift(run.y));
            const int to_y =
                run.y + shear.down + (small ? dy : drift(to_x / 8 * 8 + 3, shear.yskew));
            set_bit(dst, out_bytes_per_line, to_x, to_y, true);
        }
}

inline void component_shear(const Shear& shear, const unsigned char* src, int height, int width,
                            int bytes_per_line, unsigned char* dst, int out_bytes_per_line,
                            Progress progress) {
    for (int y = 0; y < height; y += 256) report(progress, y / 256, ceil_div(height, 256));
    for (const Component& c : components(src, height, width, bytes_per_line))
        place_component(c, shear, dst, out_bytes_per_line);
    report(progress, ceil_div(height, 256), ceil_div(height, 256));
}

inline int skrotbmp_mem(int skew, int scale, const unsigned char* src, int height, int width,
                        int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                        int out_bytes_per_line, Progress progress) {
    if (!strides_fit(width, bytes_per_line, out_width, out_bytes_per_line)) return -2;
    if (skew == 0 && out_height == height && out_width == width &&
        out_bytes_per_line == bytes_per_line) {
        report(progress, 0, 1);
        std::memcpy(dst, src, offset(height, bytes_per_line, 0));
        report(progress, 1, 1);
        return 0;
    }
    const int yskew = skew_unit(skew, scale);
    int needed_height = 0;
    int needed_width = 0;
    if (model::skrotbmp_dim(skew, scale, height, width, &needed_height, &needed_width) != 0)
        return -1;
    if (out_height < needed_height || out_width < needed_width) return -2;
    if (yskew == 0) {
        copy_upright(src, height, width, bytes_per_line, dst, out_height, out_bytes_per_line,
                     progress);
        return 0;
    }
    std::memset(dst, 0, offset(out_height, out_bytes_per_line, 0));
    const Shear shear{yskew, yskew >= 0 ? needed_width - width : 0,
                      yskew < 0 ? needed_height - height : 0};
    if (std::abs(yskew) <= 32)
        component_shear(shear, src, height, width, bytes_per_line, dst, out_bytes_per_line,
                        progress);
    else
        plain_shear(shear, src, height, width, bytes_per_line, dst, out_height, out_bytes_per_line,
                    progress);
    return 0;
}

inline void complement(unsigned char* image, int height, int stride) {
    for (std::size_t i = 0; i < offset(height, stride, 0); ++i)
        image[i] = static_cast<unsigned char>(~image[i]);
}

// A rotation of the complement: the source comes back as it was.
template <auto rotation>
int on_complement(int skew, int scale, unsigned char* src, int height, int width,
                  int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                  int out_bytes_per_line, Progress progress) {
    if (!strides_fit(width, bytes_per_line, out_width, out_bytes_per_line)) return -2;
    complement(src, height, bytes_per_line);
    const int result = rotation(skew, scale, src, height, width, bytes_per_line, dst, out_height,
                                out_width, out_bytes_per_line, progress);
    complement(src, height, bytes_per_line);
    return result;
}

}  // namespace model

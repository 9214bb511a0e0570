// Straightening of grey and colour pages in place, one line at a time: two or three shears that
// spread every pixel over two. The angles, slopes and sizes are those of the aligned bitonal
// rotation.
//
// The arguments and results are those of the exported functions; progress goes through the same
// callback, in the same order. Sizes below 1 are the callers' affair.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "aligned_deskew_model.h"

namespace model {

inline int skrotdim(int skew, int scale, int height, int width, int* out_height, int* out_width) {
    *out_height = height;
    *out_width = width;
    if (skew == 0) return 0;
    *out_height = *out_width = 0;
    const int yskew = skew_unit(skew, scale);
    if (std::abs(yskew) > 96) return -1;
    AlignedShears(yskew).measure(height, width, *out_height, *out_width);
    return 0;
}

// How a pixel of so many bytes is made up of channels.
struct PixelLayout {
    int bytes;

    bool packed() const { return bytes == 2; }  // 5 bits each, below an unused top bit
    int channels() const { return packed() ? 3 : bytes; }
    int unit() const { return packed() ? 32 : 256; }
    bool averages_edges() const { return !packed(); }
    int fraction(double part) const {
        const int q = static_cast<int>(unit() * part);
        return (bytes == 1 || bytes == 3) && q >= 113 && q <= 127 ? 112 : q;
    }
    int channel(const unsigned char* pixel, int c) const {
        return packed() ? ((pixel[0] << 8 | pixel[1]) >> (10 - 5 * c)) & 31 : pixel[c];
    }
    // The unused bit becomes 0 with the first channel, which is put first.
    void put(unsigned char* pixel, int c, int value) const {
        if (!packed()) {
            pixel[c] = static_cast<unsigned char>(value);
            return;
        }
        const int others = c == 0 ? 0 : pixel[0] << 8 | pixel[1];
        const int both = (others & ~(31 << (10 - 5 * c))) | value << (10 - 5 * c);
        pixel[0] = static_cast<unsigned char>(both >> 8);
        pixel[1] = static_cast<unsigned char>(both & 255);
    }
};

// One channel of a line of m pixels, of which the n of `p` begin at position `at`, less `q` units.
inline std::vector<int> shifted_channel(const std::vector<int>& p, int m, int at, int q,
                                        int background, const PixelLayout& layout) {
    const int n = static_cast<int>(p.size());
    const auto pixel = [&](int k) { return p[static_cast<std::size_t>(k)]; };
    const auto part = [&](int value) { return q * value / layout.unit(); };
    const auto edge = [&](int value) {
        return layout.averages_edges() ? (background + value) >> 1 : background;
    };
    std::vector<int> line;
    for (int i = 0; i < m; ++i) {
        const int k = i - at;
        line.push_back(k == -1          ? edge(pixel(0))
                       : k == 0         ? pixel(0)
                       : k > 0 && k < n ? pixel(k) + part(pixel(k - 1)) - part(pixel(k))
                       : k == n         ? edge(pixel(n - 1))
                                        : background);
    }
    return line;
}

// The pixels of line i are at start + i * across + k * along, in bytes.
inline void shift_lines(unsigned char* start, std::ptrdiff_t across, std::ptrdiff_t along,
                        int lines, int n, double slope, const unsigned char* background,
                        const PixelLayout& layout) {
    const int growth = shear_growth(lines, slope);
    const int base = slope < 0 ? growth : 0;
    for (int i = 0; i < lines; ++i) {
        const int shift = floor_shift(i, slope);
        const int q = layout.fraction(slope * (i + 0.5) - shift);
        unsigned char* const line = start + i * across;
        std::vector<std::vector<int>> shifted;
        for (int c = 0; c < layout.channels(); ++c) {
            std::vector<int> p;
            for (int k = 0; k < n; ++k) p.push_back(layout.channel(line + k * along, c));
            shifted.push_back(shifted_channel(p, n + growth, base + shift, q,
                                              layout.channel(background, c), layout));
        }
        for (int k = 0; k < n + growth; ++k)
            for (int c = 0; c < layout.channels(); ++c)
                layout.put(line + k * along, c,
                           shifted[static_cast<std::size_t>(c)][static_cast<std::size_t>(k)]);
    }
}

inline int skrotimg_bg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer,
                           int height, int width, const unsigned char* background, int out_height,
                           int out_width, Progress progress) {
    if (bytes_per_pixel < 1 || bytes_per_pixel > 4) return -1;
    if (skew == 0 && out_height == height && out_width == width) {
        report(progress, 0, 4);
        report(progress, 4, 4);
        return 0;
    }
    const int yskew = skew_unit(skew, scale);
    if (std::abs(yskew) > 96) return -1;
    const AlignedShears shears(yskew);
    int h1 = 0;
    int wf = 0;
    shears.measure(height, width, h1, wf);
    if (out_width < wf || out_height < h1) return -1;

    report(progress, 0, 4);
    const std::vector<unsigned char> page(buffer,
                                          buffer + offset(height, width * bytes_per_pixel, 0));
    const int stride = out_width * bytes_per_pixel;
    std::memset(buffer, 0, offset(out_height, stride, 0));
    for (int y = 0; y < height; ++y)
        std::memcpy(buffer + offset(y, stride, 0), &page[offset(y, width * bytes_per_pixel, 0)],
                    static_cast<std::size_t>(width) * static_cast<std::size_t>(bytes_per_pixel));
    report(progress, 1, 4);
    const PixelLayout layout{bytes_per_pixel};
    const int w1 = width + shear_growth(height, shears.row_slope);
    shift_lines(buffer, stride, bytes_per_pixel, height, width, shears.row_slope, background,
                layout);
    report(progress, 2, 4);
    shift_lines(buffer, bytes_per_pixel, stride, w1, height, shears.column_slope, background,
                layout);
    report(progress, 3, 4);
    if (shears.three)
        shift_lines(buffer, stride, bytes_per_pixel, h1, w1, shears.row_slope, background, layout);
    report(progress, 4, 4);
    return 0;
}

inline int skrotimg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer, int height,
                        int width, int out_height, int out_width, Progress progress) {
    const unsigned char white[4] = {255, 255, 255, 255};
    return model::skrotimg_bg_mem(skew, scale, bytes_per_pixel, buffer, height, width, white,
                                  out_height, out_width, progress);
}

}  // namespace model

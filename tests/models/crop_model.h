// Border cropping, one pixel at a time, with the arguments of the exported functions.
//
// Bits and bytes beyond the width of a row are left alone, with one exception: cropbmp() copies
// whole rows of `stride` bytes. A page without columns has no runs, so that its rows are copied as
// they are; a page without rows writes nothing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "field.h"
#include "pixels.h"

namespace model {

// Marks, going down (step 1) or up (step -1), the runs that start or end at a side of the page or
// touch, also by a corner, a marked pixel of the row before. All of the row before the first one
// counts as marked.
inline void mark_reachable(const Bits& page, Bits& marks, int step) {
    const int first = step > 0 ? 0 : page.height - 1;
    for (int y = first; y >= 0 && y < page.height; y += step) {
        int x = 0;
        while (x < page.width) {
            if (!page.get(x, y)) {
                ++x;
                continue;
            }
            const int s = x;
            while (page.get(x, y)) ++x;
            bool reachable = s == 0 || x == page.width || y == first;
            for (int near = s - 1; near <= x; ++near)
                if (marks.get(near, y - step)) reachable = true;
            if (!reachable) continue;
            for (int i = s; i < x; ++i) marks.set(i, y, true);
        }
    }
}

inline int cropbmp(int ink_value, const unsigned char* source, int height, int width, int stride,
                   unsigned char* target) {
    for (int y = 0; y < height; ++y)
        std::copy_n(source + offset(y, stride, 0), stride, target + offset(y, stride, 0));
    if (ink_value != 0 || height < 1 || width < 1) return 0;
    const Bits page = unpack(source, height, width, stride);
    Bits marks(height, width);
    mark_reachable(page, marks, 1);
    mark_reachable(page, marks, -1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (marks.get(x, y)) set_bit(target, stride, x, y, false);
    return 0;
}

inline int crop_pixel_size(int type) {
    return type == 1 ? 1 : type == 4 ? 4 : 3;
}

inline int crop_grey_value(const unsigned char* pixel, int type) {
    if (type == 1) return pixel[0];
    const int red = type == 2 ? 2 : type == 3 ? 0 : 1;
    const int green = type == 4 ? 2 : 1;
    const int blue = type == 2 ? 0 : type == 3 ? 2 : 3;
    return (299 * pixel[red] + 587 * pixel[green] + 114 * pixel[blue]) / 1000;
}

struct BorderLimits {
    int dark, light, step;
};

// Grows the border into the page; the pixels of (x, y) that were visited before lie at x - dx and
// y - dy, outside the page where (x, y) is on the edge that the pass starts from.
inline bool joins_border(const Field& g, const Bits& border, const BorderLimits& limits, int x,
                         int y, int dx, int dy) {
    const int value = g.at(y, x);
    const bool first_column = x - dx < 0 || x - dx >= g.width;
    const bool first_row = y - dy < 0 || y - dy >= g.height;
    const auto like = [&](int nx, int ny) { return std::abs(value - g.at(ny, nx)) < limits.step; };
    const auto next_to = [&](int nx, int ny) {
        return value < limits.light && border.get(nx, ny) && like(nx, ny);
    };
    if (first_column && first_row) return value < limits.dark;
    if (first_row) return value < limits.dark || next_to(x - dx, y);
    if (first_column) return value < limits.dark || next_to(x, y - dy);
    const bool reached =
        border.get(x - dx, y) || border.get(x, y - dy) || border.get(x - dx, y - dy);
    return value < limits.light && reached && like(x - dx, y) && like(x, y - dy) &&
           like(x - dx, y - dy);
}

inline void grow_border(const Field& g, Bits& border, const BorderLimits& limits) {
    for (const int d : {1, -1, 1})
        for (int y = d > 0 ? 0 : g.height - 1; y >= 0 && y < g.height; y += d)
            for (int x = d > 0 ? 0 : g.width - 1; x >= 0 && x < g.width; x += d)
                if (joins_border(g, border, limits, x, y, d, d)) border.set(x, y, true);
}

// Every pixel with border in the square of `d` pixels to each side joins it.
inline Bits dilate_border(const Bits& border, int d) {
    Bits wide(border.height, border.width);
    for (int y = 0; y < border.height; ++y)
        for (int x = 0; x < border.width; ++x)
            if (border.get(x, y))
                for (int ny = y - d; ny <= y + d; ++ny)
                    for (int nx = x - d; nx <= x + d; ++nx) wide.set(nx, ny, true);
    return wide;
}

// All sides but the last row, which the frame stops short of.
inline void frame_border(Bits& border, int d) {
    const int h = border.height;
    const int w = border.width;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (y < d || (y >= h - d - 1 && y <= h - 2) || x < d || x >= w - 1 - d)
                border.set(x, y, true);
}

struct Content {
    int x0, x1, y0, y1;  // all inclusive
};

// Whether `pixels` pixels from (x, y) on are free of border.
inline bool is_content(const Bits& border, int x, int y, int pixels) {
    for (int i = x; i < x + pixels; ++i)
        if (border.get(i, y)) return false;
    return true;
}

// Rows count when eight aligned pixels are free of border, columns when one pixel is.
inline Content content_of(const Bits& border) {
    Content c{border.width, -1, border.height, -1};
    for (int y = 0; y < border.height; ++y)
        for (int x = 0; x < border.width; ++x) {
            if (is_content(border, x, y, 1)) {
                c.x0 = std::min(c.x0, x);
                c.x1 = std::max(c.x1, x);
            }
            if (x % 8 == 0 && is_content(border, x, y, 8)) {
                c.y0 = std::min(c.y0, y);
                c.y1 = y;
            }
        }
    if (c.y1 < 0)
        return {border.width / 2, border.width / 2 + 1, border.height / 2, border.height / 2 + 1};
    return c;
}

inline int cropimg(unsigned char* image, int type, int height, int width, int stride, int dark,
                   int light, int step, int* x0, int* x1, int* y0, int* y1) {
    if (type < 1 || type > 4) return -1;
    const auto write_box = [=](const Content& box) {
        *x0 = box.x0;
        *x1 = box.x1;
        *y0 = box.y0;
        *y1 = box.y1;
        return 0;
    };
    if (height < 24 || width < 24) return write_box({0, width, 0, height});
    const int size = crop_pixel_size(type);
    Field grey(height, width);
    for_each_cell(grey, [&](int y, int x) {
        grey.at(y, x) = crop_grey_value(image + offset(y, stride, size * x), type);
    });
    Bits border(height, width);
    grow_border(grey, border, {dark, light, step});
    border = dilate_border(border, 8);
    frame_border(border, 8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int i = type == 4 ? 1 : 0; i < size; ++i)
                if (border.get(x, y)) image[offset(y, stride, size * x + i)] = 255;
    return write_box(content_of(border));
}

// What is met first on the way in from the edges: sums of up to three bytes of the pixels met.
struct FirstMet {
    const unsigned char* image;
    std::ptrdiff_t stride;
    int size;  // bytes of a pixel
    long long sums[3] = {0, 0, 0};
    long long count = 0;

    // Takes the pixel in when it is not white.
    bool meet(int x, int y) {
        const unsigned char* pixel = image + y * stride + static_cast<std::ptrdiff_t>(x) * size;
        if (std::all_of(pixel, pixel + size, [](unsigned char byte) { return byte == 255; }))
            return false;
        for (int i = 0; i < size; ++i) sums[i] += pixel[i];
        ++count;
        return true;
    }
    // From (x, y) on, `pixels` pixels.
    void scan(int x, int y, int dx, int dy, int pixels) {
        for (int i = 0; i < pixels; ++i)
            if (meet(x + i * dx, y + i * dy)) return;
    }
    void scan_columns(int height, int width) {
        for (int x = 0; x < width; ++x) {
            scan(x, 0, 0, 1, height);
            scan(x, height - 1, 0, -1, height);
        }
    }
};

inline int cropgrey_get(unsigned char* value, const unsigned char* grey, int height, int width,
                        int stride) {
    FirstMet met{grey, stride, 1};
    for (int y = 1; y <= height - 2; ++y) {
        met.scan(1, y, 1, 0, width - 2);
        met.scan(width - 1, y, -1, 0, width);
    }
    met.scan_columns(height, width);
    *value = static_cast<unsigned char>(met.count == 0 ? 255 : met.sums[0] / met.count);
    return 0;
}

inline int cropcolor_get(unsigned char* value, const unsigned char* colour, int height, int width,
                         int row_pixels) {
    FirstMet met{colour, std::ptrdiff_t{3} * row_pixels, 3};
    for (int y = 0; y < height; ++y) {
        met.scan(0, y, 1, 0, width);
        met.scan(width - 1, y, -1, 0, width);
    }
    met.scan_columns(height, width);
    for (int i = 0; i < 3; ++i)
        value[i] = static_cast<unsigned char>(met.count == 0 ? 0 : met.sums[i] / met.count);
    return 0;
}

inline int cropgrey_replace(int from, int to, unsigned char* grey, int height, int width,
                            int stride) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            unsigned char& pixel = grey[offset(y, stride, x)];
            if (pixel == static_cast<unsigned char>(from)) pixel = static_cast<unsigned char>(to);
        }
    return 0;
}

inline int cropcolor_replace(const unsigned char* from, const unsigned char* to,
                             unsigned char* colour, int height, int width, int row_pixels) {
    const std::ptrdiff_t stride = std::ptrdiff_t{3} * row_pixels;
    for (int y = 0; y < height; ++y)
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            unsigned char* pixel = colour + y * stride + 3 * x;
            if (std::equal(pixel, pixel + 3, from + 3 * x)) std::copy_n(to + 3 * x, 3, pixel);
        }
    return 0;
}

}  // namespace model

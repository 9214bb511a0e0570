// Grey preparation, global threshold and colour dropout, one pixel at a time.
//
// The source is delivered by the caller's reader (mode 0: top row, mode 1: next row) exactly as
// often and in the same order as by the library, so a reader that records its calls can compare the
// two. The caller keeps the region inside the source.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "pixels.h"
#include "undithering_model.h"

namespace model {

using RowReader = int (*)(void* ctx, int mode, unsigned char* row);
using Dropout = int (*)(void* context, const unsigned char* colour);

struct Region {
    int width;  // of a source row
    int x0, x1, y0, y1;
    int w() const { return x1 - x0; }
    int h() const { return y1 - y0; }
    bool valid() const {
        return x0 >= 0 && x1 >= 0 && y0 >= 0 && y1 >= 0 && width >= 1 && w() >= 1 && h() >= 1;
    }
};

inline int luminance(int red, int green, int blue) {
    return (19595 * red + 38470 * green + 7471 * blue) >> 16;
}

inline int pixel_luminance(int type, const unsigned char* pixel) {
    return type == 2 ? luminance(pixel[2], pixel[1], pixel[0])
                     : luminance(pixel[0], pixel[1], pixel[2]);
}

inline bool strongly_coloured(const unsigned char* pixel) {
    return std::max({pixel[0], pixel[1], pixel[2]}) - std::min({pixel[0], pixel[1], pixel[2]}) > 84;
}

// The rows of a region from the caller's reader, asked for in their order.
struct Rows {
    RowReader reader;
    void* ctx;
    std::vector<unsigned char> row;

    Rows(RowReader r, void* c, int bytes_per_pixel, const Region& at)
        : reader(r), ctx(c), row(offset(at.width, bytes_per_pixel, 0)) {
        reader(ctx, 0, row.data());
        for (int y = 0; y < at.y0; ++y) reader(ctx, 1, row.data());
    }
    const unsigned char* operator()(int k) {
        if (k > 0) reader(ctx, 1, row.data());
        return row.data();
    }
};

// Calls visit(grey, pixel) for every pixel of the region; `row_of(k)` is row y0 + k of the source.
template <typename RowOf, typename Visit>
void for_each_pixel(const Region& at, int bytes, Grey& grey, RowOf row_of, Visit visit) {
    for (int k = 0; k < at.h(); ++k) {
        const unsigned char* row = row_of(k);
        for (int j = 0; j < at.w(); ++j)
            visit(grey[offset(k, at.w(), j)], row + offset(at.x0 + j, bytes, 0));
    }
}

// The conversion and the clamping of strong light colours, each by a pass of its own where a reader
// delivers the rows; start() begins a pass and gives its row_of.
template <typename Start>
void grey_of_source(Start start, int type, const Region& at, Grey& grey) {
    const int bytes = type == 1 ? 1 : 3;
    for_each_pixel(at, bytes, grey, start(), [&](unsigned char& value, const unsigned char* pixel) {
        value = static_cast<unsigned char>(type == 1 ? *pixel : pixel_luminance(type, pixel));
    });
    if (type == 1) return;
    for_each_pixel(at, bytes, grey, start(), [](unsigned char& value, const unsigned char* pixel) {
        if (value > 200 && strongly_coloured(pixel)) value = 200;
    });
}

inline bool has_steep_edge(const Grey& grey, int h, int w) {
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int here = grey[offset(y, w, x)];
            if (x > 0 && std::abs(here - grey[offset(y, w, x - 1)]) > 112) return true;
            if (y > 0 && std::abs(here - grey[offset(y - 1, w, x)]) > 112) return true;
        }
    return false;
}

inline Grey smoothed(const Grey& grey, int h, int w, int p) {
    Grey result = grey;
    const int n = 1024 / (p + 8);
    for (int y = 1; y < h - 1; ++y)
        for (int x = 1; x < w - 1; ++x) {
            const int c = grey[offset(y, w, x)];
            int s = -c;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) s += grey[offset(y + dy, w, x + dx)];
            result[offset(y, w, x)] =
                static_cast<unsigned char>((n * s + 8 * (128 - n) * c) / 1024);
        }
    return result;
}

// `image_record` points at four words, of which the fourth is the address of the whole source.
inline int prepare_grey(int smooth, RowReader reader, void* ctx, const void* image_record, int type,
                        const Region& at, int resolution, int nb_threads, bool undithering,
                        Grey& grey) {
    if (!at.valid() || type < 1 || type > 3) return -1;
    grey.assign(offset(at.h(), at.w(), 0), 0);
    if (type == 3 && std::min(nb_threads, at.h() / 50) >= 2) {
        const auto* words = static_cast<const unsigned char* const*>(image_record);
        if (!words || !words[3]) return -1;
        const auto row_of = [&](int k) { return words[3] + offset(at.y0 + k, 3 * at.width, 0); };
        grey_of_source([&] { return row_of; }, type, at, grey);
    } else {
        grey_of_source([&] { return Rows(reader, ctx, type == 1 ? 1 : 3, at); }, type, at, grey);
    }
    if (at.h() == 1 || at.w() == 1 || smooth == 0 || !has_steep_edge(grey, at.h(), at.w()))
        return 0;
    const int p = 256 - smooth;
    if (undithering) grey = undithered(grey, at.h(), at.w(), std::max(1, p - 4), resolution);
    grey = smoothed(grey, at.h(), at.w(), p);
    return 0;
}

inline int bi_color2greybuf(unsigned char smooth, RowReader reader, void* ctx,
                            const void* image_record, int type, int width, int resolution, int x0,
                            int x1, int y0, int y1, unsigned char* out, int out_size,
                            int nb_threads, unsigned char undithering) {
    Grey grey;
    if (prepare_grey(smooth, reader, ctx, image_record, type, {width, x0, x1, y0, y1}, resolution,
                     nb_threads, undithering != 0, grey) != 0)
        return -1;
    if (out_size > 0) std::memcpy(out, grey.data(), static_cast<std::size_t>(out_size));
    return 0;
}

// The level that maximises the variance between the classes (Otsu 1979); 0 for a uniform picture.
inline int otsu_threshold(const Grey& grey) {
    double histogram[256] = {};
    for (unsigned char value : grey) histogram[value] += 1;
    double n = 0;
    double sum = 0;
    for (int i = 0; i < 256; ++i) {
        n += histogram[i];
        sum += i * histogram[i];
    }
    const double mean = n == 0 ? 0 : sum / n;
    double best = 0;
    int threshold = 0;
    double w0 = 0;
    double s0 = 0;
    for (int t = 0; t < 256; ++t) {
        w0 += histogram[t];
        s0 += t * histogram[t];
        const double w1 = n - w0;
        const double m0 = w0 == 0 ? 0 : s0 / w0;
        const double m1 = w1 == 0 ? 0 : (sum - s0) / w1;
        const double between = w0 * ((m0 - mean) * (m0 - mean)) + w1 * ((m1 - mean) * (m1 - mean));
        if (between > best) {
            best = between;
            threshold = t;
        }
    }
    return threshold;
}

inline int drop_colours(Dropout dropout, void* context, RowReader reader, void* ctx,
                        const Region& at, unsigned char* out) {
    if (!at.valid()) return -1;
    const int stride = word_stride(at.w());
    Rows rows(reader, ctx, 3, at);
    for (int k = 0; k < at.h(); ++k) {
        const unsigned char* row = rows(k);
        for (int j = 0; j < at.w(); ++j)
            if (get_bit(out, stride, j, k) && dropout(context, row + 3 * (at.x0 + j)) == 1)
                set_bit(out, stride, j, k, false);
    }
    return 0;
}

struct BiSettings {
    RowReader reader = nullptr;
    const unsigned char* image_record[4] = {};  // the fourth is the image pointer
    unsigned char smooth = 0;
    unsigned char thresh = 128;  // 0: automatic
    bool undithering = false;
    int nb_threads = 1;
    Dropout dropout = nullptr;
    void* dropout_context = nullptr;
};

inline int bi_thresh_do(BiSettings& settings, void* ctx, int type, int width, int x0, int x1,
                        int y0, int y1, unsigned char* out) {
    if (settings.smooth != 0)
        settings.smooth = static_cast<unsigned char>(std::min(settings.smooth + 2, 255));
    const Region at{width, x0, x1, y0, y1};
    Grey grey;
    if (prepare_grey(settings.smooth, settings.reader, ctx, settings.image_record, type, at, 300,
                     settings.nb_threads, settings.undithering, grey) != 0)
        return -1;
    const int stride = word_stride(at.w());
    const int threshold = settings.thresh == 0 ? otsu_threshold(grey) : settings.thresh;
    std::memset(out, 0, offset(at.h(), stride, 0));
    for (int k = 0; k < at.h(); ++k)
        for (int j = 0; j < at.w(); ++j)
            if (grey[offset(k, at.w(), j)] < threshold) set_bit(out, stride, j, k, true);
    if (type == 1 || !settings.dropout || !settings.dropout_context) return 0;
    return drop_colours(settings.dropout, settings.dropout_context, settings.reader, ctx, at, out);
}

}  // namespace model

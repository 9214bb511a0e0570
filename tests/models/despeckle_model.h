// Despeckle and the text component filter, one pixel at a time, with the arguments of the exported
// functions.
//
// Sizes count modulo 65,536, after negative ones are refused. What is empty then is done before
// anything else is looked at.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "component_list_model.h"
#include "pixels.h"
#include "runs_model.h"

namespace model {

using ComponentRule = int (*)(void* user, int height, int width, int area);
using Erases = std::function<bool(int height, int width, long long area)>;

inline Erases erases_up_to(int max_area) {
    return [max_area](int, int, long long area) { return area <= max_area; };
}

inline Erases erases_as_told(ComponentRule rule, void* user) {
    if (rule == nullptr) return {};
    return [rule, user](int height, int width, long long area) {
        return rule(user, height, width, static_cast<int>(area)) == 1;
    };
}

inline void despeckle_pass(unsigned char* image, int height, int width, int stride,
                           const Erases& erases) {
    visit_components(0, image, height, stride, 0, width, [&](const Component& c) {
        if (erases(c.y1 - c.y0, c.x1 - c.x0, c.area)) paint_component(c, image, stride, false);
        return true;
    });
}

inline std::vector<unsigned char> copy_of(const unsigned char* image, int height, int stride) {
    return {image, image + offset(height, stride, 0)};
}

// What remains after a pass shields what it touches when it is widened by `distance`.
inline void protected_pass(unsigned char* image, int height, int width, int stride, int distance,
                           const Erases& erases) {
    const std::vector<unsigned char> copy = copy_of(image, height, stride);
    const int n = std::clamp(distance, 0, 65536);
    despeckle_pass(image, height, width, stride, erases);
    h_dilate(n, image, stride, 0, width, 0, height);
    v_dilate(n, image, stride, 0, width, 0, height);
    or_buffers(image, copy.data(), height, stride);
    despeckle_pass(image, height, width, stride, erases);
    and_buffers(image, copy.data(), height, stride);
}

enum class Sizes { kRefused, kEmpty, kPage };

// Reduces the sizes of a page and says what is to be done with it.
inline Sizes take_sizes(const unsigned char* image, int& height, int& width, int& stride) {
    if (height < 0 || width < 0 || stride < 0) return Sizes::kRefused;
    height %= 65536;
    width %= 65536;
    stride %= 65536;
    if (height == 0 || width == 0) return Sizes::kEmpty;
    return image == nullptr || stride < ceil_div(width, 8) ? Sizes::kRefused : Sizes::kPage;
}

inline int despeckle(unsigned char* image, int height, int width, int stride, int distance,
                     const Erases& erases) {
    const Sizes sizes = take_sizes(image, height, width, stride);
    if (sizes == Sizes::kRefused) return -1;
    if (distance != 0 && (height == 0 || stride == 0)) return -1;
    if (sizes == Sizes::kEmpty) return 0;
    if (!erases) return -1;
    if (distance == 0)
        despeckle_pass(image, height, width, stride, erases);
    else
        protected_pass(image, height, width, stride, distance, erases);
    return 0;
}

inline int despeckl_c_mem(unsigned char* image, int height, int width, int stride, int max_area,
                          int distance) {
    return despeckle(image, height, width, stride, distance, erases_up_to(max_area));
}

inline int despeckl_mem(unsigned char* image, int height, int width, int stride, int max_area) {
    return despeckl_c_mem(image, height, width, stride, max_area, 0);
}

inline int despeckl_ccb_mem(unsigned char* image, int height, int width, int stride,
                            ComponentRule rule, void* user, int distance) {
    return despeckle(image, height, width, stride, distance, erases_as_told(rule, user));
}

inline int despeckl_cb_mem(unsigned char* image, int height, int width, int stride,
                           ComponentRule rule, void* user) {
    return despeckl_ccb_mem(image, height, width, stride, rule, user, 0);
}

// Whether more than 2 * density / 300 of the pixels of the window around (x0, y0) differ from their
// neighbours in the window, to the side as well as up or down.
inline bool is_busy(const Bits& page, int x0, int y0, int density) {
    const int left = std::max(x0 - 32, 0);
    const int right = std::min(x0 + 32, page.width - 1);
    const int top = std::max(y0 - 32, 0);
    const int bottom = std::min(y0 + 32, page.height - 1);
    int horizontal = 0;
    int vertical = 0;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            if (x > left && page.get(x, y) != page.get(x - 1, y)) ++horizontal;
            if (y > top && page.get(x, y) != page.get(x, y - 1)) ++vertical;
        }
    const int area = (right - left + 1) * (bottom - top + 1);
    const float share = 2.0F * static_cast<float>(density) / 300.0F;
    const float threshold = std::trunc(static_cast<float>(area) * share);
    return static_cast<float>(std::min(horizontal, vertical)) > threshold;
}

// All pixels of a busy block of 8 x 8 are busy, but only the first column of one whose right
// neighbour is not.
inline Bits busy_mask(const Bits& page, int density) {
    const int across = ceil_div(page.width, 8);
    Bits mask(page.height, 8 * across);
    for (int y0 = 0; y0 < page.height; y0 += 8)
        for (int block = 0; block < across; ++block) {
            if (!is_busy(page, 8 * block, y0, density)) continue;
            const bool last = block + 1 == across;
            const int columns = last || is_busy(page, 8 * block + 8, y0, density) ? 8 : 1;
            for (int y = y0; y < y0 + 8; ++y)
                for (int x = 8 * block; x < 8 * block + columns; ++x) mask.set(x, y, true);
        }
    return mask;
}

inline int despeckl_selective(unsigned char* image, int height, int width, int stride,
                              int /*extra*/, int max_area, int density) {
    const Sizes sizes = take_sizes(image, height, width, stride);
    if (sizes == Sizes::kRefused) return -1;
    if (sizes == Sizes::kEmpty) return 0;
    const Bits mask = busy_mask(unpack(image, height, width, stride), density);
    std::vector<unsigned char> busy = copy_of(image, height, stride);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < mask.width; ++x)
            if (!mask.get(x, y)) set_bit(busy.data(), stride, x, y, false);
    despeckle_pass(busy.data(), height, width, stride, erases_up_to(max_area));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < mask.width; ++x)
            if (mask.get(x, y)) set_bit(image, stride, x, y, get_bit(busy.data(), stride, x, y));
    return 0;
}

// The gaps are filled on the page as it is; only the pass on the components takes reduced sizes.
inline int pre_tva(unsigned char* image, int height, int width, int stride, short max_height,
                   short min_density) {
    if (height <= 0 || width < 0 || stride <= 0) return -1;
    if (image == nullptr || stride < ceil_div(width, 8)) return -1;
    const std::vector<unsigned char> copy = copy_of(image, height, stride);
    h_fill_gaps(2, image, stride, 0, width, 0, height);
    const Erases erases = [=](int h, int w, long long area) {
        return max_height < h || area < 1LL * w * min_density || area < 1LL * h * min_density;
    };
    if (despeckle(image, height, width, stride, 0, erases) != 0) return -1;
    and_buffers(image, copy.data(), height, stride);
    return 0;
}

}  // namespace model

// Line removal and underline extraction, one pixel at a time. The one-call functions take the
// arguments of the exported ones; the two operations of the handle take its settings.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "component_list_model.h"
#include "pixels.h"
#include "runs_model.h"

namespace model {

// A page with the zone in which the steps work; pages of one recipe combine byte by byte, also
// outside the zone. Steps with n < 1 do nothing.
struct LinePage {
    std::vector<unsigned char> bytes;
    int height, stride;
    int x0, x1, y0, y1;

    LinePage(const unsigned char* image, int h, int s, int left, int right, int top, int bottom)
        : bytes(image, image + offset(h, s, 0)),
          height(h),
          stride(s),
          x0(left),
          x1(right),
          y0(top),
          y1(bottom) {}

    using Step = int (*)(int, unsigned char*, int, int, int, int, int);
    void apply(Step step, int n) {
        step(std::clamp(n, 0, 1 << 24), bytes.data(), stride, x0, x1, y0, y1);
    }
    // Combines with another page, byte by byte.
    void apply(int (*combine)(unsigned char*, const unsigned char*, int, int), const LinePage& by) {
        combine(bytes.data(), by.bytes.data(), height, stride);
    }
    void write_to(unsigned char* image) const { std::copy(bytes.begin(), bytes.end(), image); }
};

// The steps along the lines and across them.
struct LineSteps {
    LinePage::Step fill_along, remove_along, dilate_along;
    LinePage::Step fill_across, remove_across, dilate_across;
};

inline constexpr LineSteps kHorizontalLines{h_fill_gaps, h_remove_short, h_dilate,
                                            v_fill_gaps, v_remove_short, v_dilate};
inline constexpr LineSteps kVerticalLines{v_fill_gaps, v_remove_short, v_dilate,
                                          h_fill_gaps, h_remove_short, h_dilate};

// The settings of one direction. Of the two clean distances the one across the lines is clean y of
// the horizontal and clean x of the vertical group.
struct LrmDirection {
    int min_length = 128;
    int max_thickness = 16;
    int max_gap = 2;
    int dilate = 1;
    int clean_along = 1;
    int clean_across = 1;
};

struct LrmSettings {
    unsigned char* image;
    int height, width, stride;
    int x0 = 0, x1 = width, y0 = 0, y1 = height;
    LrmDirection horz = {};
    LrmDirection vert = {};
};

// The vertical recipe widens its lines in the same order, across and then along them.
inline int lrm_do(const LrmSettings& lrm, bool horizontal) {
    if (lrm.height * lrm.stride == 0) return -1;
    const LrmDirection& set = horizontal ? lrm.horz : lrm.vert;
    const LineSteps& steps = horizontal ? kHorizontalLines : kVerticalLines;
    LinePage image(lrm.image, lrm.height, lrm.stride, lrm.x0, lrm.x1, lrm.y0, lrm.y1);
    LinePage lines = image;
    LinePage strokes = image;
    lines.apply(steps.fill_along, set.max_gap);
    lines.apply(steps.dilate_across, set.dilate);
    lines.apply(steps.remove_along, set.min_length);
    lines.apply(and_buffers, image);
    lines.apply(steps.dilate_across, set.clean_across);
    lines.apply(steps.dilate_along, set.clean_along);
    image.apply(and_not_buffers, lines);
    strokes.apply(steps.remove_across, set.max_thickness);
    image.apply(or_buffers, strokes);
    image.write_to(lrm.image);
    return 0;
}

template <const LineSteps& steps>
int linerm(unsigned char* pixels, int height, int width, int stride, int thickness, int min_length,
           int max_gap, int min_run, int join, int clean) {
    if (height == 0 || stride == 0) return -1;
    LinePage image(pixels, height, stride, 0, width, 0, height);
    const LinePage page = image;
    LinePage lines = page;
    lines.apply(steps.remove_along, min_run);
    lines.apply(steps.fill_across, join);
    lines.apply(steps.remove_across, thickness);
    lines.apply(xor_buffers, page);
    lines.apply(steps.fill_along, max_gap);
    lines.apply(steps.remove_along, min_length);
    lines.apply(steps.dilate_across, clean);
    LinePage thin = page;
    thin.apply(steps.remove_across, thickness);
    thin.apply(xor_buffers, page);
    lines.apply(and_buffers, thin);
    image.apply(and_not_buffers, lines);
    image.apply(steps.fill_across, thickness);
    image.apply(and_buffers, page);
    image.write_to(pixels);
    return 0;
}

inline constexpr auto linerm_h = linerm<kHorizontalLines>;
inline constexpr auto linerm_v = linerm<kVerticalLines>;

// At most this many lines are recorded. The line after that stays undecided, and with it, row for
// row, all components that come after it in the list: short ones stay in the target.
inline constexpr std::size_t kMostLines = 100000;

// The columns x0 <= x < x1 lie in the page.
inline int extract_underline(int ink_value, int vertical, int min_extent, int min_run,
                             int thickness, int dilate, const unsigned char* source,
                             unsigned char* target, int height, int stride, int x0, int x1) {
    if (height == 0 || stride == 0) return 0;
    const LineSteps& steps = vertical == 0 ? kHorizontalLines : kVerticalLines;
    const LinePage page(source, height, stride, 0, 8 * stride, 0, height);
    LinePage lines = page;
    lines.apply(steps.dilate_across, dilate);
    lines.apply(steps.remove_along, min_run);
    lines.apply(and_buffers, page);
    LinePage thick = lines;
    thick.apply(steps.remove_across, thickness);
    lines.apply(and_not_buffers, thick);
    lines.write_to(target);

    std::vector<std::pair<int, int>> extents;
    visit_components(ink_value, target, height, stride, x0, x1, [&](const Component& c) {
        const std::pair<int, int> extent =
            vertical == 0 ? std::pair{c.x0, c.x1} : std::pair{c.y0, c.y1};
        if (extent.second - extent.first <= min_extent) {
            paint_component(c, target, stride, ink_value != 0);
            return true;
        }
        if (extents.size() == kMostLines) return false;
        extents.push_back(extent);
        return true;
    });

    std::vector<bool> covered(static_cast<std::size_t>(vertical == 0 ? 8 * stride : height));
    for (const auto& [from, to] : extents)
        std::fill(covered.begin() + from, covered.begin() + to, true);
    return static_cast<int>(std::count(covered.begin(), covered.end(), true));
}

}  // namespace model

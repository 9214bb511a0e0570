#include "ink.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace tool {
namespace {

constexpr double kMostInk = 0.1;
constexpr double kChosenFor = 300; /* dots per inch */

/* Ink that is gone, not ink that was added elsewhere. */
std::int64_t count_lost(const Page& before, const Page& after, const InkWindow& window) {
    std::int64_t lost = 0;
    for (int y = window.y0; y < window.y1; ++y) {
        const unsigned char* old_row = before.row(y);
        const unsigned char* new_row = after.row(y);
        for (int i = window.x0 / 8; i < window.x1 / 8; ++i)
            lost += std::popcount(static_cast<unsigned char>(old_row[i] & ~new_row[i]));
    }
    return lost;
}

}  // namespace

InkWindow whole(const Page& page) {
    return {0, static_cast<int>(page.stride()) * 8, 0, page.height};
}

InkWindow inner_part(const Page& page) {
    const int side = page.width / 64 * 8;
    const int end = page.height / 8;
    return {side, page.width / 8 * 8 - side, end, page.height - end};
}

std::int64_t count_ink(const Page& page, const InkWindow& window) {
    std::int64_t ink = 0;
    for (int y = window.y0; y < window.y1; ++y) {
        const unsigned char* row = page.row(y);
        for (int i = window.x0 / 8; i < window.x1 / 8; ++i) ink += std::popcount(row[i]);
    }
    return ink;
}

Page copy_of(const Page& page) {
    Page copy;
    copy.kind = page.kind;
    copy.width = page.width;
    copy.height = page.height;
    copy.dpi = page.dpi;
    copy.bytes = allocate_pixels(page.size());
    std::memcpy(copy.bytes.get(), page.bytes.get(), page.size());
    return copy;
}

void require_bitonal(const Page& page, const char* step) {
    if (page.kind != PageKind::bitonal)
        throw StepError(std::string(step) + " takes bitonal pages, this one is " +
                        name_of(page.kind) + " (clean binarizes first)");
}

std::string percent(double share) {
    char text[32];
    std::snprintf(text, sizeof text, share < 0.0995 ? "%.1f %%" : "%.0f %%", 100 * share);
    return text;
}

Outcome remove_ink(Page& page, bool force, const InkWindow& window, const std::string& what,
                   const std::function<void(Page&)>& change) {
    const std::int64_t ink = count_ink(page, window);
    Page changed = copy_of(page);
    change(changed);
    const std::int64_t lost = count_lost(page, changed, window);
    const double share = ink > 0 ? static_cast<double>(lost) / static_cast<double>(ink) : 0;
    if (!force && share > kMostInk)
        return {false, "would take " + percent(share) + " of the ink (--force does it)", share};
    page = std::move(changed);
    return {true, what + ", " + percent(share) + " of the ink", share};
}

int scaled_length(const Page& page, double pixels_at_300) {
    return std::max(1, static_cast<int>(std::lround(pixels_at_300 * page.dpi.x / kChosenFor)));
}

int scaled_area(const Page& page, double pixels_at_300) {
    const double scale = page.dpi.x / kChosenFor * (page.dpi.y / kChosenFor);
    return static_cast<int>(std::min(1e9, std::round(pixels_at_300 * scale)));
}

}  // namespace tool

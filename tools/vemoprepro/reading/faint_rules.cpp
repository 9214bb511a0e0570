#include "reading/faint_rules.h"

#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <new>
#include <vector>

#include "page/ink.h"

namespace tool {
namespace {

// What is on one page and not on the other.
Page difference(const Page& page, const Page& other) {
    Page rest = copy_of(page);
    for (std::size_t i = 0; i < rest.size(); ++i) {
        rest.bytes[i] &= static_cast<unsigned char>(~other.bytes[i]);
    }
    return rest;
}

void add(Page& page, std::size_t index, int ink) {
    page.bytes[index] = static_cast<unsigned char>(page.bytes[index] | ink);
}

// A pixel more on every side. The edges of a rule lie a little otherwise on each page.
Page widened(const Page& ink) {
    const std::size_t stride = ink.stride();
    Page across = copy_of(ink);
    for (std::size_t i = 0; i < ink.size(); ++i) {
        const int pixels = ink.bytes[i];
        if (pixels == 0) continue;
        add(across, i, pixels << 1 | pixels >> 1);
        if (i % stride > 0) add(across, i - 1, (pixels & 0x80) != 0 ? 1 : 0);
        if (i % stride + 1 < stride) add(across, i + 1, pixels << 7);
    }
    Page wide = copy_of(across);
    for (std::size_t i = 0; i + stride < ink.size(); ++i) {
        add(wide, i, across.bytes[i + stride]);
        add(wide, i + stride, across.bytes[i]);
    }
    return wide;
}

struct Pixel {
    int x, y;
};

void take_neighbours(Page& rest, Pixel at, std::vector<Pixel>& found) {
    for (int y = std::max(0, at.y - 1); y <= std::min(rest.height - 1, at.y + 1); ++y) {
        for (int x = std::max(0, at.x - 1); x <= std::min(rest.width - 1, at.x + 1); ++x) {
            if (is_ink(rest, x, y)) {
                erase_ink(rest, x, y);
                found.push_back({x, y});
            }
        }
    }
}

// Takes off `rest` all that hangs together with the ink of the other page.
void take_connected(Page& rest, const Page& ink) {
    std::vector<Pixel> found;
    for (int y = 0; y < ink.height; ++y) {
        const unsigned char* row = ink.row(y);
        for (int x = 0; x < ink.width; ++x) {
            if (row[x / 8] == 0) {
                x |= 7;
            } else if (is_ink(ink, x, y)) {
                take_neighbours(rest, {x, y}, found);
            }
        }
    }
    while (!found.empty()) {
        const Pixel at = found.back();
        found.pop_back();
        take_neighbours(rest, at, found);
    }
}

}  // namespace

void remove_stubs_of_rules(Page& page, const Page& with_rules, const Page& without_rules,
                           int crumb) {
    const Page outside = difference(page, widened(difference(with_rules, without_rules)));
    Page letters = copy_of(outside);
    const int stride = static_cast<int>(letters.stride());
    if (despeckl_mem(letters.bytes.get(), letters.height, letters.width, stride, crumb) != 0) {
        throw std::bad_alloc();
    }
    Page stubs = difference(page, letters);
    take_connected(stubs, letters);
    // Crumbs that touch no rule are the dots of letters.
    Page dots = copy_of(stubs);
    take_connected(dots, difference(page, outside));
    page = difference(page, difference(stubs, dots));
}

}  // namespace tool

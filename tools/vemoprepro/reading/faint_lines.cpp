// The lines are the ink that the page with lines has and the page without lines has not, dilated by
// a pixel, since the edges of ink differ between binarizations. The page's ink outside of the lines
// is letters, except for crumbs of a few pixels. Letters reach into the lines, so the page's ink is
// flooded from them, and what the flood does not reach is a stub of a line or a crumb. Crumbs that
// touch no line are the dots of letters, and stay.
#include "reading/faint_lines.h"

#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <new>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
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

// The ink with its eight neighbours. Padding bits may be set; they are cleared where the result is
// subtracted from a page.
Page dilated(const Page& ink) {
    const std::size_t stride = ink.stride();
    Page across = copy_of(ink);
    for (std::size_t i = 0; i < ink.size(); ++i) {
        const int pixels = ink.bytes[i];
        if (pixels == 0) continue;
        add(across, i, pixels << 1 | pixels >> 1);
        if (i % stride > 0) add(across, i - 1, pixels >> 7);
        if (i % stride + 1 < stride) add(across, i + 1, pixels << 7);
    }
    Page wide = copy_of(across);
    for (std::size_t i = 0; i + stride < ink.size(); ++i) {
        add(wide, i, across.bytes[i + stride]);
        add(wide, i + stride, across.bytes[i]);
    }
    return wide;
}

Page without_crumbs(const Page& page, int crumb) {
    Page rest = copy_of(page);
    if (despeckl_mem(rest.bytes.get(), rest.height, rest.width, static_cast<int>(rest.stride()),
                     crumb) != 0) {
        throw std::bad_alloc();
    }
    return rest;
}

struct Pixel {
    int x, y;
};

// Moves the ink of the 3 x 3 pixels around a place from `rest` into `found`.
void take_neighbours(Page& rest, Pixel at, std::vector<Pixel>& found) {
    const int bottom = std::min(rest.height - 1, at.y + 1);
    const int right = std::min(rest.width - 1, at.x + 1);
    for (int y = std::max(0, at.y - 1); y <= bottom; ++y) {
        for (int x = std::max(0, at.x - 1); x <= right; ++x) {
            if (!is_ink(rest, x, y)) continue;
            erase_ink(rest, x, y);
            found.push_back({x, y});
        }
    }
}

// Takes off `rest` all its ink that is connected with the ink of the other page.
void take_connected(Page& rest, const Page& ink) {
    std::vector<Pixel> found;
    for (int y = 0; y < ink.height; ++y) {
        for (int x = next_pixel(ink, 0, y, true); x < ink.width;
             x = next_pixel(ink, x + 1, y, true)) {
            take_neighbours(rest, {x, y}, found);
        }
    }
    while (!found.empty()) {
        const Pixel at = found.back();
        found.pop_back();
        take_neighbours(rest, at, found);
    }
}

}  // namespace

void remove_line_stubs(Page& page, const Page& with_lines, const Page& without_lines, int crumb) {
    const Page lines = dilated(difference(with_lines, without_lines));
    const Page outside = difference(page, lines);
    const Page letters = without_crumbs(outside, crumb);
    Page stubs = difference(page, letters);
    take_connected(stubs, letters);
    Page dots = copy_of(stubs);
    take_connected(dots, difference(page, outside));
    page = difference(page, difference(stubs, dots));
}

}  // namespace tool::reading

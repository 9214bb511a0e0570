// The page is looked at in blocks. A block is printed when its greys lie far apart, noise smoothed
// out. It was painted when all of it, and of the blocks around it, is white on the other page:
// deep in a border there is nothing but the border's own dark, and the rim of the page lies within
// a block of what was left of it.
#include "reading/border_print.h"

#include <algorithm>

namespace tool::reading {
namespace {

constexpr int kBlock = 16;  // pixels a side
constexpr int kCell = 4;    // pixels a side of what noise is smoothed over
// Of the blocks with print so many may be painted: one in this.
constexpr int kPaintedInOne = 50;

int mean_of_cell(const Page& grey, int x0, int y0) {
    int sum = 0;
    for (int y = y0; y < y0 + kCell; ++y) {
        for (int x = x0; x < x0 + kCell; ++x) sum += grey.row(y)[x];
    }
    return sum / (kCell * kCell);
}

// The darkest cell is darker than the lightest by at least two fifths of that.
bool is_printed(const Page& grey, int x0, int y0) {
    int darkest = 255, lightest = 0;
    for (int y = y0; y < y0 + kBlock; y += kCell) {
        for (int x = x0; x < x0 + kBlock; x += kCell) {
            const int mean = mean_of_cell(grey, x, y);
            darkest = std::min(darkest, mean);
            lightest = std::max(lightest, mean);
        }
    }
    return (lightest - darkest) * 5 >= lightest * 2;
}

bool is_white_around(const Page& cropped, int x0, int y0) {
    for (int y = y0 - kBlock; y < y0 + 2 * kBlock; ++y) {
        const unsigned char* row = cropped.row(y);
        for (int x = x0 - kBlock; x < x0 + 2 * kBlock; ++x) {
            if (row[x] != 255) return false;
        }
    }
    return true;
}

}  // namespace

bool print_was_painted(const Page& grey, const Page& cropped) {
    int printed = 0, painted = 0;
    for (int y = kBlock; y + 2 * kBlock <= grey.height; y += kBlock) {
        for (int x = kBlock; x + 2 * kBlock <= grey.width; x += kBlock) {
            if (!is_printed(grey, x, y)) continue;
            ++printed;
            painted += is_white_around(cropped, x, y);
        }
    }
    return painted * kPaintedInOne > printed;
}

}  // namespace tool::reading

// The page is looked at in blocks. There is print in a block when its greys lie far apart once
// noise is smoothed out. A block is in the border when it and the eight blocks around it are all
// in the mask. The blocks around it are asked for because a border may reach a block's
// width into the page's own edge, where print is no mistake.
#include "reading/border_print.h"

#include <algorithm>

#include "page/ink.h"

namespace tool::reading {
namespace {

constexpr int kBlock = 16;  // pixels a side
constexpr int kCell = 4;    // pixels a side of what noise is smoothed over
// Print lies in the border when more than one block with print in so many does.
constexpr int kPrintedPerCovered = 50;

int mean_of_cell(const Page& grey, int x0, int y0) {
    int sum = 0;
    for (int y = y0; y < y0 + kCell; ++y) {
        for (int x = x0; x < x0 + kCell; ++x) sum += grey.row(y)[x];
    }
    return sum / (kCell * kCell);
}

// Whether the darkest cell of the block is darker than its lightest by two fifths of the lightest.
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

bool is_covered_around(const Page& mask, int x0, int y0) {
    for (int y = y0 - kBlock; y < y0 + 2 * kBlock; ++y) {
        if (next_pixel(mask, x0 - kBlock, y, false) < x0 + 2 * kBlock) return false;
    }
    return true;
}

}  // namespace

bool covers_print(const Page& mask, const Page& grey) {
    int printed = 0, covered = 0;
    for (int y = kBlock; y + 2 * kBlock <= grey.height; y += kBlock) {
        for (int x = kBlock; x + 2 * kBlock <= grey.width; x += kBlock) {
            if (!is_printed(grey, x, y)) continue;
            ++printed;
            covered += is_covered_around(mask, x, y);
        }
    }
    return covered * kPrintedPerCovered > printed;
}

}  // namespace tool::reading

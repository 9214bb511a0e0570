// The page is looked at in blocks. There is print in a block when its greys lie far apart once
// noise is smoothed out. A block was painted over when it and the eight blocks around it are all
// white on the other page. The blocks around it are asked for because a border may reach a block's
// width into the page's own edge, where print is no mistake.
#include "reading/border_print.h"

#include <algorithm>

namespace tool::reading {
namespace {

constexpr int kBlock = 16;  // pixels a side
constexpr int kCell = 4;    // pixels a side of what noise is smoothed over
// Print was painted over when more than one block with print in so many was.
constexpr int kPrintedPerPainted = 50;

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
    return painted * kPrintedPerPainted > printed;
}

}  // namespace tool::reading

// The contrast of a block is the difference between its lightest and its darkest 2 x 2 pixels, so
// that single pixels of noise do not count. Blocks are as wide as a few strokes, so that nearly
// every block with ink has paper in it, too.
#include "reading/ink_contrast.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "page/paper_scale.h"

namespace tool::reading {
namespace {

constexpr double kBlock = 16;  // pixels a side at 300 dots per inch
// A block with less contrast has nothing but the noise of the paper.
constexpr int kLeastContrast = 20;

// Reads a row and a column beyond the block as well.
int contrast_of_block(const Page& grey, int x0, int y0, int side) {
    int darkest = 4 * 255, lightest = 0;
    for (int y = y0; y < y0 + side; ++y) {
        const unsigned char* row = grey.row(y);
        const unsigned char* below = grey.row(y + 1);
        for (int x = x0; x < x0 + side; ++x) {
            const int sum = row[x] + row[x + 1] + below[x] + below[x + 1];
            darkest = std::min(darkest, sum);
            lightest = std::max(lightest, sum);
        }
    }
    return (lightest - darkest) / 4;
}

}  // namespace

int ink_contrast(const Page& grey) {
    const int side = std::max(2, scaled_length(grey, kBlock));
    std::vector<int> contrasts;
    for (int y = 0; y + side < grey.height; y += side) {
        for (int x = 0; x + side < grey.width; x += side) {
            const int contrast = contrast_of_block(grey, x, y, side);
            if (contrast >= kLeastContrast) contrasts.push_back(contrast);
        }
    }
    if (contrasts.empty()) return 0;
    const auto strong = contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
    std::nth_element(contrasts.begin(), strong, contrasts.end());
    return *strong;
}

}  // namespace tool::reading

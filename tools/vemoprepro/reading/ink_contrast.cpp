// The contrast of a block is the difference between its lightest and its darkest 2 x 2 pixels, so
// that single pixels of noise do not count. Blocks are as wide as a few strokes, so that nearly
// every block with ink has paper in it, too.
#include "reading/ink_contrast.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "page/paper_scale.h"

namespace tool::reading {
namespace {

constexpr double kBlock = 16;  // pixels a side at 300 dots per inch
// A block with less contrast has nothing but the noise of the paper.
constexpr int kLeastContrast = 20;

// The darkest and the lightest 2 x 2 pixels from a row of blocks, by columns.
struct Extremes {
    std::vector<std::int16_t> darkest, lightest;

    explicit Extremes(int width)
        : darkest(static_cast<std::size_t>(width)), lightest(darkest.size()) {}

    // Reads a row below the last one as well. The last column gets none.
    void find(const Page& grey, int top, int rows) {
        std::fill(darkest.begin(), darkest.end(), static_cast<std::int16_t>(4 * 255));
        std::fill(lightest.begin(), lightest.end(), static_cast<std::int16_t>(0));
        for (int y = top; y < top + rows; ++y) {
            take(grey.row(y), grey.row(y + 1), darkest.data(), lightest.data(), grey.width - 1);
        }
    }

  private:
    static void take(const unsigned char* __restrict row, const unsigned char* __restrict below,
                     std::int16_t* __restrict least, std::int16_t* __restrict most, int width) {
        for (int x = 0; x < width; ++x) {
            const auto sum =
                static_cast<std::int16_t>(row[x] + row[x + 1] + below[x] + below[x + 1]);
            least[x] = std::min(least[x], sum);
            most[x] = std::max(most[x], sum);
        }
    }
};

}  // namespace

int ink_contrast(const Page& grey) {
    const int side = std::max(2, scaled_length(grey, kBlock));
    std::vector<int> contrasts;
    Extremes of(grey.width);
    for (int y = 0; y + side < grey.height; y += side) {
        of.find(grey, y, side);
        for (int x = 0; x + side < grey.width; x += side) {
            const int contrast =
                (*std::max_element(&of.lightest[static_cast<std::size_t>(x)],
                                   &of.lightest[static_cast<std::size_t>(x + side)]) -
                 *std::min_element(&of.darkest[static_cast<std::size_t>(x)],
                                   &of.darkest[static_cast<std::size_t>(x + side)])) /
                4;
            if (contrast >= kLeastContrast) contrasts.push_back(contrast);
        }
    }
    if (contrasts.empty()) return 0;
    const auto strong = contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
    std::nth_element(contrasts.begin(), strong, contrasts.end());
    return *strong;
}

}  // namespace tool::reading

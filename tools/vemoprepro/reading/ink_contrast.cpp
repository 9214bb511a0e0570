// The contrast of a block is the difference between its lightest and its darkest 2 x 2 pixels, so
// that single pixels of noise do not count. Blocks are as wide as a few strokes, so that nearly
// every block with ink has paper in it, too.
#include "reading/ink_contrast.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
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

Contrasts contrasts_of(const Page& grey) {
    const int side = std::max(2, scaled_length(grey, kBlock));
    const int across = (grey.width - 1) / side, down = (grey.height - 1) / side;
    Contrasts contrasts{side, across, down, {}};
    contrasts.values.reserve(static_cast<std::size_t>(across) * static_cast<std::size_t>(down));
    Extremes columns(grey.width);
    for (int j = 0; j < down; ++j) {
        columns.find(grey, j * side, side);
        for (int i = 0; i < across; ++i) {
            const std::ptrdiff_t x = std::ptrdiff_t{i} * side;
            const auto lightest = columns.lightest.begin() + x;
            const auto darkest = columns.darkest.begin() + x;
            contrasts.values.push_back((*std::max_element(lightest, lightest + side) -
                                        *std::min_element(darkest, darkest + side)) /
                                       4);
        }
    }
    return contrasts;
}

int ink_contrast(const Contrasts& contrasts) {
    std::vector<int> of_ink;
    std::copy_if(contrasts.values.begin(), contrasts.values.end(), std::back_inserter(of_ink),
                 [](int contrast) { return contrast >= kLeastContrast; });
    if (of_ink.empty()) return 0;
    const auto strong = of_ink.begin() + static_cast<std::ptrdiff_t>(of_ink.size() * 9 / 10);
    std::nth_element(of_ink.begin(), strong, of_ink.end());
    return *strong;
}

}  // namespace tool::reading

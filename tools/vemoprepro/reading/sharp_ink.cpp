#include "reading/sharp_ink.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>
#include <vector>

#include "reading/binarization_settings.h"
#include "reading/grey_counts.h"

namespace tool::reading {
namespace {

// A block with less contrast, in greys, has no ink.
constexpr int kLeastContrast = 20;
// The strongest edge that is asked for, on a page of black ink.
constexpr int kStrongestEdge = 28;
// The page's print: its share of the contrast that nine tenths of the blocks with ink do not
// exceed, in per cent, and how many of these blocks tell how sharp it is.
constexpr int kPrint = 60;
constexpr std::size_t kBlocks = 200;
// What is so sharp, compared with it, is sharp. Blocks of print differ by less, and the other side
// shining through has seven tenths at most.
constexpr double kSharp = 0.8;
// One pixel in so many of a block is steeper than the block is said to be: single ones are noise.
constexpr int kSteeper = 64;

// The differences between greys two pixels apart, across or down, by Sobel's operator.
void differences_in_row(const unsigned char* __restrict above, const unsigned char* __restrict own,
                        const unsigned char* __restrict below, int width,
                        unsigned char* __restrict result) {
    for (int x = 0; x < width; ++x) {
        const int left = above[x] + 2 * own[x] + below[x];
        const int right = above[x + 2] + 2 * own[x + 2] + below[x + 2];
        const int up = above[x] + 2 * above[x + 1] + above[x + 2];
        const int down = below[x] + 2 * below[x + 1] + below[x + 2];
        result[x] =
            static_cast<unsigned char>(std::max(std::abs(right - left), std::abs(down - up)) / 4);
    }
}

}  // namespace

SharpInk::SharpInk(const Page& grey, const PageDepths& depths)
    : grey_(grey), depths_(depths), sharp_(depths.blocks.size()) {
    std::vector<int> contrasts;
    for (const BlockDepths& block : depths.blocks) {
        if (block.contrast >= kLeastContrast) contrasts.push_back(block.contrast);
    }
    if (contrasts.empty()) return;
    const auto strong = contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
    std::nth_element(contrasts.begin(), strong, contrasts.end());
    edge_ = edge_of_ink(*strong, kStrongestEdge);
    usual_ = usual_share(*strong * kPrint / 100);
}

bool SharpInk::is_sharp(int i, int j) {
    const std::size_t block = depths_.paper.index(i, j);
    std::optional<bool>& known = sharp_[block];
    if (!known) {
        const int steep = has_ink(block) ? steepness(i, j) : 0;
        known = steep >= edge_ && steep >= kSharp * usual_ * depths_.blocks[block].contrast;
    }
    return *known;
}

bool SharpInk::is_print(const Box& part, int reach) {
    const BlockGrid& grid = depths_.paper;
    int inside = 0, around = 0, sharp = 0;
    for_each_block(grid, part, [&](int i, int j) { inside += has_ink(grid.index(i, j)) ? 1 : 0; });
    if (inside == 0) return false;
    const Box wide{part.x - reach, part.y - reach, part.width + 2 * reach, part.height + 2 * reach};
    for_each_block(grid, wide, [&](int i, int j) {
        if (!has_ink(grid.index(i, j))) return;
        ++around;
        sharp += is_sharp(i, j) ? 1 : 0;
    });
    return 2 * sharp > around;
}

int SharpInk::steepness(int i, int j) const {
    const Box box = depths_.paper.box(grey_, i, j);
    const int x = std::max(box.x, 1), y = std::max(box.y, 1);
    const int width = std::min(box.x + box.width, grey_.width - 1) - x;
    const int height = std::min(box.y + box.height, grey_.height - 1) - y;
    if (width <= 0 || height <= 0) return 0;
    const auto stride = static_cast<std::size_t>(width);
    std::vector<unsigned char> sizes(stride * static_cast<std::size_t>(height));
    for (int k = 0; k < height; ++k) {
        differences_in_row(grey_.row(y + k - 1) + x - 1, grey_.row(y + k) + x - 1,
                           grey_.row(y + k + 1) + x - 1, width,
                           &sizes[static_cast<std::size_t>(k) * stride]);
    }
    const GreyCounts counts(sizes.data(), stride, width, height);
    return counts.reached_from_above(std::max(1, counts.counted() / kSteeper));
}

// The median over some of the blocks with so much contrast, of which there are some.
double SharpInk::usual_share(int contrast) const {
    std::vector<std::pair<int, int>> strong;
    const BlockGrid& grid = depths_.paper;
    for (int j = 0; j < grid.down; ++j) {
        for (int i = 0; i < grid.across; ++i) {
            if (depths_.blocks[grid.index(i, j)].contrast >= contrast) strong.emplace_back(i, j);
        }
    }
    std::vector<double> shares;
    for (std::size_t k = 0; k < strong.size(); k += strong.size() / kBlocks + 1) {
        const auto [i, j] = strong[k];
        shares.push_back(static_cast<double>(steepness(i, j)) /
                         depths_.blocks[grid.index(i, j)].contrast);
    }
    const auto middle = shares.begin() + static_cast<std::ptrdiff_t>(shares.size() / 2);
    std::nth_element(shares.begin(), middle, shares.end());
    return *middle;
}

}  // namespace tool::reading

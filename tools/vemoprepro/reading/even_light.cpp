// The grey of the paper is found block by block: it is the upper quartile of a block's greys, since
// letters darken less than three quarters of a block. Where ink fills a block all the same, its
// grey is replaced by a morphological closing over the blocks around it (a dilation, then an
// erosion); a mean over the same blocks then smooths the greys. Between the centres of the blocks
// the paper's grey is interpolated; beyond the outermost centres it is that of the nearest block.
#include "reading/even_light.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "page/paper_scale.h"

namespace tool::reading {
namespace {

// The side of a block in pixels at 300 dots per inch. It grows with the resolution between two
// limits: the quartile of fewer pixels is uncertain, and with more pixels the interpolation would
// not fit 32 bits.
constexpr double kBlock = 16;
constexpr int kNarrowestBlock = 16;
constexpr int kWidestBlock = 64;
// How many blocks to each side the closing and the mean look at. The closing takes ink of up to 7
// blocks, 9 mm, for paper that is not seen.
constexpr int kReach = 3;
// The grey that all paper becomes, and the darkest that is taken for paper.
constexpr int kPaper = 240;
constexpr int kDarkestPaper = 16;

using Neighbours = std::array<int, 2 * kReach + 1>;

// A grey per block.
struct BlockGrid {
    int side, across, down;
    std::vector<int> greys;

    explicit BlockGrid(const Page& page)
        : side(std::clamp(scaled_length(page, kBlock), kNarrowestBlock, kWidestBlock)),
          across((page.width + side - 1) / side),
          down((page.height + side - 1) / side),
          greys(static_cast<std::size_t>(across) * static_cast<std::size_t>(down)) {}

    std::size_t index(int i, int j) const {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(across) +
               static_cast<std::size_t>(i);
    }
    // The grey of the nearest block.
    int near(int i, int j) const {
        return greys[index(std::clamp(i, 0, across - 1), std::clamp(j, 0, down - 1))];
    }
};

int upper_quartile(const Page& grey, int x0, int x1, int y0, int y1) {
    std::array<int, 256> counts{};
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) ++counts[grey.row(y)[x]];
    }
    const int wanted = std::max(1, (x1 - x0) * (y1 - y0) / 4);  // a corner may be one pixel
    int level = 255;
    for (int seen = counts[255]; level > 0 && seen < wanted;) {
        seen += counts[static_cast<std::size_t>(--level)];
    }
    return level;
}

// Replaces every grey by fold(the greys within kReach of it in its row of blocks), and then in the
// same way along the columns.
template <class Fold>
void fold_around(BlockGrid& grid, Fold fold) {
    for (const bool in_row : {true, false}) {
        const BlockGrid before = grid;
        for (int j = 0; j < grid.down; ++j) {
            for (int i = 0; i < grid.across; ++i) {
                Neighbours around;
                for (int k = -kReach; k <= kReach; ++k) {
                    around[static_cast<std::size_t>(k + kReach)] =
                        in_row ? before.near(i + k, j) : before.near(i, j + k);
                }
                grid.greys[grid.index(i, j)] = fold(around);
            }
        }
    }
}

int largest(const Neighbours& greys) {
    return *std::max_element(greys.begin(), greys.end());
}

int smallest(const Neighbours& greys) {
    return *std::min_element(greys.begin(), greys.end());
}

int mean(const Neighbours& greys) {
    return std::accumulate(greys.begin(), greys.end(), 0) / static_cast<int>(greys.size());
}

BlockGrid paper_of(const Page& grey) {
    BlockGrid paper(grey);
    const int side = paper.side;
    for (int j = 0; j < paper.down; ++j) {
        for (int i = 0; i < paper.across; ++i) {
            paper.greys[paper.index(i, j)] =
                upper_quartile(grey, i * side, std::min(grey.width, (i + 1) * side), j * side,
                               std::min(grey.height, (j + 1) * side));
        }
    }
    fold_around(paper, largest);
    fold_around(paper, smallest);
    fold_around(paper, mean);
    return paper;
}

// Where a pixel lies between the centres of two blocks.
struct Between {
    int first;  // the block before it; -1 before the first centre
    int past;   // how far it lies past that block's centre: 0 .. 2 * side - 1, in half pixels
};

Between between_blocks(int x, int side) {
    const int from_block_before = 2 * x + 1 + side;  // of the centre of block -1, in half pixels
    return {from_block_before / (2 * side) - 1, from_block_before % (2 * side)};
}

// The paper's greys of a row of pixels at the centres of the blocks, from block -1 to the one
// behind the last, times 2 * side.
void interpolate_down(const BlockGrid& paper, int y, std::vector<int>& row_greys) {
    const int apart = 2 * paper.side;  // two centres, in half pixels
    const auto [j, past] = between_blocks(y, paper.side);
    for (int i = -1; i <= paper.across; ++i) {
        row_greys[static_cast<std::size_t>(i + 1)] =
            paper.near(i, j) * (apart - past) + paper.near(i, j + 1) * past;
    }
}

}  // namespace

void even_light(Page& grey) {
    const BlockGrid paper = paper_of(grey);
    const int apart = 2 * paper.side;
    std::vector<Between> places;
    for (int x = 0; x < grey.width; ++x) places.push_back(between_blocks(x, paper.side));
    std::vector<int> row_greys(static_cast<std::size_t>(paper.across) + 2);
    for (int y = 0; y < grey.height; ++y) {
        interpolate_down(paper, y, row_greys);
        unsigned char* row = grey.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const auto [i, past] = places[static_cast<std::size_t>(x)];
            const int* pair = &row_greys[static_cast<std::size_t>(i + 1)];
            const int level =
                std::max(pair[0] * (apart - past) + pair[1] * past, kDarkestPaper * apart * apart);
            const int evened = (row[x] * kPaper * apart * apart + level / 2) / level;
            row[x] = static_cast<unsigned char>(std::min(evened, 255));
        }
    }
}

}  // namespace tool::reading

#include "reading/block_grid.h"

#include <algorithm>
#include <numeric>

#include "page/paper_scale.h"

namespace tool::reading {
namespace {

// The side of a block in pixels at 300 dots per inch. It grows with the resolution between two
// limits: what is measured in fewer pixels is uncertain, and with more pixels the interpolation
// would not fit 32 bits.
constexpr double kBlock = 16;
constexpr int kNarrowestBlock = 16;
constexpr int kWidestBlock = 64;

}  // namespace

BlockGrid::BlockGrid(const Page& page)
    : side(std::clamp(scaled_length(page, kBlock), kNarrowestBlock, kWidestBlock)),
      across((page.width + side - 1) / side),
      down((page.height + side - 1) / side),
      values(static_cast<std::size_t>(across) * static_cast<std::size_t>(down)) {}

int BlockGrid::near(int i, int j) const {
    return at(std::clamp(i, 0, across - 1), std::clamp(j, 0, down - 1));
}

Box BlockGrid::box(const Page& page, int i, int j) const {
    const int x = i * side, y = j * side;
    return {x, y, std::min(side, page.width - x), std::min(side, page.height - y)};
}

void fold_around(BlockGrid& grid, int reach, int (*fold)(const Neighbours&)) {
    for (const bool in_row : {true, false}) {
        const BlockGrid before = grid;
        for (int j = 0; j < grid.down; ++j) {
            for (int i = 0; i < grid.across; ++i) {
                Neighbours around{};
                for (int k = -reach; k <= reach; ++k) {
                    around.values[around.count++] =
                        in_row ? before.near(i + k, j) : before.near(i, j + k);
                }
                grid.at(i, j) = fold(around);
            }
        }
    }
}

int largest(const Neighbours& values) {
    return *std::max_element(values.begin(), values.end());
}

int smallest(const Neighbours& values) {
    return *std::min_element(values.begin(), values.end());
}

int mean(const Neighbours& values) {
    return std::accumulate(values.begin(), values.end(), 0) / static_cast<int>(values.count);
}

BlockRows::BlockRows(const BlockGrid& grid, int page_width)
    : grid_(grid),
      width_(page_width),
      apart_(2 * grid.side),
      row_(static_cast<std::size_t>(grid.across) + 2) {}

void BlockRows::begin(int y) {
    const int from_block_before = 2 * y + 1 + grid_.side;  // of the centre of block -1
    const int j = from_block_before / apart_ - 1, past = from_block_before % apart_;
    const int* above = &grid_.values[grid_.index(0, std::max(j, 0))];
    const int* below = &grid_.values[grid_.index(0, std::min(j + 1, grid_.down - 1))];
    for (int i = 0; i < grid_.across; ++i) {
        row_[static_cast<std::size_t>(i + 1)] = above[i] * (apart_ - past) + below[i] * past;
    }
    row_.front() = row_[1];
    row_.back() = row_[row_.size() - 2];
}

}  // namespace tool::reading

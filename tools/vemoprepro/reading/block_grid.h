// A value for every block of a page, and what lies between the centres of blocks.
//
// Use: BlockGrid grid(page); set grid.at(i, j) for every block; fold_around(grid, largest) and the
// like; then BlockRows rows(grid), and for every row of pixels rows.begin(y) and its stretches.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "page/page.h"

namespace tool::reading {

// Up to how many blocks to each side fold_around() looks at.
constexpr int kReach = 3;

// The values of blocks side by side.
struct Neighbours {
    std::array<int, 2 * kReach + 1> values;
    std::size_t count;

    const int* begin() const { return values.data(); }
    const int* end() const { return values.data() + count; }
};

struct BlockGrid {
    int side, across, down;
    std::vector<int> values;

    // The side of a block follows the resolution of the page.
    explicit BlockGrid(const Page& page);

    std::size_t index(int i, int j) const {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(across) +
               static_cast<std::size_t>(i);
    }
    int& at(int i, int j) { return values[index(i, j)]; }
    int at(int i, int j) const { return values[index(i, j)]; }
    // The value of the nearest block.
    int near(int i, int j) const;
    // The pixels of a block: not all blocks at the right and the bottom edge of a page are whole.
    Box box(const Page& page, int i, int j) const;
};

// Replaces every value by fold(the values within reach of it in its row of blocks), and then in the
// same way along the columns.
void fold_around(BlockGrid& grid, int reach, int (*fold)(const Neighbours&));

int largest(const Neighbours& values);
int smallest(const Neighbours& values);
int mean(const Neighbours& values);

// The values between the centres of blocks, times scale(); beyond the outermost centres they are
// those of the nearest block. From centre to centre they change evenly.
class BlockRows {
  public:
    // Pixels of a row between two centres. The value of the first is `first`, and each one's is
    // `step` more than the one's before. At the right edge of the page there may be none.
    struct Stretch {
        int x, count, first, step;
    };

    BlockRows(const BlockGrid& grid, int page_width);

    int scale() const { return apart_ * apart_; }
    void begin(int y);
    // Side by side they fill the row.
    int stretches() const { return grid_.across + 1; }
    Stretch stretch(int k) const {
        const int start = std::max(0, k * grid_.side - (grid_.side + 1) / 2);
        const int end = std::min((k + 1) * grid_.side - (grid_.side + 1) / 2, width_);
        const int past = 2 * start + 1 + grid_.side - k * apart_;
        const int* pair = &row_[static_cast<std::size_t>(k)];
        return {start, end - start, pair[0] * (apart_ - past) + pair[1] * past,
                2 * (pair[1] - pair[0])};
    }

  private:
    const BlockGrid& grid_;
    int width_;
    int apart_;             // two centres, in half pixels
    std::vector<int> row_;  // at the centres, from block -1 to the one behind the last
};

}  // namespace tool::reading

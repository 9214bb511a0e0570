// A value for every block of a page, and what lies between the centres of blocks.
//
// Use: BlockGrid grid(page); set grid.at(i, j) for every block; fold_around(grid, largest) and the
// like; then BlockRows rows(grid), and for every row of pixels rows.begin(y) and rows.at(x).
#pragma once

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
// those of the nearest block.
class BlockRows {
  public:
    BlockRows(const BlockGrid& grid, int page_width);

    int scale() const { return apart_ * apart_; }
    void begin(int y);
    int at(int x) const {
        const auto [first, past] = places_[static_cast<std::size_t>(x)];
        const int* pair = &row_[static_cast<std::size_t>(first + 1)];
        return pair[0] * (apart_ - past) + pair[1] * past;
    }

    // The first pixel behind x that lies between other blocks: up to there values change evenly.
    int next_centre(int x) const {
        const int side = apart_ / 2;
        return (x + side - side / 2) / side * side + side / 2;
    }

  private:
    // Where a pixel lies between the centres of two blocks.
    struct Between {
        int first;  // the block before it; -1 before the first centre
        int past;   // how far it lies past that block's centre: 0 .. apart_ - 1, in half pixels
    };
    Between between(int x) const;

    const BlockGrid& grid_;
    int apart_;  // two centres, in half pixels
    std::vector<Between> places_;
    std::vector<int> row_;  // at the centres, from block -1 to the one behind the last
};

}  // namespace tool::reading

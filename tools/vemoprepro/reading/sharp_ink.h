// Where the ink of a grey page is as sharp as its print mostly is.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "page/page.h"
#include "reading/block_depths.h"

namespace tool::reading {

// Ink is sharp when its steepest edges are a large share of its contrast. Paper scatters the light
// that comes through it: so the other side shining through is less sharp than the page's own print,
// and so are stains and shades. What is looked at is remembered.
class SharpInk {
  public:
    SharpInk(const Page& grey, const PageDepths& depths);

    // Of a block by its index: whether it has contrast enough for ink with edges.
    bool has_ink(std::size_t block) const {
        return depths_.blocks[block].has_ink && depths_.blocks[block].contrast >= edge_;
    }
    bool is_sharp(int i, int j);

    // Whether there is ink in a part of the page, and more than half of the blocks with ink of
    // those up to `reach` pixels around it are sharp.
    bool is_print(const Box& part, int reach);

  private:
    int steepness(int i, int j) const;
    double usual_share(int contrast) const;

    const Page& grey_;
    const PageDepths& depths_;
    int edge_ = 256;    // the difference between greys that an edge has at least
    double usual_ = 0;  // the share of the contrast that the print's edges have
    std::vector<std::optional<bool>> sharp_;
};

// Calls visit(i, j) for the blocks that a part of the page touches, and at least for one.
template <class Visit>
void for_each_block(const BlockGrid& grid, const Box& part, Visit visit) {
    const auto block = [&](int pixel, int blocks) {
        return std::clamp(pixel / grid.side, 0, blocks - 1);
    };
    const int right = block(part.x + part.width - 1, grid.across);
    const int bottom = block(part.y + part.height - 1, grid.down);
    for (int j = block(part.y, grid.down); j <= bottom; ++j) {
        for (int i = block(part.x, grid.across); i <= right; ++i) visit(i, j);
    }
}

}  // namespace tool::reading

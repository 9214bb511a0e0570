// The busy regions of a bitonal page: where the colour changes often along the rows as well as
// along the columns, as in screened pictures.
//
// Use: const BusyRegions busy(page, density); if (busy.any()) { ... busy.row(y) ... }
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"

namespace cleaning {

class BusyRegions {
  public:
    // A block of 8 x 8 pixels is busy when two counts exceed 2 * density / 300 of the pixels of its
    // window, rounded down to a whole number: the pixels that differ from their right neighbour,
    // and those that differ from their lower one. The window has the pixels of the page in the 65 x
    // 65 around the block's first one; a neighbour counts when it lies in the window, too. A busy
    // block whose right neighbour is not busy is marked in its first column only, unless it ends
    // the row of blocks. Throws std::bad_alloc.
    BusyRegions(common::BitonalView page, std::int32_t density);

    bool any() const { return any_; }

    // A bitonal row of the page's width with 1-bits for the busy pixels of row y; padding bits may
    // be set. The rows of a block share it.
    const std::uint8_t* row(std::int32_t y) const {
        return mask_.data() + static_cast<std::size_t>(y / 8) * row_bytes_;
    }

  private:
    std::size_t row_bytes_;
    frame::Buffer<std::uint8_t> mask_;  // one row for eight of the page
    bool any_ = false;
};

}  // namespace cleaning

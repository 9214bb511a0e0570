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
    // A block of 8 x 8 pixels is busy when, in the window of 65 x 65 pixels around its first pixel,
    // cut by the page, more than 2 * density / 300 of the pixels (rounded down to whole pixels)
    // differ from their right neighbour, and as many from their lower one; neighbours are those in
    // the window. The last of several busy blocks in a row that does not end the row is busy in its
    // first column only. Throws std::bad_alloc.
    BusyRegions(common::BitonalView page, std::int32_t density);

    bool any() const { return any_; }

    // A bitonal row of the page's width, with 1-bits for the busy pixels of row y. The rows of a
    // block share it. Its padding bits may be set.
    const std::uint8_t* row(std::int32_t y) const {
        return mask_.data() + static_cast<std::size_t>(y / 8) * row_bytes_;
    }

  private:
    std::size_t row_bytes_;
    frame::Buffer<std::uint8_t> mask_;  // one row for eight of the page
    bool any_ = false;
};

}  // namespace cleaning

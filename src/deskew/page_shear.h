// How the bitonal deskew moves a page: rows right against the skew, then columns down along it.
//
// Use: PageShear shear(yskew, height, width); row y moves right by shear.row_shift(y), the column
// at x of the widened page down by shear.column_shift(x). The straight page has shear.size().
//
// Keep true: |yskew| <= kMaxSkew. Shifts are at least 0 for 0 <= y < height and for x up to and
// with the end of the straight page's last 32-bit word; there they are at most the growth of the
// page.
#pragma once

#include <cstdint>

#include "deskew/skew_unit.h"

namespace deskew {

class PageShear {
  public:
    PageShear(int yskew, std::int64_t height, std::int64_t width)
        : yskew_(yskew), size_(deskewed_size(height, width, yskew)) {
        if (yskew >= 0) right_ = size_.width - width;
        if (yskew < 0) down_ = size_.height - height;
    }

    int yskew() const { return yskew_; }
    Size size() const { return size_; }

    std::int64_t row_shift(std::int64_t y) const { return right_ - skew_drift(y, yskew_); }
    std::int64_t column_shift(std::int64_t x) const { return down_ + skew_drift(x, yskew_); }

  private:
    int yskew_;
    Size size_;               // of the straight page
    std::int64_t right_ = 0;  // pixels that row 0 moves right
    std::int64_t down_ = 0;   // rows that column 0 moves down
};

}  // namespace deskew

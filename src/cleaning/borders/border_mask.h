// The mask of a page's dark border: one bit per pixel, 1 = border.
//
// Use: BorderMask mask(height, width), then in this order
//
//     grow_border dilate mark_frame (content_of | row)*
//
// Rows are words of 64 pixels in the bit order of simd/pixels/border_rows.h; bits beyond the width
// are 0. Blank rows lie above and below, so that every row has a neighbour.
//
// Keep true: dilate() and mark_frame() only on pages of at least kSmallestCropped rows and columns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/rectangle.h"
#include "frame/buffer.h"
#include "simd/pixels/border_rows.h"

namespace cleaning {

// Pages of fewer rows or columns are not cropped.
constexpr std::int32_t kSmallestCropped = 24;

// How far the border is dilated, and how wide the frame is that counts as border in any case.
constexpr std::int32_t kBorderMargin = 8;

class BorderMask {
  public:
    // All 0. Throws std::bad_alloc.
    BorderMask(std::int32_t height, std::int32_t width);

    std::int32_t height() const { return height_; }
    std::int32_t width() const { return width_; }
    std::size_t words() const { return words_; }

    // Rows -1 .. height.
    std::uint64_t* row(std::ptrdiff_t y) { return bits_.data() + offset(y); }
    const std::uint64_t* row(std::ptrdiff_t y) const { return bits_.data() + offset(y); }

    bool marked(std::ptrdiff_t y, std::ptrdiff_t x) const {
        return (row(y)[x / 64] >> (x % 64) & 1) != 0;
    }
    void mark(std::ptrdiff_t y, std::ptrdiff_t x) {
        row(y)[x / 64] |= std::uint64_t{1} << (x % 64);
    }

    // Marks all pixels within kBorderMargin rows and columns of a mark. May be called once only.
    void dilate();

    // Marks the frame of the page: kBorderMargin columns on the left and one more than that on the
    // right, kBorderMargin rows at the top, and the kBorderMargin rows above the last one, which
    // stays as it is.
    void mark_frame();

  private:
    std::ptrdiff_t offset(std::ptrdiff_t y) const {
        return (y + first_row_) * static_cast<std::ptrdiff_t>(words_);
    }

    std::int32_t height_;
    std::int32_t width_;
    std::size_t words_;                         // in a row
    std::ptrdiff_t first_row_ = kBorderMargin;  // where row 0 lies among all rows
    frame::Buffer<std::uint64_t> bits_;
};

// The rectangle of the content. It begins and ends with a row that has eight pixels side by side
// without border, which would share a byte of a bitonal row, and with a column that has one pixel
// without border. A mask without such a row has two rows and columns in its centre for content.
common::Rectangle content_of(const BorderMask& mask);

}  // namespace cleaning

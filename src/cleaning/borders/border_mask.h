// The mask of a page's dark border: one bit per pixel, 1 = border.
//
// Use: BorderMask mask(height, width); grow_border(page, limits, mask); mask.widen(); mask.frame();
// then read it by content_of() and through row().
//
// Rows are words of 64 pixels as simd/border_rows.h has them; bits beyond the width are 0. Blank
// rows lie above and below, so that every row has a neighbour.
//
// Keep true: widen() and frame() only on pages of at least kSmallestCropped rows and columns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/buffer.h"
#include "simd/pixels/border_rows.h"

namespace cleaning {

// Pages of fewer rows or columns are not cropped.
constexpr std::int32_t kSmallestCropped = 24;

// How far the border is widened, and how wide the frame is that counts as border in any case.
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

    // Marks what is within kBorderMargin rows and columns of a mark. Once only.
    void widen();

    // Marks the frame: the kBorderMargin columns on the left and one more on the right, the
    // kBorderMargin rows at the top, and as many and one more at the bottom without the last row.
    void frame();

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

// The rectangle of the content; last column and row inclusive.
struct ContentBox {
    std::int32_t x0;
    std::int32_t x1;
    std::int32_t y0;
    std::int32_t y1;
};

// Rows count as content from the first to the last one with eight border-free pixels side by side
// in a byte of a bitonal row; columns, with a border-free pixel. Without such a row: a pixel in
// the centre.
ContentBox content_of(const BorderMask& mask);

}  // namespace cleaning

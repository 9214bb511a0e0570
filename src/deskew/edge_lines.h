// The image that the skew search looks at: strengths of the edges of a page in small cells.
//
// Cells lie in lines along the direction in which the search sums: columns of cells, top to bottom,
// to find the slope of text lines; rows of cells, left to right, to find that of stems. Rows of a
// page are often longer than what is printed on it, so only the leading part of the image that can
// hold anything but zeros is stored; the size of the whole image still decides which sums take part
// in a power.
//
// Use: lay out one EdgeLines per direction, and another for its halved form, over a block of
// storage() cells each; fill every stored cell through line(), then close_margins(), then halve()
// and search. Cell: std::uint8_t for bitonal pages, std::uint16_t for grey and colour.
//
// Keep true: the block outlives the image; no cell is above `largest`.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/blocks/sheared_sums.h"

namespace deskew {

struct LineShape {
    std::int64_t lines = 0;
    std::int64_t length = 0;  // cells of a line
};

template <class Cell>
class EdgeLines {
  public:
    // `stored` is at least 1 x 1 and within `whole`.
    EdgeLines(LineShape whole, LineShape stored, std::uint32_t largest);

    // Cells of memory that the image takes. Throws std::bad_alloc when they cannot be counted.
    std::size_t storage() const;

    // Sets where the image lies. Cells and margins hold nothing yet.
    void place(Cell* block) { first_ = block + simd::kLineMargin<Cell>; }

    const LineShape& whole() const { return whole_; }
    std::size_t lines() const { return lines_; }    // stored ones
    std::size_t length() const { return length_; }  // stored cells of a line
    std::size_t pitch() const { return pitch_; }    // cells from line to line
    std::uint32_t largest() const { return largest_; }
    simd::CellLines<Cell> cells() const { return {first_, lines_, length_, pitch_, largest_}; }

    // Room behind the stored cells of a line for simd::kLineMargin more, until close_margins().
    Cell* line(std::size_t index) { return first_ + index * pitch_; }
    const Cell* line(std::size_t index) const { return first_ + index * pitch_; }

    // Clears everything between the lines.
    void close_margins();

    // The shape of the image of the sums of 2 x 2 cells; what lies beyond an even size of the whole
    // image is dropped. Where less than the whole is stored, an even number of lines or cells is.
    EdgeLines half_shape() const;

    // Fills that image.
    void halve(EdgeLines& half) const;

  private:
    LineShape whole_;
    std::size_t lines_;
    std::size_t length_;
    std::size_t pitch_;
    std::uint32_t largest_;
    Cell* first_ = nullptr;
};

}  // namespace deskew

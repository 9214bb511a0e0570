// The image that the skew search looks at: strengths of the edges of the ink in small cells.
//
// Cells lie in lines along the direction in which the search sums: columns of cells, top to bottom,
// to find the slope of text lines; rows of cells, left to right, to find that of stems. Pages are
// often wider than their ink, so only the leading part of the image that can hold anything but
// zeros is stored; the size of the whole image still decides which sums take part in a power.
//
// Use: make one, fill every stored cell through line(), then close_margins(), then search.
//
// Keep true: no cell is above `largest`.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/buffer.h"
#include "simd/sheared_sums.h"

namespace deskew {

struct LineShape {
    std::int64_t lines = 0;
    std::int64_t length = 0;  // cells of a line
};

class EdgeLines {
  public:
    // `stored` is at least 1 x 1 and within `whole`. Cells and margins hold nothing yet.
    EdgeLines(LineShape whole, LineShape stored, std::uint32_t largest);

    const LineShape& whole() const { return whole_; }
    simd::CellLines cells() const {
        return {first_cell(cells_.data()), lines_, length_, pitch_, largest_};
    }
    std::size_t lines() const { return lines_; }    // stored ones
    std::size_t length() const { return length_; }  // stored cells of a line
    std::size_t pitch() const { return pitch_; }    // cells from line to line
    std::uint32_t largest() const { return largest_; }

    // Room behind the stored cells of a line for simd::kLineMargin more, until close_margins().
    std::uint16_t* line(std::size_t index) { return first_cell(cells_.data()) + index * pitch_; }
    const std::uint16_t* line(std::size_t index) const {
        return first_cell(cells_.data()) + index * pitch_;
    }

    // Clears everything between the lines.
    void close_margins();

  private:
    template <class Cell>
    static Cell* first_cell(Cell* block) {
        return block + simd::kLineMargin;
    }

    LineShape whole_;
    std::size_t lines_;
    std::size_t length_;
    std::size_t pitch_;
    std::uint32_t largest_;
    frame::Buffer<std::uint16_t> cells_;
};

// Sums of 2 x 2 cells; what lies beyond an even size of the whole image is dropped. An image whose
// stored part is smaller than the whole stores an even number there, or holds zeros in its last
// line or cell.
EdgeLines halved(const EdgeLines& edges);

}  // namespace deskew

// Rows of an image for kernels that read beyond the ends of a row (simd/pixels/padded_rows.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "binarization/row_ring.h"
#include "common/views.h"

namespace binarization {

// A row is read where it lies if reading beyond its ends stays inside the image, and is copied
// otherwise. What is beyond the ends is undefined, but readable.
class ReadableRows {
  public:
    // A copy is valid until `rows` rows on. Throws std::bad_alloc.
    ReadableRows(std::size_t rows, std::size_t width) : width_(width), copies_(rows, width) {}

    const std::uint8_t* row(const common::GreyView& grey, std::size_t y) {
        const std::uint8_t* row = grey.row(static_cast<std::ptrdiff_t>(y));
        const std::uint8_t* end = grey.row(grey.height - 1) + width_;
        const auto behind = static_cast<std::size_t>(end - row);
        if (y > 0 && behind >= whole_words(width_) * 64 + simd::kRowPad) return row;
        std::memcpy(copies_.row(y), row, width_);
        return copies_.row(y);
    }

  private:
    std::size_t width_;
    PaddedRows copies_;
};

}  // namespace binarization

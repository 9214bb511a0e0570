// A few rows of bytes with room before and behind each, as the vector kernels of the gradient
// method want them (simd/gradient_rows.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/buffer.h"
#include "simd/gradient_rows.h"

namespace binarization {

// Pixels of a row rounded up to whole words of 64.
constexpr std::size_t whole_words(std::size_t pixels) {
    return (pixels + 63) / 64;
}

// Rows are taken modulo their number: row(y) of a three-row ring holds row y until row y + 3.
class PaddedRows {
  public:
    // Zero everywhere. Throws std::bad_alloc.
    PaddedRows(std::size_t rows, std::size_t width)
        : rows_(rows),
          pitch_(whole_words(width) * 64 + 2 * simd::kRowPad),
          bytes_(frame::Buffer<std::uint8_t>::zeroed(rows * pitch_)) {}

    std::uint8_t* row(std::size_t y) { return bytes_.data() + y % rows_ * pitch_ + simd::kRowPad; }
    const std::uint8_t* row(std::size_t y) const {
        return bytes_.data() + y % rows_ * pitch_ + simd::kRowPad;
    }

    std::size_t pitch() const { return pitch_; }

  private:
    std::size_t rows_;
    std::size_t pitch_;
    frame::Buffer<std::uint8_t> bytes_;
};

// A row with its first and last pixel repeated once beyond its ends.
inline void copy_with_ends(const std::uint8_t* from, std::size_t width, std::uint8_t* row) {
    std::memcpy(row, from, width);
    row[-1] = row[0];
    row[width] = row[width - 1];
}

}  // namespace binarization

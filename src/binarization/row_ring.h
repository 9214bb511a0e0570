// A ring of rows: what a pass down an image has made last, for the steps that look a few rows back.
//
// Use: RowRing<T> rings(rows, length); rings.row(y) holds row y until row y + rows() is written
// there. PaddedRows hold bytes as the vector kernels want them (simd/pixels/padded_rows.h), BitRows
// one bit a pixel.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/buffer.h"
#include "simd/pixels/padded_rows.h"

namespace binarization {

// Words of 64 that hold a bit for each pixel.
constexpr std::size_t whole_words(std::size_t pixels) {
    return (pixels + 63) / 64;
}

// kPad values lie before each row and behind it; those behind a row are before the next one too.
template <class T, std::size_t kPad = 0>
class RowRing {
  public:
    // At least `rows` rows, 0 everywhere. Throws std::bad_alloc.
    RowRing(std::size_t rows, std::size_t length)
        : last_(std::bit_ceil(rows) - 1),
          length_(length),
          values_(frame::Buffer<T>::zeroed((last_ + 1) * (length + kPad) + kPad)) {}

    T* row(std::size_t y) { return values_.data() + (y & last_) * (length_ + kPad) + kPad; }
    const T* row(std::size_t y) const {
        return values_.data() + (y & last_) * (length_ + kPad) + kPad;
    }

    std::size_t rows() const { return last_ + 1; }
    std::size_t length() const { return length_; }

  private:
    std::size_t last_;
    std::size_t length_;
    frame::Buffer<T> values_;
};

class PaddedRows : public RowRing<std::uint8_t, simd::kRowPad> {
  public:
    // width: pixels, or blocks.
    PaddedRows(std::size_t rows, std::size_t width) : RowRing(rows, 64 * whole_words(width)) {}
};

// Pixel 0 of a row is the least significant bit of its first word.
class BitRows : public RowRing<std::uint64_t> {
  public:
    BitRows(std::size_t rows, std::size_t width) : RowRing(rows, whole_words(width)) {}

    std::size_t words() const { return length(); }
};

}  // namespace binarization

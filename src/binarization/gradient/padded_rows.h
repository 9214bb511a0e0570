// A few rows of bytes with room before and behind each, as the vector kernels of the gradient
// method want them (simd/gradient_rows.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/views.h"
#include "frame/buffer.h"
#include "simd/pixels/padded_rows.h"

namespace binarization {

// Pixels of a row rounded up to whole words of 64.
constexpr std::size_t whole_words(std::size_t pixels) {
    return (pixels + 63) / 64;
}

// Rows are taken modulo their number: row(y) of a three-row ring holds row y until row y + 3.
class PaddedRows {
  public:
    // Zero everywhere. Throws std::bad_alloc. What is behind a row is before the next one too.
    PaddedRows(std::size_t rows, std::size_t width) : PaddedRows(rows, width, kUninitialized) {
        std::memset(bytes_.data(), 0, bytes_.size());
    }

    // For rows that are written before they are read.
    enum Uninitialized { kUninitialized };
    PaddedRows(std::size_t rows, std::size_t width, Uninitialized)
        : rows_(rows),
          pitch_(whole_words(width) * 64 + simd::kRowPad),
          bytes_(rows * pitch_ + 2 * simd::kRowPad) {}

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

// Rows of an image as kernels want them: where they lie when reading beyond their ends stays inside
// the image, copied otherwise. What is beyond the ends is undefined, but readable.
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

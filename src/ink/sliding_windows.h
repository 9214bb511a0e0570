// Sliding windows over the pixels of a zone: each pixel becomes the OR (is there ink?) or the AND
// (is all ink?) of the pixels of a window that begins or ends at it.
//
// The pixels lie in a string of words (PixelString). A window of `length` pixels is built by
// doubling, in place: pixels combined with those 1, 2, 4, ... away.
//
// A zone enters the string in parts: batches of rows (row_batches.h) or strips of columns
// (column_strips.h), with enough white around them that windows which leave the zone see white.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/buffer.h"
#include "simd/bits/bit_windows.h"

namespace ink {

// Words of pixels on a cache line, with white words before and behind them.
class PixelString {
  public:
    // The words are uninitialised. Throws std::bad_alloc.
    PixelString(std::size_t count, std::size_t margin) : block_(count + 2 * margin + kLineWords) {
        const auto address = reinterpret_cast<std::uintptr_t>(block_.data() + margin);
        const std::size_t beyond = address / sizeof(std::uint64_t) % kLineWords;
        words_ = block_.data() + margin + (kLineWords - beyond) % kLineWords;
        std::memset(words_ - margin, 0, margin * sizeof(std::uint64_t));
        std::memset(words_ + count, 0, margin * sizeof(std::uint64_t));
    }

    std::uint64_t* words() const { return words_; }
    std::uint8_t* bytes_of_word(std::size_t i) const {
        return reinterpret_cast<std::uint8_t*>(words_ + i);
    }

  private:
    static constexpr std::size_t kLineWords = 8;

    frame::Buffer<std::uint64_t> block_;
    std::uint64_t* words_;
};

using CombineStep = bool (*)(std::uint64_t* words, std::size_t count, std::size_t pixels);

// Windows of `length` pixels that stand `distance` pixels of the string apart. False when no ink is
// left.
template <CombineStep kCombine>
bool slide_window(std::uint64_t* words, std::size_t count, std::size_t length,
                  std::size_t distance) {
    for (std::size_t have = 1; have < length;) {
        const std::size_t step = std::min(have, length - have);
        if (!kCombine(words, count, step * distance)) return false;
        have += step;
    }
    return true;
}

}  // namespace ink

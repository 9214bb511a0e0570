// Sliding windows over the pixels of a zone: what the run morphology of rows and of columns shares.
// A pixel becomes the OR (is there ink?) or the AND (is all ink?) of the pixels of a window that
// begins or ends at it.
//
//   dilate        OR of n + 1 pixels before, then of n + 1 behind
//   erode         AND of n + 1 pixels before, then behind; outside the zone is white
//   remove_short  AND of n pixels behind: where runs of n start; OR of n pixels before: those runs
//   fill_gaps     OR of n pixels before, then AND of n behind, which closes gaps below n
//
// A window of n pixels is built by doubling: pixels combined with those 1, 2, 4, ... away, in
// place.
//
// Use: a class Parts that copies the zone part by part into a PixelString, with white around it,
// and back; slide_windows<simd::or_preceding, simd::or_following>(logger, Parts(...), n + 1).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cleaning/try_buffer.h"
#include "diag/logger.h"
#include "simd/bit_windows.h"

namespace cleaning {

// The bytes of a row that hold a zone's columns. The zone's pixels in the first and in the last of
// them are those of the masks; a single byte has both.
struct ZoneBytes {
    ZoneBytes(std::int32_t x0, std::int32_t x1)
        : first(static_cast<std::size_t>(x0 / 8)),
          size(static_cast<std::size_t>((std::int64_t{x1} + 7) / 8) - first),
          head(static_cast<std::uint8_t>(0xFF >> (x0 % 8))),
          tail(static_cast<std::uint8_t>(0xFF << (7 - (x1 - 1) % 8))) {
        if (size == 1) head = tail = head & tail;
    }

    std::size_t first;
    std::size_t size;
    std::uint8_t head;
    std::uint8_t tail;
};

// Replaces the bits of a mask.
inline void blend(std::uint8_t& byte, std::uint8_t value, std::uint8_t mask) {
    byte = static_cast<std::uint8_t>((byte & ~mask) | (value & mask));
}

// Words of pixels with white words before and behind them, on a cache line.
class PixelString {
  public:
    PixelString(std::size_t count, std::size_t margin) : block_(count + 2 * margin + kLineWords) {
        if (!block_) return;
        const auto address = reinterpret_cast<std::uintptr_t>(block_.data() + margin);
        const std::size_t beyond = address / sizeof(std::uint64_t) % kLineWords;
        words_ = block_.data() + margin + (kLineWords - beyond) % kLineWords;
        std::memset(words_ - margin, 0, margin * sizeof(std::uint64_t));
        std::memset(words_ + count, 0, margin * sizeof(std::uint64_t));
    }

    explicit operator bool() const { return static_cast<bool>(block_); }
    std::uint64_t* words() const { return words_; }

  private:
    static constexpr std::size_t kLineWords = 8;

    TryBuffer<std::uint64_t> block_;
    std::uint64_t* words_ = nullptr;
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

// Windows of `length` pixels, then windows of the same length in the other direction, on every
// part. Returns 0, or -1 with a record in the log when the parts have no memory.
template <CombineStep kFirst, CombineStep kSecond, class Parts>
std::int32_t slide_windows(diag::LoggerSlot logger, Parts&& parts, std::size_t length) {
    if (!parts) {
        diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kListGrowthCode,
                     diag::kNoMemoryText);
        return -1;
    }
    parts.for_each([length](std::uint64_t* words, std::size_t count, std::size_t distance) {
        return slide_window<kFirst>(words, count, length, distance) &&
               slide_window<kSecond>(words, count, length, distance);
    });
    return 0;
}

inline bool nothing_to_do(std::int32_t n, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                          std::int32_t y1) {
    return n <= 0 || x0 >= x1 || y0 >= y1;
}

// n, or one more than the zone has pixels along the runs: beyond that no length makes a difference.
inline std::size_t effective_length(std::int32_t n, std::int32_t from, std::int32_t to) {
    return static_cast<std::size_t>(std::min<std::int64_t>(n, std::int64_t{to} - from + 1));
}

}  // namespace cleaning

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
// Use: a class Parts(zone, longest window) that copies the zone part by part into a PixelString,
// with white around it, and back, and that knows the zone's extent() along the runs;
// dilate<Parts>(logger, n, zone).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "diag/logger.h"
#include "ink/try_buffer.h"
#include "simd/bits/bit_windows.h"

namespace ink {

// A part of an image: columns x0 <= x < x1, rows y0 <= y < y1.
struct Zone {
    std::uint8_t* image;
    std::int32_t stride;
    std::int32_t x0;
    std::int32_t x1;
    std::int32_t y0;
    std::int32_t y1;

    bool empty() const { return x0 >= x1 || y0 >= y1; }
    // Of zones that are not empty.
    std::size_t width() const { return static_cast<std::size_t>(std::int64_t{x1} - x0); }
    std::size_t height() const { return static_cast<std::size_t>(std::int64_t{y1} - y0); }
    std::uint8_t* row() const { return image + std::ptrdiff_t{y0} * stride; }
};

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

// Windows of n + `own` pixels, then windows of the same length in the other direction, on every
// part of the zone. Returns 0, or -1 with a record in the log when the parts have no memory.
template <class Parts, CombineStep kFirst, CombineStep kSecond>
std::int32_t slide_windows(diag::LoggerSlot logger, std::int32_t n, std::size_t own,
                           const Zone& zone) {
    if (n <= 0 || zone.empty()) return 0;
    // Beyond one more than the zone has pixels along the runs no length makes a difference.
    const std::size_t length = std::min(static_cast<std::size_t>(n), Parts::extent(zone) + 1) + own;
    Parts parts(zone, length);
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

// A gap, like a run, is at least a pixel long: none is shorter than 1.
template <class Parts>
std::int32_t fill_gaps(diag::LoggerSlot logger, std::int32_t n, const Zone& zone) {
    if (n == 1) return 0;
    return slide_windows<Parts, simd::or_preceding, simd::and_following>(logger, n, 0, zone);
}

template <class Parts>
std::int32_t remove_short(diag::LoggerSlot logger, std::int32_t n, const Zone& zone) {
    if (n == 1) return 0;
    return slide_windows<Parts, simd::and_following, simd::or_preceding>(logger, n, 0, zone);
}

template <class Parts>
std::int32_t dilate(diag::LoggerSlot logger, std::int32_t n, const Zone& zone) {
    return slide_windows<Parts, simd::or_preceding, simd::or_following>(logger, n, 1, zone);
}

template <class Parts>
std::int32_t erode(diag::LoggerSlot logger, std::int32_t n, const Zone& zone) {
    return slide_windows<Parts, simd::and_preceding, simd::and_following>(logger, n, 1, zone);
}

}  // namespace ink

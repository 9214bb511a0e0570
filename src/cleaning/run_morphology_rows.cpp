// Along rows every operation is a pair of sliding windows over pixels, a batch of rows at a time: a
// pixel becomes the OR (is there ink?) or the AND (is all ink?) of the pixels of a window that
// begins or ends at it.
//
//   dilate        OR of n + 1 pixels before, then of n + 1 behind
//   erode         AND of n + 1 pixels before, then behind; outside the zone is white
//   remove_short  AND of n pixels behind: where runs of n start; OR of n pixels before: those runs
//   fill_gaps     OR of n pixels before, then AND of n behind, which closes gaps below n
//
// A window of n pixels is built by doubling: pixels combined with those 1, 2, 4, ... away, in
// place. The rows of a batch stand in one string of words, a gap of more than n white pixels behind
// each: windows that reach beyond a row meet white, and what grows beyond it ends before the next.
// The string fits into the fastest cache. All operations leave a white batch as it is.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "cleaning/run_morphology.h"
#include "cleaning/try_buffer.h"
#include "simd/bit_windows.h"

namespace cleaning {
namespace {

constexpr std::size_t kBatchWords = 1024;

constexpr std::size_t rounded_up(std::size_t words) {
    return (words + simd::kWindowWords - 1) / simd::kWindowWords * simd::kWindowWords;
}

// The rows of a zone in batches of words.
class RowBatches {
  public:
    // Windows reach up to `reach` pixels beyond a row.
    RowBatches(std::uint8_t* image, std::int32_t stride, std::int32_t x0, std::int32_t x1,
               std::int32_t y0, std::int32_t y1, std::size_t reach)
        : row_(image + std::ptrdiff_t{y0} * stride + x0 / 8),
          stride_(stride),
          rows_left_(static_cast<std::size_t>(std::int64_t{y1} - y0)),
          row_bytes_(static_cast<std::size_t>((std::int64_t{x1} + 7) / 8 - x0 / 8)),
          head_(static_cast<std::uint8_t>(0xFF >> (x0 % 8))),
          tail_(static_cast<std::uint8_t>(0xFF << (7 - (x1 - 1) % 8))),
          pitch_((row_bytes_ + 7) / 8 + reach / 64 + 1),
          rows_(std::clamp<std::size_t>(kBatchWords / pitch_, 1, rows_left_)),
          count_(rounded_up(rows_ * pitch_)),
          margin_(simd::margin_words(reach)),
          block_(count_ + 2 * margin_) {
        if (row_bytes_ == 1) head_ = tail_ = head_ & tail_;
        if (!block_) return;
        std::memset(block_.data(), 0, margin_ * sizeof(std::uint64_t));
        std::memset(words() + count_, 0, margin_ * sizeof(std::uint64_t));
    }

    explicit operator bool() const { return static_cast<bool>(block_); }

    // Calls change(words, number of words) for all batches that are not white. It returns false
    // when they have become white, whatever they hold.
    template <class Change>
    void for_each(Change change) {
        for (; rows_left_ > 0;
             rows_left_ -= rows_, row_ += static_cast<std::ptrdiff_t>(rows_) * stride_) {
            rows_ = std::min(rows_, rows_left_);
            count_ = rounded_up(rows_ * pitch_);
            load();
            if (!simd::swap_word_bytes(words(), count_)) continue;
            if (change(words(), count_)) {
                simd::swap_word_bytes(words(), count_);
            } else {
                std::memset(words(), 0, count_ * sizeof(std::uint64_t));
            }
            store();
        }
    }

  private:
    std::uint64_t* words() const { return block_.data() + margin_; }
    std::uint8_t* batch_row(std::size_t i) const {
        return reinterpret_cast<std::uint8_t*>(words() + i * pitch_);
    }
    std::uint8_t* image_row(std::size_t i) const {
        return row_ + static_cast<std::ptrdiff_t>(i) * stride_;
    }

    void load() {
        for (std::size_t i = 0; i < rows_; ++i) {
            std::uint8_t* const row = batch_row(i);
            std::memcpy(row, image_row(i), row_bytes_);
            std::memset(row + row_bytes_, 0, pitch_ * sizeof(std::uint64_t) - row_bytes_);
            row[0] &= head_;
            row[row_bytes_ - 1] &= tail_;
        }
        const std::size_t used = rows_ * pitch_;
        std::memset(words() + used, 0, (count_ - used) * sizeof(std::uint64_t));
    }

    void store() const {
        const auto blend = [](std::uint8_t old, std::uint8_t value, std::uint8_t mask) {
            return static_cast<std::uint8_t>((old & ~mask) | (value & mask));
        };
        const std::size_t last = row_bytes_ - 1;
        for (std::size_t i = 0; i < rows_; ++i) {
            const std::uint8_t* const from = batch_row(i);
            std::uint8_t* const to = image_row(i);
            const std::uint8_t end = blend(to[last], from[last], tail_);
            to[0] = blend(to[0], from[0], head_);
            if (last == 0) continue;
            std::memcpy(to + 1, from + 1, last - 1);
            to[last] = end;
        }
    }

    std::uint8_t* row_;  // the zone's first byte in the batch's first row
    std::ptrdiff_t stride_;
    std::size_t rows_left_;
    std::size_t row_bytes_;
    std::uint8_t head_;  // the zone's pixels in the first and the last byte of a row
    std::uint8_t tail_;
    std::size_t pitch_;  // words from row to row
    std::size_t rows_;
    std::size_t count_;  // words of a batch
    std::size_t margin_;
    TryBuffer<std::uint64_t> block_;
};

using Combine = bool (*)(std::uint64_t*, std::size_t, std::size_t);

// Windows of `length` pixels. False when no ink is left.
template <Combine kCombine>
bool slide_window(std::uint64_t* words, std::size_t count, std::size_t length) {
    for (std::size_t have = 1; have < length;) {
        const std::size_t step = std::min(have, length - have);
        if (!kCombine(words, count, step)) return false;
        have += step;
    }
    return true;
}

// Combines with windows of `length` pixels, then of the same number in the other direction.
template <Combine kFirst, Combine kSecond>
std::int32_t slide_windows(diag::LoggerSlot logger, std::size_t length, std::uint8_t* image,
                           std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                           std::int32_t y1) {
    RowBatches batches(image, stride, x0, x1, y0, y1, length);
    if (!batches) {
        diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kListGrowthCode,
                     diag::kNoMemoryText);
        return -1;
    }
    batches.for_each([length](std::uint64_t* words, std::size_t count) {
        return slide_window<kFirst>(words, count, length) &&
               slide_window<kSecond>(words, count, length);
    });
    return 0;
}

bool nothing_to_do(std::int32_t n, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                   std::int32_t y1) {
    return n <= 0 || x0 >= x1 || y0 >= y1;
}

// n, or one more than the zone is wide: beyond that no length makes a difference.
std::size_t effective_length(std::int32_t n, std::int32_t x0, std::int32_t x1) {
    return static_cast<std::size_t>(std::min<std::int64_t>(n, std::int64_t{x1} - x0 + 1));
}

}  // namespace

std::int32_t h_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1) {
    // A gap, like a run, is at least a pixel long: none is shorter than 1.
    if (n == 1 || nothing_to_do(n, x0, x1, y0, y1)) return 0;
    return slide_windows<simd::or_preceding, simd::and_following>(
        logger, effective_length(n, x0, x1), image, stride, x0, x1, y0, y1);
}

std::int32_t h_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1) {
    if (n == 1 || nothing_to_do(n, x0, x1, y0, y1)) return 0;
    return slide_windows<simd::and_following, simd::or_preceding>(
        logger, effective_length(n, x0, x1), image, stride, x0, x1, y0, y1);
}

std::int32_t h_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1) {
    if (nothing_to_do(n, x0, x1, y0, y1)) return 0;
    return slide_windows<simd::or_preceding, simd::or_following>(
        logger, effective_length(n, x0, x1) + 1, image, stride, x0, x1, y0, y1);
}

std::int32_t h_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1) {
    if (nothing_to_do(n, x0, x1, y0, y1)) return 0;
    return slide_windows<simd::and_preceding, simd::and_following>(
        logger, effective_length(n, x0, x1) + 1, image, stride, x0, x1, y0, y1);
}

}  // namespace cleaning

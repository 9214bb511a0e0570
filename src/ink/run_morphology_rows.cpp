// Sliding windows along rows (window_slides.h), a batch of rows at a time that fits into the
// fastest cache. The rows of a batch stand in one string of words, a gap of more white pixels than
// a window reaches behind each: windows that leave a row meet white, and what grows beyond its end
// stops before the next.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "ink/run_morphology.h"
#include "ink/window_slides.h"

namespace ink {
namespace {

constexpr std::size_t kBatchWords = 1024;

constexpr std::size_t rounded_up(std::size_t words) {
    return (words + simd::kWindowWords - 1) / simd::kWindowWords * simd::kWindowWords;
}

class RowBatches {
  public:
    // Windows have up to `length` pixels.
    RowBatches(const Zone& zone, std::size_t length)
        : bytes_(zone.x0, zone.x1),
          row_(zone.row() + bytes_.first),
          stride_(zone.stride),
          rows_left_(zone.height()),
          pitch_((bytes_.size + 7) / 8 + length / 64 + 1),
          rows_(std::clamp<std::size_t>(kBatchWords / pitch_, 1, rows_left_)),
          count_(rounded_up(rows_ * pitch_)),
          string_(count_, simd::margin_words(length)) {}

    static std::size_t extent(const Zone& zone) { return zone.width(); }

    explicit operator bool() const { return static_cast<bool>(string_); }

    // Calls change(words, number of words, 1) for the batches that have ink. It returns false for
    // one that has become white, whatever the words hold.
    template <class Change>
    void for_each(Change change) {
        while (rows_left_ > 0) {
            rows_ = std::min(rows_, rows_left_);
            count_ = rounded_up(rows_ * pitch_);
            load();
            if (simd::swap_word_bytes(string_.words(), count_)) {
                if (change(string_.words(), count_, 1)) {
                    simd::swap_word_bytes(string_.words(), count_);
                } else {
                    std::memset(string_.words(), 0, count_ * sizeof(std::uint64_t));
                }
                store();
            }
            row_ += static_cast<std::ptrdiff_t>(rows_) * stride_;
            rows_left_ -= rows_;
        }
    }

  private:
    std::uint8_t* batch_row(std::size_t i) const {
        return reinterpret_cast<std::uint8_t*>(string_.words() + i * pitch_);
    }
    std::uint8_t* image_row(std::size_t i) const {
        return row_ + static_cast<std::ptrdiff_t>(i) * stride_;
    }

    void load() {
        for (std::size_t i = 0; i < rows_; ++i) {
            std::uint8_t* const row = batch_row(i);
            std::memcpy(row, image_row(i), bytes_.size);
            std::memset(row + bytes_.size, 0, pitch_ * sizeof(std::uint64_t) - bytes_.size);
            row[0] &= bytes_.head;
            row[bytes_.size - 1] &= bytes_.tail;
        }
        const std::size_t used = rows_ * pitch_;
        std::memset(string_.words() + used, 0, (count_ - used) * sizeof(std::uint64_t));
    }

    void store() const {
        const std::size_t last = bytes_.size - 1;
        for (std::size_t i = 0; i < rows_; ++i) {
            const std::uint8_t* const from = batch_row(i);
            std::uint8_t* const to = image_row(i);
            blend(to[0], from[0], bytes_.head);
            if (last > 1) std::memcpy(to + 1, from + 1, last - 1);
            if (last > 0) blend(to[last], from[last], bytes_.tail);
        }
    }

    ZoneBytes bytes_;
    std::uint8_t* row_;  // the zone's first byte in the batch's first row
    std::ptrdiff_t stride_;
    std::size_t rows_left_;
    std::size_t pitch_;  // words from row to row
    std::size_t rows_;
    std::size_t count_;  // words of the batch
    PixelString string_;
};

}  // namespace

std::int32_t h_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1) {
    return fill_gaps<RowBatches>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t h_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1) {
    return remove_short<RowBatches>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t h_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1) {
    return dilate<RowBatches>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t h_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1) {
    return erode<RowBatches>(logger, n, {image, stride, x0, x1, y0, y1});
}

}  // namespace ink

// The rows of a zone as strings of pixels, a batch of rows at a time that fits into the fastest
// cache. Behind each row of a batch stands a gap of more white pixels than a window reaches:
// windows that leave a row meet white, and what grows beyond its end stops before the next row.
//
// Use: RowBatches batches(page, zone, longest window); batches.for_each(change);
//
// Keep true: the zone is not empty and lies inside the page.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/rectangle.h"
#include "common/views.h"
#include "ink/sliding_windows.h"
#include "ink/zone_bytes.h"

namespace ink {

class RowBatches {
  public:
    // Windows have up to `length` pixels. Throws std::bad_alloc.
    RowBatches(common::MutableBitonalView page, const common::Rectangle& zone, std::size_t length)
        : page_(page),
          zone_(zone),
          bytes_(zone.x0, zone.x1),
          pitch_((bytes_.size() + 7) / 8 + length / 64 + 1),
          rows_(std::clamp<std::size_t>(kBatchWords / pitch_, 1,
                                        static_cast<std::size_t>(zone.height()))),
          string_(rounded_up(rows_ * pitch_), simd::margin_words(length)) {}

    // Calls change(words, number of words, 1) for the batches that have ink, and writes back what
    // it leaves. It returns false for a batch that has become white, whatever is in the words then.
    template <class Change>
    void for_each(Change change) {
        std::uint64_t* const words = string_.words();
        for (std::int32_t y = zone_.y0; y < zone_.y1;) {
            const std::int32_t end =
                std::min<std::int32_t>(zone_.y1 - y, static_cast<std::int32_t>(rows_)) + y;
            const std::size_t count = load(y, end);
            if (simd::swap_word_bytes(words, count)) {
                if (change(words, count, std::size_t{1})) {
                    simd::swap_word_bytes(words, count);
                } else {
                    std::memset(words, 0, count * sizeof(std::uint64_t));
                }
                store(y, end);
            }
            y = end;
        }
    }

  private:
    static constexpr std::size_t kBatchWords = 1024;

    static constexpr std::size_t rounded_up(std::size_t words) {
        return (words + simd::kWindowWords - 1) / simd::kWindowWords * simd::kWindowWords;
    }

    // Returns the number of words that the rows y .. end - 1 take.
    std::size_t load(std::int32_t y, std::int32_t end) const {
        std::size_t used = 0;
        for (; y < end; ++y, used += pitch_) {
            std::uint8_t* const to = string_.bytes_of_word(used);
            bytes_.load(to, page_.row(y));
            std::memset(to + bytes_.size(), 0, pitch_ * sizeof(std::uint64_t) - bytes_.size());
        }
        const std::size_t count = rounded_up(used);
        std::memset(string_.words() + used, 0, (count - used) * sizeof(std::uint64_t));
        return count;
    }

    void store(std::int32_t y, std::int32_t end) const {
        for (std::size_t at = 0; y < end; ++y, at += pitch_) {
            bytes_.store(page_.row(y), string_.bytes_of_word(at));
        }
    }

    common::MutableBitonalView page_;
    common::Rectangle zone_;
    ZoneBytes bytes_;
    std::size_t pitch_;  // words from row to row
    std::size_t rows_;   // of a full batch
    PixelString string_;
};

}  // namespace ink

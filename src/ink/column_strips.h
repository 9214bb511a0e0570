// The columns of a zone as strings of pixels, a strip of columns at a time. The rows of a strip
// stand one after the other in one string, so that the pixel below is a fixed number of words
// further on. Behind the last one stand as many white rows as a window has pixels: windows meet
// them there, and what grows beyond the zone is kept until the second window has seen it. The
// string of a page's strip fits into the second cache.
//
// Use: ColumnStrips strips(page, zone, longest window); strips.for_each(change);
//
// Keep true: the zone is not empty and lies inside the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/rectangle.h"
#include "common/views.h"
#include "ink/sliding_windows.h"
#include "ink/zone_bytes.h"

namespace ink {

class ColumnStrips {
  public:
    // Windows have up to `length` pixels. Throws std::bad_alloc.
    ColumnStrips(common::MutableBitonalView page, const common::Rectangle& zone, std::size_t length)
        : page_(page),
          zone_(zone),
          bytes_(zone.x0, zone.x1),
          rows_words_(static_cast<std::size_t>(zone.height()) * kStripWords),
          count_(rows_words_ + length * kStripWords),
          string_(count_, simd::margin_words(length * kStripPixels)) {}

    // Calls change(words, number of words, pixels from row to row) for the strips, and writes back
    // what it leaves. It returns false for a strip that is or has become white, whatever is in the
    // words then.
    template <class Change>
    void for_each(Change change) {
        std::uint64_t* const words = string_.words();
        for (std::size_t at = 0; at < bytes_.size(); at += kStripBytes) {
            const ZoneBytes strip = bytes_.part(at, kStripBytes);
            if (strip.size() < kStripBytes) clear(words, words + rows_words_);
            for (std::int32_t y = zone_.y0; y < zone_.y1; ++y) {
                strip.load(strip_row(y), page_.row(y));
            }
            clear(words + rows_words_, words + count_);
            if (!change(words, count_, kStripPixels)) clear(words, words + rows_words_);
            for (std::int32_t y = zone_.y0; y < zone_.y1; ++y) {
                strip.store(page_.row(y), strip_row(y));
            }
        }
    }

  private:
    // A string of such rows is a number of vectors.
    static constexpr std::size_t kStripWords = simd::kWindowWords;
    static constexpr std::size_t kStripBytes = kStripWords * sizeof(std::uint64_t);
    static constexpr std::size_t kStripPixels = 64 * kStripWords;

    std::uint8_t* strip_row(std::int32_t y) const {
        return string_.bytes_of_word(static_cast<std::size_t>(y - zone_.y0) * kStripWords);
    }

    static void clear(std::uint64_t* begin, std::uint64_t* end) {
        std::memset(begin, 0, static_cast<std::size_t>(end - begin) * sizeof(std::uint64_t));
    }

    common::MutableBitonalView page_;
    common::Rectangle zone_;
    ZoneBytes bytes_;
    std::size_t rows_words_;  // words of the zone's rows
    std::size_t count_;       // words of the string
    PixelString string_;
};

}  // namespace ink

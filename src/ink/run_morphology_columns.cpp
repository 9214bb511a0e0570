// Sliding windows along columns (window_slides.h), a strip of columns at a time. The rows of a
// strip stand one after the other in one string of words, so that the pixel below is a fixed number
// of words further on. Behind the last one stand as many white rows as a window has: windows meet
// them there, and what grows beyond the zone is kept until the second window has seen it. The
// string of a page's strip fits into the second cache.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "ink/run_morphology.h"
#include "ink/window_slides.h"

namespace ink {
namespace {

// A string of such rows is a whole number of vectors long.
constexpr std::size_t kStripWords = simd::kWindowWords;
constexpr std::size_t kStripBytes = kStripWords * sizeof(std::uint64_t);
constexpr std::size_t kStripPixels = 64 * kStripWords;

// Most strips are whole: a copy of a size that is known needs no call.
void copy_strip_row(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    if (size == kStripBytes) {
        std::memcpy(to, from, kStripBytes);
    } else {
        std::memcpy(to, from, size);
    }
}

class ColumnStrips {
  public:
    // Windows have up to `length` pixels.
    ColumnStrips(const Zone& zone, std::size_t length)
        : bytes_(zone.x0, zone.x1),
          first_row_(zone.row() + bytes_.first),
          stride_(zone.stride),
          rows_(zone.height()),
          count_((rows_ + length) * kStripWords),
          string_(count_, simd::margin_words(length * kStripPixels)) {}

    static std::size_t extent(const Zone& zone) { return zone.height(); }

    explicit operator bool() const { return static_cast<bool>(string_); }

    // Calls change(words, number of words, pixels from row to row) for the strips. It returns
    // false for one that is or has become white, whatever the words hold.
    template <class Change>
    void for_each(Change change) {
        for (std::size_t at = 0; at < bytes_.size; at += kStripBytes) {
            const std::size_t size = std::min(kStripBytes, bytes_.size - at);
            if (size < kStripBytes) std::memset(string_.words(), 0, rows_ * kStripBytes);
            load(at, size);
            std::memset(string_.words() + rows_ * kStripWords, 0,
                        (count_ - rows_ * kStripWords) * sizeof(std::uint64_t));
            if (!change(string_.words(), count_, kStripPixels)) {
                std::memset(string_.words(), 0, rows_ * kStripBytes);
            }
            store(at, size);
        }
    }

  private:
    std::uint8_t* strip_row(std::size_t y) const {
        return reinterpret_cast<std::uint8_t*>(string_.words() + y * kStripWords);
    }
    std::uint8_t* image_row(std::size_t y, std::size_t at) const {
        return first_row_ + static_cast<std::ptrdiff_t>(y) * stride_ + at;
    }

    void load(std::size_t at, std::size_t size) const {
        const bool first = at == 0;
        const bool last = at + size == bytes_.size;
        for (std::size_t y = 0; y < rows_; ++y) {
            std::uint8_t* const row = strip_row(y);
            copy_strip_row(row, image_row(y, at), size);
            if (first) row[0] &= bytes_.head;
            if (last) row[size - 1] &= bytes_.tail;
        }
    }

    void store(std::size_t at, std::size_t size) const {
        const std::uint8_t head = at == 0 ? bytes_.head : 0xFF;
        const std::uint8_t tail = at + size == bytes_.size ? bytes_.tail : 0xFF;
        const std::size_t end = size - 1;
        if ((head & tail) == 0xFF) {
            for (std::size_t y = 0; y < rows_; ++y) {
                copy_strip_row(image_row(y, at), strip_row(y), size);
            }
            return;
        }
        for (std::size_t y = 0; y < rows_; ++y) {
            const std::uint8_t* const from = strip_row(y);
            std::uint8_t* const to = image_row(y, at);
            blend(to[0], from[0], size == 1 ? head & tail : head);
            if (end > 1) std::memcpy(to + 1, from + 1, end - 1);
            if (end > 0) blend(to[end], from[end], tail);
        }
    }

    ZoneBytes bytes_;
    std::uint8_t* first_row_;  // from the zone's first byte on
    std::ptrdiff_t stride_;
    std::size_t rows_;
    std::size_t count_;  // words of a strip
    PixelString string_;
};

}  // namespace

std::int32_t v_fill_gaps(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                         std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                         std::int32_t y1) {
    return fill_gaps<ColumnStrips>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t v_remove_short(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                            std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                            std::int32_t y1) {
    return remove_short<ColumnStrips>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t v_dilate(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                      std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                      std::int32_t y1) {
    return dilate<ColumnStrips>(logger, n, {image, stride, x0, x1, y0, y1});
}

std::int32_t v_erode(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                     std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                     std::int32_t y1) {
    return erode<ColumnStrips>(logger, n, {image, stride, x0, x1, y0, y1});
}

}  // namespace ink

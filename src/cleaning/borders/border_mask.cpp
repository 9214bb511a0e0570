// Dilation marks the square of 2 * kBorderMargin + 1 pixels around every mark, first along the
// columns, then along the rows.
//
// Along the columns, rows are combined downwards in place, by doubling: after steps of 1, 2, 4, 8
// and 1, row y is the OR of rows y .. y + 16. That is the result for the row eight rows further
// down, and since the rows are stored with eight blank ones above, it is read from where it lies:
// row 0 of the mask has become the first stored row. The steps follow one another down the page as
// closely as they can, so that the rows stay in the nearest cache.
//
// Along the rows, each word is dilated inside itself by doubling. Of the words beside it only the
// outermost mark matters, since the pixels that it covers reach in from the end of the word without
// a gap.
#include "cleaning/borders/border_mask.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>

namespace cleaning {
namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};

// Rows stored: the mask's, the blank ones above, one below.
std::size_t stored_words(std::int32_t height, std::size_t words) {
    const std::size_t rows = static_cast<std::size_t>(height) + kBorderMargin + 1;
    if (words > std::numeric_limits<std::size_t>::max() / rows) throw std::bad_alloc();
    return rows * words;
}

void or_row(std::uint64_t* row, const std::uint64_t* other, std::size_t words) {
    for (std::size_t i = 0; i < words; ++i) row[i] |= other[i];
}

// Every bit within kBorderMargin of a bit of the word.
std::uint64_t dilated(std::uint64_t word) {
    std::uint64_t up = word | word << 1;
    std::uint64_t down = word | word >> 1;
    up |= up << 2;
    down |= down >> 2;
    up |= up << 4 | word << kBorderMargin;
    down |= down >> 4 | word >> kBorderMargin;
    return up | down;
}

void dilate_row(std::uint64_t* row, std::size_t words) {
    std::uint64_t before = 0;
    for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t here = row[i];
        const std::uint64_t after = i + 1 < words ? row[i + 1] : 0;
        if ((before | here | after) == 0) continue;
        std::uint64_t wide = here == 0 ? 0 : dilated(here);
        // The last mark of the word before, at bit 56 + i of it, covers bits 0 .. i.
        if (const std::uint64_t spilt = before >> (64 - kBorderMargin); spilt != 0) {
            wide |= (std::uint64_t{1} << std::bit_width(spilt)) - 1;
        }
        if (const std::uint64_t spilt = after << (64 - kBorderMargin); spilt != 0) {
            wide |= kAll << (std::countr_zero(spilt));
        }
        row[i] = wide;
        before = here;
    }
}

// Marks the pixels begin <= x < end of a row: what ink::paint_span() does in rows that begin with
// the most significant bit.
void mark_span(std::uint64_t* row, std::size_t begin, std::size_t end) {
    for (std::size_t x = begin; x < end;) {
        const std::size_t count = std::min(end - x, 64 - x % 64);
        row[x / 64] |= kAll >> (64 - count) << (x % 64);
        x += count;
    }
}

// Whether one of the row's bytes is 0. Padding counts as border.
bool has_clear_byte(const std::uint64_t* row, std::size_t words, std::uint64_t padding) {
    constexpr std::uint64_t kLow = 0x0101010101010101;
    for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t word = row[i] | (i + 1 == words ? padding : 0);
        if (((word - kLow) & ~word & kLow << 7) != 0) return true;
    }
    return false;
}

}  // namespace

BorderMask::BorderMask(std::int32_t height, std::int32_t width)
    : height_(std::max(height, 0)),
      width_(std::max(width, 0)),
      words_(simd::mask_words(static_cast<std::size_t>(width_))),
      bits_(frame::Buffer<std::uint64_t>::zeroed(
          std::max<std::size_t>(stored_words(height_, words_), 1))) {}

void BorderMask::dilate() {
    struct Step {
        std::ptrdiff_t rows;
        std::ptrdiff_t lag;  // to where the rows below have taken the steps before
    };
    constexpr Step kSteps[] = {{1, 0}, {2, 2}, {4, 6}, {8, 14}, {1, 15}};
    constexpr std::ptrdiff_t kLastLag = 15;
    const std::uint64_t pixels = simd::last_word_pixels(static_cast<std::size_t>(width_));
    const std::ptrdiff_t top = -first_row_;
    for (std::ptrdiff_t y = top; y <= height_ + kLastLag; ++y) {
        for (const auto [rows, lag] : kSteps) {
            const std::ptrdiff_t to = y - lag;
            if (to >= top && to + rows <= height_) or_row(row(to), row(to + rows), words_);
        }
        if (y - kLastLag < top) continue;
        dilate_row(row(y - kLastLag), words_);
        row(y - kLastLag)[words_ - 1] &= pixels;
    }
    first_row_ -= kBorderMargin;
}

void BorderMask::mark_frame() {
    const auto width = static_cast<std::size_t>(width_);
    const auto mark_row = [&](std::ptrdiff_t y) { mark_span(row(y), 0, width); };
    for (std::ptrdiff_t y = 0; y < kBorderMargin; ++y) mark_row(y);
    for (std::ptrdiff_t y = height_ - kBorderMargin - 1; y < height_ - 1; ++y) mark_row(y);
    for (std::ptrdiff_t y = 0; y < height_; ++y) {
        mark_span(row(y), 0, kBorderMargin);
        mark_span(row(y), width - kBorderMargin - 1, width);
    }
}

common::Rectangle content_of(const BorderMask& mask) {
    const std::size_t words = mask.words();
    const std::uint64_t pixels = simd::last_word_pixels(static_cast<std::size_t>(mask.width()));
    std::int32_t y0 = 0;
    std::int32_t y1 = mask.height() - 1;
    while (y0 <= y1 && !has_clear_byte(mask.row(y0), words, ~pixels)) ++y0;
    if (y0 > y1) {
        const std::int32_t x = mask.width() / 2;
        const std::int32_t y = mask.height() / 2;
        return {x, x + 2, y, y + 2};
    }
    while (!has_clear_byte(mask.row(y1), words, ~pixels)) --y1;

    frame::Buffer<std::uint64_t> always(words);  // border in every row
    std::copy_n(mask.row(0), words, always.data());
    for (std::int32_t y = 1; y < mask.height(); ++y) {
        const std::uint64_t* const row = mask.row(y);
        for (std::size_t i = 0; i < words; ++i) always[i] &= row[i];
    }
    always[words - 1] |= ~pixels;
    std::size_t first = 0;
    while (always[first] == kAll) ++first;
    std::size_t last = words - 1;
    while (always[last] == kAll) --last;
    return {static_cast<std::int32_t>(64 * first) + std::countr_one(always[first]),
            static_cast<std::int32_t>(64 * last) + 64 - std::countl_one(always[last]), y0, y1 + 1};
}

}  // namespace cleaning

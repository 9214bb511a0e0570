// A run of ink is reachable when it begins or ends a row, when it lies in the row that a pass
// begins with, or when it touches a reachable run of the row that the pass comes from, corners
// included. Two passes, down and up, follow most borders; ink that turns back a third time is not
// followed.
//
// The target is a copy of the page from which the reachable runs are erased, so that the reachable
// ink of a row is what the page has there and the target has not. A row is searched only where it
// may touch a reachable run: its cost grows with the ink on the edge, not with the width of the
// page.
#include "cleaning/borders/border_ink.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "common/byte_order.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"

namespace cleaning {
namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};

struct Span {
    std::int32_t begin;
    std::int32_t end;  // one past the last pixel
};

// The 64 pixels of a row from byte 8 * i on, as they lie in memory, and zeros beyond the last byte
// that the width has.
std::uint64_t raw_word(const std::uint8_t* row, std::int32_t i, std::int32_t width) {
    const std::size_t first = static_cast<std::size_t>(i) * 8;
    const std::size_t bytes = static_cast<std::size_t>(common::bitonal_bytes(width)) - first;
    std::uint64_t word = 0;
    if (bytes >= 8) {
        std::memcpy(&word, row + first, 8);
    } else {
        std::memcpy(&word, row + first, bytes);
    }
    return word;
}

// The same with the leftmost pixel in the most significant bit and zeros beyond the width.
std::uint64_t pixel_word(std::uint64_t raw, std::int32_t i, std::int32_t width) {
    raw = common::swap_bytes(raw);
    const std::int64_t pixels = width - std::int64_t{i} * 64;
    return pixels >= 64 ? raw : raw & ~(kAll >> pixels);
}

// The ink of a row.
struct InkRow {
    const std::uint8_t* row;
    std::int32_t width;

    std::uint64_t word(std::int32_t i) const {
        return pixel_word(raw_word(row, i, width), i, width);
    }
};

// The ink that the page has in a row and the target no more.
struct ErasedRow {
    const std::uint8_t* page;
    const std::uint8_t* target;
    std::int32_t width;

    std::uint64_t word(std::int32_t i) const {
        const std::uint64_t raw = raw_word(page, i, width) ^ raw_word(target, i, width);
        return raw == 0 ? 0 : pixel_word(raw, i, width);
    }
};

// The first pixel from x on that is ink, or, for kWanted 0, that is not; `end` if none is before.
template <int kWanted, class Row>
std::int32_t find(const Row& row, std::int32_t x, std::int32_t end) {
    for (std::int32_t i = x / 64; std::int64_t{i} * 64 < end; ++i) {
        std::uint64_t word = kWanted == 1 ? row.word(i) : ~row.word(i);
        if (i == x / 64) word &= kAll >> (x % 64);
        if (word == 0) continue;
        return static_cast<std::int32_t>(
            std::min(std::int64_t{end}, std::int64_t{i} * 64 + std::countl_zero(word)));
    }
    return end;
}

// The first pixel of the run that has the pixel x.
std::int32_t run_begin(const InkRow& row, std::int32_t x) {
    std::int32_t i = x / 64;
    std::uint64_t paper = ~row.word(i) & ~(kAll >> 1 >> (x % 64));
    while (paper == 0 && i > 0) paper = ~row.word(--i);
    return paper == 0 ? 0 : i * 64 + 64 - std::countr_zero(paper);
}

// Erases runs of one row, left to right, and lists them.
class RowEraser {
  public:
    RowEraser(std::uint8_t* row, std::int32_t width, Span* erased)
        : row_(row), ink_{row, width}, erased_(erased) {}

    // Erases the runs that have a pixel in begin <= x < end.
    void erase_touching(std::int32_t begin, std::int32_t end) {
        for (std::int32_t x = std::max(begin, next_); (x = find<1>(ink_, x, end)) < end;
             x = next_) {
            const Span run{run_begin(ink_, x), find<0>(ink_, x, ink_.width)};
            ink::paint_span(row_, run.begin, run.end - run.begin, 0);
            erased_[count_++] = run;
            next_ = run.end;
        }
    }

    std::size_t count() const { return count_; }

  private:
    std::uint8_t* row_;
    InkRow ink_;
    Span* erased_;
    std::size_t count_ = 0;
    std::int32_t next_ = 0;  // everything before this pixel has been looked at
};

// Erases the runs of a row that touch `spans`, the reachable runs of the row that the pass comes
// from, and with `ends` those that begin or end the row. Lists them in `erased` and returns how
// many they are.
std::size_t erase_reachable(std::uint8_t* row, std::int32_t width, const Span* spans,
                            std::size_t count, bool ends, Span* erased) {
    RowEraser eraser(row, width, erased);
    if (ends) eraser.erase_touching(0, 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t end = spans[i].end == width ? width : spans[i].end + 1;
        eraser.erase_touching(std::max(spans[i].begin - 1, 0), end);
    }
    if (ends) eraser.erase_touching(width - 1, width);
    return eraser.count();
}

std::size_t list_erased(const ErasedRow& row, Span* spans) {
    std::size_t count = 0;
    for (std::int32_t x = 0; (x = find<1>(row, x, row.width)) < row.width;) {
        const std::int32_t end = find<0>(row, x, row.width);
        spans[count++] = {x, end};
        x = end;
    }
    return count;
}

void erase_downwards(const common::MutableBitonalView& result, frame::Buffer<Span>& spans,
                     frame::Buffer<Span>& erased) {
    spans[0] = {0, result.width};
    std::size_t count = 1;
    for (std::ptrdiff_t y = 0; y < result.height; ++y) {
        count =
            erase_reachable(result.row(y), result.width, spans.data(), count, true, erased.data());
        std::swap(spans, erased);
    }
}

// In the row below, the runs that either pass has erased are reachable. The runs at the ends of the
// rows are gone already.
void erase_upwards(const common::BitonalView& page, const common::MutableBitonalView& result,
                   Span* spans, Span* erased) {
    const auto row_bytes = static_cast<std::size_t>(common::bitonal_bytes(page.width));
    spans[0] = {0, page.width};
    std::size_t count = 1;
    for (std::ptrdiff_t y = page.height - 1; y >= 0; --y) {
        if (count > 0) {
            erase_reachable(result.row(y), page.width, spans, count, false, erased);
        }
        const bool untouched = std::memcmp(page.row(y), result.row(y), row_bytes) == 0;
        count = untouched ? 0 : list_erased({page.row(y), result.row(y), page.width}, spans);
    }
}

}  // namespace

void copy_without_edge_ink(common::BitonalView page, EdgeInk ink, std::uint8_t* target) {
    const std::size_t most_runs = static_cast<std::size_t>(std::max(page.width, 0)) / 2 + 1;
    frame::Buffer<Span> spans(most_runs);
    frame::Buffer<Span> erased(most_runs);
    if (page.height < 1 || page.stride < 1) return;
    std::memcpy(target, page.data, static_cast<std::size_t>(page.height * page.stride));
    if (page.width < 1 || ink == EdgeInk::kKept) return;
    const common::MutableBitonalView result{target, page.height, page.width, page.stride};
    erase_downwards(result, spans, erased);
    erase_upwards(page, result, spans.data(), erased.data());
}

}  // namespace cleaning

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

#include "frame/buffer.h"
#include "ink/bit_words.h"
#include "ink/buffer_logic.h"
#include "ink/run.h"

namespace cleaning {
namespace {

using ink::PixelRun;

constexpr std::uint64_t kAll = ~std::uint64_t{0};

// The ink of a row, by aligned words of 64 pixels.
struct InkRow {
    const std::uint8_t* row;
    std::int32_t width;

    std::uint64_t word(std::int64_t x) const { return ink::aligned_word(row, width, x); }
};

// The ink that the page has in a row and the target has no more.
struct ErasedRow {
    InkRow page;
    InkRow target;

    std::uint64_t word(std::int64_t x) const { return page.word(x) ^ target.word(x); }
};

// The first pixel from x on that is ink, or that is not; `end` if there is none before it.
template <bool kInk, class Row>
std::int32_t find(const Row& row, std::int32_t x, std::int32_t end) {
    std::uint64_t from_x = kAll >> (x % 64);
    for (std::int64_t i = x / 64 * 64; i < end; i += 64, from_x = kAll) {
        const std::uint64_t word = (kInk ? row.word(i) : ~row.word(i)) & from_x;
        if (word == 0) continue;
        return static_cast<std::int32_t>(std::min<std::int64_t>(end, i + std::countl_zero(word)));
    }
    return end;
}

// The first pixel of the run that has the pixel x.
std::int32_t run_begin(const InkRow& row, std::int32_t x) {
    std::int32_t i = x / 64 * 64;
    std::uint64_t white = ~row.word(i) & ~(kAll >> 1 >> (x % 64));
    for (; white == 0 && i > 0; white = ~row.word(i)) i -= 64;
    return white == 0 ? 0 : i + 64 - std::countr_zero(white);
}

// Erases runs of one row, left to right, and lists them.
class RowEraser {
  public:
    RowEraser(std::uint8_t* row, std::int32_t width, PixelRun* erased)
        : row_(row), ink_{row, width}, erased_(erased) {}

    // Erases the runs that have a pixel in begin <= x < end.
    void erase_touching(std::int32_t begin, std::int32_t end) {
        for (std::int32_t x = std::max(begin, next_); (x = find<true>(ink_, x, end)) < end;
             x = next_) {
            const PixelRun run{run_begin(ink_, x), find<false>(ink_, x, ink_.width)};
            ink::paint_span(row_, run.x0, run.length(), 0);
            erased_[count_++] = run;
            next_ = run.x1;
        }
    }

    std::size_t count() const { return count_; }

  private:
    std::uint8_t* row_;
    InkRow ink_;
    PixelRun* erased_;
    std::size_t count_ = 0;
    std::int32_t next_ = 0;  // everything before this pixel has been looked at
};

// Erases the runs of a row that touch the reachable runs of the row that the pass comes from, and
// with `ends` those that begin or end the row. Lists them in `erased` and returns how many they
// are.
std::size_t erase_reachable(std::uint8_t* row, std::int32_t width, const PixelRun* reachable,
                            std::size_t count, bool ends, PixelRun* erased) {
    RowEraser eraser(row, width, erased);
    if (ends) eraser.erase_touching(0, 1);
    for (std::size_t i = 0; i < count; ++i) {
        const auto [x0, x1] = reachable[i];
        eraser.erase_touching(std::max(x0 - 1, 0), x1 == width ? width : x1 + 1);
    }
    if (ends) eraser.erase_touching(width - 1, width);
    return eraser.count();
}

std::size_t list_erased(const ErasedRow& row, PixelRun* erased) {
    std::size_t count = 0;
    for (std::int32_t x = 0; (x = find<true>(row, x, row.page.width)) < row.page.width;) {
        const std::int32_t end = find<false>(row, x, row.page.width);
        erased[count++] = {x, end};
        x = end;
    }
    return count;
}

void erase_downwards(const common::MutableBitonalView& result, frame::Buffer<PixelRun>& reachable,
                     frame::Buffer<PixelRun>& erased) {
    reachable[0] = {0, result.width};
    std::size_t count = 1;
    for (std::ptrdiff_t y = 0; y < result.height; ++y) {
        count = erase_reachable(result.row(y), result.width, reachable.data(), count, true,
                                erased.data());
        std::swap(reachable, erased);
    }
}

// In the row below, the runs that either pass has erased are reachable. The runs at the ends of the
// rows are gone already.
void erase_upwards(const common::BitonalView& page, const common::MutableBitonalView& result,
                   PixelRun* reachable, PixelRun* erased) {
    const auto row_bytes = static_cast<std::size_t>(common::bitonal_bytes(page.width));
    reachable[0] = {0, page.width};
    std::size_t count = 1;
    for (std::ptrdiff_t y = page.height - 1; y >= 0; --y) {
        if (count > 0) {
            erase_reachable(result.row(y), page.width, reachable, count, false, erased);
        }
        const bool untouched = std::memcmp(page.row(y), result.row(y), row_bytes) == 0;
        const ErasedRow row{{page.row(y), page.width}, {result.row(y), page.width}};
        count = untouched ? 0 : list_erased(row, reachable);
    }
}

}  // namespace

void copy_without_edge_ink(common::BitonalView page, EdgeInk ink, std::uint8_t* target) {
    const std::size_t most_runs = static_cast<std::size_t>(std::max(page.width, 0)) / 2 + 1;
    frame::Buffer<PixelRun> reachable(most_runs);
    frame::Buffer<PixelRun> erased(most_runs);
    if (page.height < 1 || page.stride < 1) return;
    std::memcpy(target, page.data, static_cast<std::size_t>(page.height * page.stride));
    if (page.width < 1 || ink == EdgeInk::kKept) return;
    const common::MutableBitonalView result{target, page.height, page.width, page.stride};
    erase_downwards(result, reachable, erased);
    erase_upwards(page, result, reachable.data(), erased.data());
}

}  // namespace cleaning

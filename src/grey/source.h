// Where a binarization gets its pixels from: the caller's row reader, the part of the page that is
// wanted, and the page itself where the caller has it in memory.
//
// Use: check acceptable() once, then RowStream rows(source, region.y0); (rows.next)* delivers
// source rows y0, y0 + 1, ... A second RowStream starts again from the top.
//
// Keep true: the reader's buffer has room for a whole source row, row_bytes(), whatever the region;
// one RowStream is finished with before the next is begun, since they share the reader's position.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/callbacks.h"
#include "common/rectangle.h"
#include "frame/buffer.h"

namespace grey {

// The values are those of the exported functions.
enum class SourceType {
    kGrey = 1,  // a byte a pixel
    kBgr = 2,   // three bytes: blue, green, red
    kRgb = 3    // three bytes: red, green, blue
};

struct Source {
    common::RowReader reader = nullptr;
    void* context = nullptr;              // handed to the reader
    const std::uint8_t* image = nullptr;  // the whole page, rows packed, or null
    SourceType type = SourceType::kGrey;
    int width = 0;  // pixels of a whole row

    bool colour() const { return type != SourceType::kGrey; }
    std::size_t row_bytes() const { return static_cast<std::size_t>(width) * (colour() ? 3 : 1); }
};

// The part of the source that is wanted.
using Region = common::Rectangle;

// Whether the region can be taken from rows of this width. A region that reaches beyond the right
// end of the row is refused: there is nothing there to binarize. There is no such check for the
// bottom, since only the reader knows where the page ends.
inline bool acceptable(int width, const Region& region) {
    return width >= 1 && region.x0 >= 0 && region.y0 >= 0 && !region.empty() && region.x1 <= width;
}

inline bool known_type(int type) {
    return type >= static_cast<int>(SourceType::kGrey) &&
           type <= static_cast<int>(SourceType::kRgb);
}

// Room for one source row, at the start of a cache line: readers copy whole rows, and copies to
// such a place are the fastest.
class RowBuffer {
  public:
    // Throws std::bad_alloc.
    explicit RowBuffer(std::size_t bytes) : block_(bytes + kCacheLine - 1) {}

    std::uint8_t* data() {
        const auto address = reinterpret_cast<std::uintptr_t>(block_.data());
        return block_.data() + (kCacheLine - address % kCacheLine) % kCacheLine;
    }

  private:
    static constexpr std::size_t kCacheLine = 64;

    frame::Buffer<std::uint8_t> block_;
};

// Source rows from `first_row` on, in order. Row 0 is asked for with mode 0, every further row with
// mode 1; the rows above first_row pass through the buffer of the first next().
class RowStream {
  public:
    RowStream(const Source& source, int first_row) : source_(source), rows_above_(first_row) {}

    void next(std::uint8_t* row) {
        if (started_) {
            source_.reader(source_.context, kNextRow, row);
            return;
        }
        started_ = true;
        source_.reader(source_.context, kTopRow, row);
        for (int y = 0; y < rows_above_; ++y) source_.reader(source_.context, kNextRow, row);
    }

  private:
    static constexpr int kTopRow = 0;
    static constexpr int kNextRow = 1;

    const Source& source_;
    int rows_above_;
    bool started_ = false;
};

// Calls visit(k, row) for the rows of the region from the top, k from 0; `row` is a whole source
// row, read into `buffer`. One row at a time stays in the first-level cache between the reader and
// the visit.
template <class Visit>
void visit_rows(const Source& source, const Region& region, RowBuffer& buffer, Visit&& visit) {
    RowStream rows(source, region.y0);
    for (int k = 0; k < region.height(); ++k) {
        rows.next(buffer.data());
        visit(k, buffer.data());
    }
}

}  // namespace grey

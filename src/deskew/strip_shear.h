// Two shears of a bitonal page at once: rows to the right by whole pixels, then columns down by
// whole rows.
//
// Use: StripShear shear(source, row_shifts, column_steps, result); for every strip from 0 to
// shear.strips() - 1, in any order, shear.run(strip) writes the strip's columns of all rows of the
// result. The columns beyond the last strip are not written. shear_rows() is the shear of the
// rows alone.
//
// Keep true: source.width pixels of each row take part, with or without meaning. row_shifts has a
// shift >= 0 for each source row, column_steps covers the columns from 0 on without gaps, and no
// column moves a row of the source out of the result: 0 <= down <= result.height - source.height.
// Source and result do not overlap. The result's rows are result.width pixels long, rounded up to
// bytes; what would move beyond is dropped.
#pragma once

#include <cstdint>
#include <vector>

#include "common/views.h"
#include "frame/buffer.h"

namespace deskew {

constexpr std::int64_t kStripPixels = 128;  // a strip's columns: whole 64-bit words

// Neighbouring columns that move together.
struct ColumnStep {
    std::int64_t begin = 0;  // first column
    std::int64_t end = 0;    // one past the last
    std::int64_t down = 0;   // rows
};

// Joins the columns 0 .. columns - 1, `granule` of them at a time, into steps of equal shift.
// down_at(x) is the shift of the granule that begins at column x.
template <class DownAt>
std::vector<ColumnStep> column_steps(std::int64_t columns, std::int64_t granule, DownAt down_at) {
    std::vector<ColumnStep> steps;
    for (std::int64_t x = 0; x < columns; x += granule) {
        const std::int64_t down = down_at(x);
        if (steps.empty() || steps.back().down != down) steps.push_back({x, x, down});
        steps.back().end = x + granule < columns ? x + granule : columns;
    }
    return steps;
}

class StripShear {
  public:
    StripShear(common::BitonalView source, const frame::Buffer<std::int64_t>& row_shifts,
               const std::vector<ColumnStep>& steps, common::MutableBitonalView result);

    std::int64_t strips() const;
    void run(std::int64_t strip);

  private:
    void gather_rows(std::int64_t strip);
    void move_columns(std::int64_t strip, std::int64_t word);
    void store_rows(std::int64_t strip) const;

    common::BitonalView source_;
    const frame::Buffer<std::int64_t>& row_shifts_;
    const std::vector<ColumnStep>& steps_;
    common::MutableBitonalView result_;
    // The strip's words, the first of each row, then the second of each row, and so on.
    frame::Buffer<std::uint64_t> sheared_;  // of the source's rows
    frame::Buffer<std::uint64_t> moved_;    // of the result's rows
};

// Writes every row of the result: the source's row of the same number moved right by its shift. The
// source's padding is 0.
void shear_rows(common::BitonalView source, const frame::Buffer<std::int64_t>& row_shifts,
                common::MutableBitonalView result);

}  // namespace deskew

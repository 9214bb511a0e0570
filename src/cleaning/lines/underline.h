// Extraction of underlines, or vertical rules, of a bitonal page into a page of their own.
#pragma once

#include <cstdint>

#include "cleaning/lines/line_removal.h"
#include "common/views.h"

namespace cleaning {

// The number of lines that are counted.
constexpr std::int32_t kMaxUnderlines = 100000;

struct UnderlineSettings {
    int ink_value;            // as in extract_runs.h
    std::int32_t min_extent;  // a line is longer than this
    std::int32_t min_run;     // of each row or column of it
    std::int32_t thickness;   // what is at least this thick is no line; 0: nothing is one
    std::int32_t dilate;      // steps aside that a line may make
    std::int32_t x0;          // lines are looked for in these columns
    std::int32_t x1;          // exclusive
};

// Writes the lines of the source into the target, which has its geometry; the width is that of the
// stride. Returns the number of columns, or rows when vertical, that have a line. Throws
// std::bad_alloc, and std::length_error for a page that is too large (run.h); the target is then in
// an intermediate state.
//
// From line kMaxUnderlines + 1 on lines are not counted: the scan goes on, but from each row's
// finished components only those before the first uncounted line are looked at, so that short ones
// behind it stay in the target.
std::int32_t extract_underlines(common::BitonalView source, std::uint8_t* target,
                                LineDirection direction, const UnderlineSettings& settings);

}  // namespace cleaning

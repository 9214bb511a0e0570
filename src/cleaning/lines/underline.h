// Extraction of underlines, or of vertical lines, of a bitonal page to a page of their own.
#pragma once

#include <cstdint>

#include "cleaning/lines/line_direction.h"
#include "common/views.h"

namespace cleaning {

// The number of lines that are counted.
constexpr std::int32_t kMaxUnderlines = 100000;

struct UnderlineSettings {
    int ink_value;            // 0 takes the 1-bits for ink when lines are measured, else the 0-bits
    std::int32_t min_extent;  // a line is longer than this
    std::int32_t min_run;     // least length of each row of a line, or column of a vertical one
    std::int32_t thickness;   // ink that is at least this thick is no line: with 0 nothing is one
    std::int32_t dilate;      // how far a line may step aside
    std::int32_t x0;          // lines are looked for from this column ...
    std::int32_t x1;          // ... to this one, exclusive
};

// Writes the lines of the source into the target and returns the number of columns, or of rows for
// vertical lines, that have a line. The first kMaxUnderlines lines are counted. When they have been
// found the scan goes on, but passes over the rest of a row's finished components at the first line
// that is not counted: short ones behind it stay in the target.
//
// Throws std::bad_alloc, and std::length_error for a page or an x1 above 65,535; the target is then
// in an intermediate state.
//
// Keep true: source and target have the same geometry and do not overlap; all bits of a row are
// pixels, so that the width is 8 * stride.
std::int32_t extract_underlines(common::BitonalView source, common::MutableBitonalView target,
                                LineDirection direction, const UnderlineSettings& settings);

}  // namespace cleaning

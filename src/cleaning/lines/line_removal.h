// Removal of ruled lines from a bitonal page: ink that is long along one direction and thin across
// it goes, the strokes that cross it stay.
//
// Use: remove_lines() looks for lines in a zone and keeps high strokes; remove_lines_carefully()
// works on all of the page and joins the strokes again that a removed line has cut. Both change the
// page in place.
//
// Keep true: the zone lies inside the page. Both throw std::bad_alloc, with the page unchanged.
#pragma once

#include <cstdint>

#include "cleaning/lines/line_direction.h"
#include "common/rectangle.h"
#include "common/views.h"

namespace cleaning {

// In pixels along the lines or across them; a step with 0 does nothing.
struct LineSettings {
    std::int32_t min_length = 128;
    std::int32_t max_thickness = 16;  // ink that is at least this thick is a stroke and stays
    std::int32_t max_gap = 2;         // gaps shorter than this do not end a line
    std::int32_t dilate = 1;          // how far a line may step aside
    std::int32_t clean_along = 1;     // ink this far from a line goes with it
    std::int32_t clean_across = 1;
};

void remove_lines(common::MutableBitonalView page, LineDirection direction,
                  const common::Rectangle& zone, const LineSettings& settings);

// In pixels; a step with less than 1 does nothing.
struct CarefulLineSettings {
    std::int32_t thickness;   // ink that is at least this thick is no line
    std::int32_t min_length;  // of a line
    std::int32_t max_gap;     // gaps shorter than this do not end a line
    std::int32_t min_run;     // length of the thick ink that is kept out of the search
    std::int32_t join;        // gaps across that ink which are shorter than this are bridged
    std::int32_t clean;       // ink this far beside a line goes with it
};

void remove_lines_carefully(common::MutableBitonalView page, LineDirection direction,
                            const CarefulLineSettings& settings);

}  // namespace cleaning

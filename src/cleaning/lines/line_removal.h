// Removal of ruled lines from a bitonal page: what is long along one direction and thin across it
// goes, the strokes that cross it stay.
//
// Use: remove_lines() looks for lines in a zone and keeps high strokes; remove_lines_carefully()
// works on the whole page and bridges the strokes that a removed line has cut. Both change the page
// in place.
//
// Keep true: the zone lies inside the page. Both throw std::bad_alloc, with the page unchanged.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace cleaning {

enum class LineDirection { kHorizontal, kVertical };

struct LineZone {
    std::int32_t x0;
    std::int32_t x1;  // exclusive
    std::int32_t y0;
    std::int32_t y1;  // exclusive
};

// Pixels along or across the lines; a step with 0 does nothing.
struct LineSettings {
    std::int32_t min_length = 128;
    std::int32_t max_thickness = 16;  // what is at least this thick is a stroke and stays
    std::int32_t max_gap = 2;         // gaps shorter than this do not end a line
    std::int32_t dilate = 1;          // steps aside that a line may make
    std::int32_t clean_along = 1;     // ink around a line that goes with it
    std::int32_t clean_across = 1;
};

void remove_lines(common::MutableBitonalView page, LineDirection direction, const LineZone& zone,
                  const LineSettings& settings);

struct CarefulLineSettings {
    std::int32_t thickness;   // what is at least this thick is no line
    std::int32_t min_length;  // of a line
    std::int32_t max_gap;     // gaps shorter than this do not end a line
    std::int32_t min_run;     // of the thick ink that is kept out of the search
    std::int32_t join;        // gaps across the thick ink that are shorter than this are bridged
    std::int32_t clean;       // ink beside a line that goes with it
};

void remove_lines_carefully(common::MutableBitonalView page, LineDirection direction,
                            const CarefulLineSettings& settings);

}  // namespace cleaning

// Specks that are dirt: small ink that is neither near letters, nor beside a dot that is, nor one
// of a row of equal ones.
#pragma once

#include "page/page.h"

namespace tool::reading {

// In pixels of the page.
struct SpeckRule {
    int max_area;      // of a speck
    int letter;        // ink at least this wide or high is no speck or dot but letters, ...
    int near;          // ... and what is no farther from them is kept
    int least_dot;     // unless its area is less: a dot is about as wide as a stroke
    int near_full;     // the same distance for what is as large as a full stop ...
    int full_dot;      // ... in area
    int row_distance;  // dots in a row are no farther apart
};

// Erases the specks of a bitonal page that are dirt.
void remove_dirt(Page& page, const SpeckRule& rule);

}  // namespace tool::reading

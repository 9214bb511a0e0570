// Whether a grey page holds a halftone screen or an ordered dither, and how it repeats.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace grey {

struct Shift {
    int x = 0;
    int y = 0;
};

// Without a screen all members are 0, and so is cell().
struct Screen {
    // Shifts, opposite ones counted once, by which the screen repeats itself. Dots on a lattice
    // have at least three within reach, whereas lines and chance have two at most: a screen is
    // there when the count is greater than 2.
    int count = 0;
    Shift first;   // the shortest of them
    Shift second;  // the shortest of them in another direction

    bool found() const { return count > 2; }

    // Pixels of an upright square over which the dots average out. Exact for dots in rows and
    // columns and for dots on diagonals; near enough at other angles.
    int cell() const;
};

// parameter: 1 .. 251, the page's smoothing from strong to weak: the less smoothing is asked for,
// the more alike the repeats have to be. resolution: dots per inch, chooses the size of the windows
// that are analysed. Throws std::bad_alloc.
Screen find_screen(const common::GreyView& grey, int parameter, int resolution);

}  // namespace grey

// The components of a bitonal page: black ink that hangs together, corners included.
//
// The library's component rule (vemoprepro/cleaning.h) tells sizes; here a component also has its
// place and its outline.
#pragma once

#include <vector>

#include "page/page.h"
#include "reading/ink_runs.h"

namespace tool::reading {

struct Component {
    int x0, y0, x1, y1;  // its bounding box, ends excluded
    int area;            // black pixels
    int perimeter;       // sides of pixels between black and white
    int first_x;         // the column of its first pixel, in row y0

    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    // The thickness of the strokes of a component that consists of long ones.
    double stroke() const { return 2.0 * area / perimeter; }
};

struct ComponentRun {
    InkRun run;
    int component;  // its number
};

// In the order of their first pixels, from the top down and from left to right.
std::vector<Component> components_of(const Page& bits);
// The same; `runs` becomes their runs, row by row.
std::vector<Component> components_of(const Page& bits, std::vector<ComponentRun>& runs);

}  // namespace tool::reading

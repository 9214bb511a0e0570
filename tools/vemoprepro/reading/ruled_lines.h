// Ruled lines of a bitonal page.
//
// Use: remove_ruled_lines() takes them off a page that lies level; those that are less sure than
// `least` stay, and those that belong to drawings (line_surroundings.h).
//
// The library's removal knows one thickness for all lines of a page. Here every line is followed
// from end to end and its own thickness is measured. So a letter that a line touches keeps all of
// its strokes, even those that are hardly thicker than the line; and a line can be told from rows
// of screen dots, which lie among other dots.
//
// The time is linear in the pixels, whatever is on the page.
#pragma once

#include "page/page.h"
#include "reading/line_evidence.h"
#include "reading/line_scale.h"

namespace tool::reading {

struct LineChoice {
    bool level = false, upright = false;
    bool of_drawings = false;  // these, too
};

// Returns how sure the least sure line is that was taken; kSure when there was none.
Sureness remove_ruled_lines(Page& page, const LineScale& scale, LineChoice choice, Sureness least);

}  // namespace tool::reading

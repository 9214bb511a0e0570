// Ruled lines of a bitonal page.
//
// Use: remove_level_lines(page, scale) takes the horizontal ones off a page that lies level,
// remove_upright_lines(page, scale) the vertical ones.
//
// The library's removal knows one thickness for all lines of a page. Here every line is followed
// from end to end and its own thickness is measured. So a letter that a line touches keeps all of
// its strokes, even those that are hardly thicker than the line; and a line can be told from rows
// of screen dots, which lie among other dots.
#pragma once

#include "page/page.h"
#include "reading/line_scale.h"

namespace tool::reading {

void remove_level_lines(Page& page, const LineScale& scale);
void remove_upright_lines(Page& page, const LineScale& scale);

}  // namespace tool::reading

// What ruled lines stand among: rows of letters, or a drawing.
//
// Lines that serve text, in forms and tables, under words, between columns, are in the way when the
// text is read. Those of maps, charts and pictures are what there is to see.
#pragma once

#include <vector>

#include "page/page.h"

namespace tool::reading {

// Where a line lies on the page; x1 and y1 exclusive.
struct LineBox {
    int x0, y0, x1, y1;
};

// For each line whether what is around it is rows of letters for the most part. Lines that meet are
// one thing, such as a table or the frame of a map. letter_height: of small letters.
std::vector<bool> find_lines_of_text(const Page& without_lines, const std::vector<LineBox>& lines,
                                     double letter_height);

}  // namespace tool::reading

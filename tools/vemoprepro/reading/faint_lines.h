// Ruled lines that are fainter than the text. A binarization for reading leaves only stubs of them:
// their crossings, darker pieces, and what touches letters. With weaker edges the lines come out
// complete, but dirt does, too; so they are looked for on a second page, which is made that way.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Takes off the page what lies within the lines of the second page, which is given as it was with
// them and without; all three are of one size. Ink that is connected with more than `crumb` pixels
// outside of the lines is a letter, and stays. Throws std::bad_alloc.
void remove_line_stubs(Page& page, const Page& with_lines, const Page& without_lines, int crumb);

}  // namespace tool::reading

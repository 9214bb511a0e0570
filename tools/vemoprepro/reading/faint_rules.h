// Rules that are fainter than the text. A binarization for reading leaves only stubs of them: their
// crossings, darker pieces, and what touches letters. Weaker edges give the rules whole, together
// with dirt; so they are looked for there.
#pragma once

#include "page/page.h"

namespace tool {

// Takes off the page what lies within the rules of another page of the same size, which is given as
// it was with them and without. What hangs together with more than `crumb` pixels outside of the
// rules is a letter, and stays whole.
void remove_stubs_of_rules(Page& page, const Page& with_rules, const Page& without_rules,
                           int crumb);

}  // namespace tool

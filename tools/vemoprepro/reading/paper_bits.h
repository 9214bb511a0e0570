// Grey pages in black and white, by how much darker than its paper a pixel is.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Black is what is darker than the paper around it by a share of it that is the same for the whole
// page; where paper is noisy it takes more, and less for pale ink where that mends broken letters.
// Large dark areas without print are black. The page has a resolution.
Page bits_by_paper(const Page& grey);

// The same with print that is much lighter than the rest of its page where it stands by itself.
Page bits_by_paper_with_light_print(const Page& grey);

// That at twice the resolution.
Page doubled_bits_by_paper(const Page& grey);

}  // namespace tool::reading

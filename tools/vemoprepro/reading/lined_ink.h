// The ink that shows how the lines of a page lie.
#pragma once

#include "reading/ink_pieces.h"

namespace tool::reading {

// Without specks, without large pieces that touch the edge, which are borders and the page's own
// edge, and without large dark pieces, which are pictures. ink: of a page from small_ink().
Page lined_ink(const InkPieces& ink);

}  // namespace tool::reading

// Pieces and holes of a bitonal page.
#pragma once

#include <cstdint>

#include "page/page.h"

namespace tool::reading {

// How many pieces of ink there are, less the holes in them. Pixels that meet at a corner are of one
// piece.
std::int64_t euler_number(const Page& bits);

}  // namespace tool::reading

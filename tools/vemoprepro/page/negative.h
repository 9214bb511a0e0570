// Negatives of pages.
#pragma once

#include "page/page.h"

namespace tool {

// Light becomes dark and dark light; twice is as before.
void complement(Page& page);

}  // namespace tool

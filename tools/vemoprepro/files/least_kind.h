// Pages as the least kind that holds them.
#pragma once

#include "page/page.h"

namespace tool::files {

// A colour page without colour becomes grey, a grey one with nothing but 0 and 255 bitonal. Memory
// behind the page's end is given back.
void reduce_kind(Page& page);

}  // namespace tool::files

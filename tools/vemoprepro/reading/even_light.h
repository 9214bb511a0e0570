// Uneven light on a grey page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Divides the page by the grey of its paper, so that lit and shaded, clean and stained paper get
// the same grey and ink on them the same contrast. Pictures get paler. The page has a resolution.
void even_light(Page& grey);

}  // namespace tool::reading

// How strong the ink of a grey page is.
#pragma once

#include "page/page.h"

namespace tool::reading {

// How much darker than the paper the page's strong ink is: nine tenths of the places with ink have
// no more contrast. 0 without ink. The page has a resolution.
int ink_contrast(const Page& grey);

}  // namespace tool::reading

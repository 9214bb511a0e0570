// Grey pages in black and white, by edges, as recognition reads them best. The edges are looked for
// on a smoothed copy, against the noise of the sensor and of JPEG files.
#pragma once

#include "page/page.h"

namespace tool::reading {

// With edges as strong as the page's ink makes them: light print on a page of black ink may go, and
// stains and the other side showing through go with it. Throws std::bad_alloc.
Page bits_for_reading(const Page& grey);

// With the weakest edges as well: print that bits_for_reading() leaves out is there, and so are
// stains and the other side. Throws std::bad_alloc.
Page bits_with_faint_ink(const Page& grey);

}  // namespace tool::reading

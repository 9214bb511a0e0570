// How a file asks to be shown: the orientation tag of TIFF and EXIF, 1 .. 8, that scanners and
// cameras write.
#pragma once

#include "page/page.h"

namespace tool::files {

constexpr int kUprightTag = 1;

// Mirrors a grey or colour page where the tag asks for it, and notes the turn that it then needs.
// Tags without a meaning count as upright.
void orient(Page& page, int tag);

}  // namespace tool::files

// A page before and after, side by side and small enough for a line of a table.
#pragma once

#include "report/encoded_picture.h"
#include "report/placement.h"

namespace tool::report {

// placement: of the page before, on the page after.
EncodedPicture thumbnail_of(const ScaledPicture& before, const Placement& placement,
                            const ScaledPicture& after);

}  // namespace tool::report

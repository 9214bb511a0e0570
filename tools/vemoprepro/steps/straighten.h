// The ways to turn a page straight.
#pragma once

#include "page/background.h"
#include "page/page.h"
#include "steps/skew.h"

namespace tool::steps {

enum class Straightening {
    kPieces,    // of bitonal pages: small pieces of ink move as a whole and keep their shapes
    kPixels,    // shears; pages of any kind that are turned so lie on one another
    kResampled  // of greys and colours: one interpolation, what the page does not cover is paper
};

struct StraightSize {
    int width, height;
};
// Throws PageError when the skew is out of range.
StraightSize straight_size(const Page& page, Skew skew, Straightening way);

// Of the straight size. background: not for what is resampled. Throws std::bad_alloc.
void straighten(Page& page, Skew skew, Straightening way, const Background& background);

}  // namespace tool::steps

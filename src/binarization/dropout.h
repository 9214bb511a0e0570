// Colour dropout: ink of the colours that a caller does not want, such as the lines of a form,
// leaves the binarized page.
#pragma once

#include "common/views.h"
#include "grey/source.h"

namespace binarization {

struct Dropout {
    common::DropoutFunction function = nullptr;
    void* context = nullptr;

    // A caller switches it off by leaving out either.
    bool asked_for() const { return function != nullptr && context != nullptr; }
};

// Asks the function about the source colour of every black pixel, row by row from the left, and
// makes the pixel white when the answer is exactly 1. Reads the source once more from the top. The
// source is colour and has a reader. Throws std::bad_alloc before anything is changed.
void drop_colours(const Dropout& dropout, const grey::Source& source, const grey::Region& region,
                  const common::MutableBitonalView& page);

}  // namespace binarization

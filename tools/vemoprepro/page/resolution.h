// How many pixels of a page lie on an inch of paper.
#pragma once

namespace tool {

// Dots per inch; 0 when unknown.
struct Resolution {
    int x = 0;
    int y = 0;
};

// Files say "1 dpi" for "square pixels", and anything by mistake; sizes that scale with it would
// take all of a page for specks, or nothing. What no scanner has becomes 0, and a side without a
// resolution gets that of the other one.
Resolution plausible(Resolution stated);

}  // namespace tool

// The 3 x 3 smoothing of a grey page, and the search for the contrast that calls for it.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace binarization {

// Looks for two neighbouring pixels, one beside or one above the other, whose values differ by more
// than 112: a page without them is not smoothed.
//
// Use: visit() rows 0, 1, ... once each, when the row and the one above hold their final values.
class ContrastSearch {
  public:
    // One that is switched off finds nothing.
    explicit ContrastSearch(bool on) : searching_(on) {}

    void visit(const common::GreyView& grey, int y);

    bool found() const { return found_; }

  private:
    bool searching_;
    bool found_ = false;
};

// The filter draws every inner pixel towards the mean of its neighbours; the pixels of the border
// keep their values.
class Smoothing {
  public:
    // smooth: 1 .. 255, from weak to strong.
    explicit Smoothing(std::uint8_t smooth) : parameter_(256 - smooth) {}

    // In place. Throws std::bad_alloc before anything is changed.
    void apply(const common::MutableGreyView& grey) const;

    // What undither() is called with beside this smoothing: 1 .. 251.
    int undithering_parameter() const;

  private:
    int parameter_;  // 1 .. 255, from strong to weak
};

}  // namespace binarization

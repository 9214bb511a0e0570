// The 3 x 3 smoothing of a grey page, and the search for the contrast that calls for it.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "simd/pixels/grey_rows.h"

namespace grey {

// Looks for two neighbouring pixels, one beside or one above the other, whose values differ by more
// than 112: a page without them is not smoothed.
//
// Use: (visit)*, for rows 0, 1, ... once each, when the row and the one above have their final
// values; found() at any time.
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
// keep their values. It works in place and down the page, so that rows can be filtered as soon as
// the one below has its final value.
//
// Use: Smoothing smoothing(smooth, width) allocates all that is needed; (advance)*, with the number
// of rows that are final by then, the last time all of them.
class Smoothing {
  public:
    // smooth: 1 .. 255, from weak to strong. Throws std::bad_alloc.
    Smoothing(std::uint8_t smooth, std::int32_t width);

    // Filters what the first `rows` rows of the page allow.
    void advance(const common::MutableGreyView& grey, std::int32_t rows);

  private:
    simd::NeighbourWeight weight_;
    std::int32_t filtered_ = 0;          // rows
    frame::Buffer<std::uint8_t> above_;  // as they were: the row above the next one, and that one
    frame::Buffer<std::uint8_t> here_;
};

// What undither() is called with beside a smoothing: 1 .. 251. smooth: 1 .. 255.
int undithering_parameter(std::uint8_t smooth);

}  // namespace grey

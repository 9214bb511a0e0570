// Run morphology on working images of a zone, named by the direction of the lines that are looked
// for: along a line and across it.
//
// Use: const LineMorphology morphology(direction, stride, zone); morphology.dilate_across(1,
// image);
//
// Keep true: all images have the geometry of the page. Throws std::bad_alloc where there is no
// memory.
#pragma once

#include <cstdint>

#include "cleaning/lines/line_removal.h"
#include "ink/run_morphology.h"

namespace cleaning {

class LineMorphology {
  public:
    LineMorphology(LineDirection direction, std::int32_t stride, const LineZone& zone)
        : along_(direction == LineDirection::kHorizontal ? ink::Along::kRows
                                                         : ink::Along::kColumns),
          across_(direction == LineDirection::kHorizontal ? ink::Along::kColumns
                                                          : ink::Along::kRows),
          stride_(stride),
          zone_(zone) {}

    void fill_gaps_along(std::int32_t n, std::uint8_t* image) const {
        run(ink::fill_gaps, along_, n, image);
    }
    void fill_gaps_across(std::int32_t n, std::uint8_t* image) const {
        run(ink::fill_gaps, across_, n, image);
    }
    void remove_short_along(std::int32_t n, std::uint8_t* image) const {
        run(ink::remove_short, along_, n, image);
    }
    void remove_short_across(std::int32_t n, std::uint8_t* image) const {
        run(ink::remove_short, across_, n, image);
    }
    void dilate_along(std::int32_t n, std::uint8_t* image) const {
        run(ink::dilate, along_, n, image);
    }
    void dilate_across(std::int32_t n, std::uint8_t* image) const {
        run(ink::dilate, across_, n, image);
    }

  private:
    using Operation = decltype(ink::dilate);

    void run(Operation operation, ink::Along along, std::int32_t n, std::uint8_t* image) const {
        operation(along, n, {image, zone_.y1, zone_.x1, stride_},
                  {zone_.x0, zone_.x1, zone_.y0, zone_.y1});
    }

    ink::Along along_;
    ink::Along across_;
    std::int32_t stride_;
    LineZone zone_;
};

}  // namespace cleaning

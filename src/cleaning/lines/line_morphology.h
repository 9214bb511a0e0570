// Run morphology on working images of a zone, named by the direction of the lines that are looked
// for: along a line and across it.
//
// Use: const LineMorphology morphology(direction, stride, zone); morphology.dilate_across(1,
// image);
//
// Keep true: all images have the geometry of the page. Throws std::bad_alloc where run_morphology.h
// reports a failure.
#pragma once

#include <cstdint>

#include "cleaning/lines/line_removal.h"
#include "ink/run_morphology.h"

namespace cleaning {

class LineMorphology {
  public:
    LineMorphology(LineDirection direction, std::int32_t stride, const LineZone& zone)
        : along_(direction == LineDirection::kHorizontal ? kRows : kColumns),
          across_(direction == LineDirection::kHorizontal ? kColumns : kRows),
          stride_(stride),
          zone_(zone) {}

    void fill_gaps_along(std::int32_t n, std::uint8_t* image) const {
        run(along_.fill_gaps, n, image);
    }
    void fill_gaps_across(std::int32_t n, std::uint8_t* image) const {
        run(across_.fill_gaps, n, image);
    }
    void remove_short_along(std::int32_t n, std::uint8_t* image) const {
        run(along_.remove_short, n, image);
    }
    void remove_short_across(std::int32_t n, std::uint8_t* image) const {
        run(across_.remove_short, n, image);
    }
    void dilate_along(std::int32_t n, std::uint8_t* image) const { run(along_.dilate, n, image); }
    void dilate_across(std::int32_t n, std::uint8_t* image) const { run(across_.dilate, n, image); }

  private:
    using Operation = decltype(&ink::h_dilate);
    struct Operations {
        Operation fill_gaps;
        Operation remove_short;
        Operation dilate;
    };
    static constexpr Operations kRows{ink::h_fill_gaps, ink::h_remove_short, ink::h_dilate};
    static constexpr Operations kColumns{ink::v_fill_gaps, ink::v_remove_short, ink::v_dilate};

    void run(Operation operation, std::int32_t n, std::uint8_t* image) const {
        ink::require_memory(
            operation(nullptr, n, image, stride_, zone_.x0, zone_.x1, zone_.y0, zone_.y1));
    }

    const Operations& along_;
    const Operations& across_;
    std::int32_t stride_;
    LineZone zone_;
};

}  // namespace cleaning

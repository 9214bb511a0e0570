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
#include <new>

#include "cleaning/line_removal.h"
#include "cleaning/run_morphology.h"

namespace cleaning {

class LineMorphology {
  public:
    LineMorphology(LineDirection direction, std::int32_t stride, const LineZone& zone)
        : horizontal_(direction == LineDirection::kHorizontal), stride_(stride), zone_(zone) {}

    void fill_gaps_along(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? h_fill_gaps : v_fill_gaps, n, image);
    }
    void fill_gaps_across(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? v_fill_gaps : h_fill_gaps, n, image);
    }
    void remove_short_along(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? h_remove_short : v_remove_short, n, image);
    }
    void remove_short_across(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? v_remove_short : h_remove_short, n, image);
    }
    void dilate_along(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? h_dilate : v_dilate, n, image);
    }
    void dilate_across(std::int32_t n, std::uint8_t* image) const {
        run(horizontal_ ? v_dilate : h_dilate, n, image);
    }

  private:
    void run(decltype(&h_dilate) operation, std::int32_t n, std::uint8_t* image) const {
        if (operation(nullptr, n, image, stride_, zone_.x0, zone_.x1, zone_.y0, zone_.y1) < 0) {
            throw std::bad_alloc();
        }
    }

    bool horizontal_;
    std::int32_t stride_;
    LineZone zone_;
};

}  // namespace cleaning

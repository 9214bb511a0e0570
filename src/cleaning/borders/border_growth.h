// The dark border of a page, grown from its edges into a mask.
//
// Use: BorderMask mask(height, width); grow_border(page, limits, mask);
#pragma once

#include <cstddef>
#include <cstdint>

#include "cleaning/borders/border_mask.h"
#include "simd/pixels/border_rows.h"

namespace cleaning {

// A grey or colour page of somebody else's. Stride in bytes.
struct BorderPage {
    std::uint8_t* data;
    std::int32_t height;
    std::int32_t width;
    std::ptrdiff_t stride;
    simd::PixelLayout layout;

    std::uint8_t* row(std::ptrdiff_t y) const { return data + y * stride; }
};

// Grey values, 0 black; any values.
struct BorderLimits {
    std::int32_t dark;   // what is darker begins a border at the page's edge
    std::int32_t light;  // what is darker continues one
    std::int32_t step;   // where it differs by less from its neighbours
};

// Makes the grey values that grow_border() needs: two rows of them. Throws std::bad_alloc.
class GreyLines {
  public:
    explicit GreyLines(const BorderPage& page);

    // Row y. The same as long as no other row of the same parity has been asked for.
    simd::GreyLine& row(std::ptrdiff_t y);

  private:
    const BorderPage& page_;
    std::size_t room_;   // grey values of a line
    std::size_t flags_;  // words of flags of a line
    frame::Buffer<std::uint8_t> grey_;
    frame::Buffer<std::uint64_t> ready_;
    simd::GreyLine lines_[2];
};

// Marks the border in the mask, which has the page's size and no marks. Throws std::bad_alloc
// before it reads the page. The page has pixels.
void grow_border(const BorderPage& page, const BorderLimits& limits, BorderMask& mask);

}  // namespace cleaning

// The dark border of a page, grown from its edges into a mask.
//
// Use: BorderMask mask(height, width); grow_border(page, limits, mask);
#pragma once

#include <cstddef>
#include <cstdint>

#include "cleaning/borders/border_mask.h"
#include "simd/pixels/border_rows.h"

namespace cleaning {

// A view of a grey or colour page whose pixel layout is known at run time only. Stride in bytes.
struct BorderPage {
    std::uint8_t* data;
    std::int32_t height;
    std::int32_t width;
    std::ptrdiff_t stride;
    simd::PixelLayout layout;

    std::uint8_t* row(std::ptrdiff_t y) const { return data + y * stride; }
};

// Grey values, 0 for black; any number will do.
struct BorderLimits {
    std::int32_t dark;   // darker pixels on the page's edge begin a border
    std::int32_t light;  // darker pixels continue it ...
    std::int32_t step;   // ... where they differ by less than this from their neighbours
};

// The grey values of two neighbouring rows of a page.
class GreyLines {
  public:
    // Throws std::bad_alloc.
    explicit GreyLines(const BorderPage& page);

    // Row y, which stays valid until another row of the same parity is asked for.
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

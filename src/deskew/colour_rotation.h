// The deskew rotation of grey and colour pages, in place.
//
// Use: straighten_in_place() turns a page in a buffer that has room for `result`, whose size is at
// least sheared_size(); it returns false, with nothing written, when it is less.
//
// Keep true: the buffer holds result.height * result.width pixels and no fewer than the page has. A
// skew out of range throws std::out_of_range before anything is written, an allocation that fails
// std::bad_alloc with the page partly turned.
#pragma once

#include <cstdint>

#include "deskew/progress.h"
#include "deskew/skew_unit.h"

namespace deskew {

// A page of packed rows.
struct PixelPage {
    std::uint8_t* data = nullptr;
    int pixel_bytes = 0;  // 1 .. 4; two bytes are a number, high byte first, of 5 bits a channel
    Size size;
};

// `background` is one pixel. Reports (0, 4) .. (4, 4).
bool straighten_in_place(const PixelPage& page, Skew skew, Size result,
                         const std::uint8_t* background, const Progress& progress);

}  // namespace deskew

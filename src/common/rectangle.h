// An upright rectangle of pixels: the columns x0 <= x < x1 of the rows y0 <= y < y1.
//
// Use: Rectangle zone{x0, x1, y0, y1}; the order is that of the C interface. whole(page) is the
// rectangle of all pixels of a view.
//
// Keep true: where a function does not say otherwise, the rectangle lies inside the image.
#pragma once

#include <cstdint>

namespace common {

struct Rectangle {
    std::int32_t x0 = 0;
    std::int32_t x1 = 0;  // exclusive
    std::int32_t y0 = 0;
    std::int32_t y1 = 0;  // exclusive

    // In 32 bits for rectangles inside an image; any other one may be measured only if empty() is
    // false and its corners are not negative.
    constexpr std::int32_t width() const { return x1 - x0; }
    constexpr std::int32_t height() const { return y1 - y0; }

    // Whether there is no pixel in it. Corners may have any value.
    constexpr bool empty() const { return x0 >= x1 || y0 >= y1; }
};

template <class View>
constexpr Rectangle whole(const View& image) {
    return {0, image.width, 0, image.height};
}

}  // namespace common

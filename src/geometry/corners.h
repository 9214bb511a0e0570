// The four corners of a page on a photograph: their order, and the size of the page between them.
//
// Keep true: y grows downwards. Ordered corners go round the page clockwise: upper left, upper
// right, lower right, lower left.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace geometry {

struct Point {
    std::int32_t x, y;
};

using Corners = std::array<Point, 4>;

Corners ordered(const Corners& corners);

// The means of opposite sides, everything cut off to whole pixels; nothing where a side has a
// square that does not fit in 32 bits.
struct PageSides {
    std::optional<std::int32_t> height, width;
};

PageSides sides_between(const Corners& ordered_corners);

}  // namespace geometry

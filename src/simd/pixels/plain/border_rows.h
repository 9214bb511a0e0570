// Plain forms of border_rows.h. They take every grey value from the pixels themselves.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "common/luminance.h"
#include "simd/pixels/border_rows.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline std::uint8_t grey_value(PixelLayout layout, const std::uint8_t* pixel) {
    using common::luminance_in_thousandths;
    switch (layout) {
        case PixelLayout::kBgr:
            return luminance_in_thousandths(pixel[2], pixel[1], pixel[0]);
        case PixelLayout::kRgb:
            return luminance_in_thousandths(pixel[0], pixel[1], pixel[2]);
        case PixelLayout::kXrgb:
            return luminance_in_thousandths(pixel[1], pixel[2], pixel[3]);
        default:
            return pixel[0];
    }
}

inline void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest,
                      std::uint64_t* marks) {
    const std::size_t bytes = pixel_bytes(shape.layout);
    for (std::size_t x = 0; x < shape.width; ++x) {
        if (grey_value(shape.layout, line.pixels + x * bytes) <= darkest) mark(marks, x);
    }
}

inline bool propagate_marks(PassDirection direction, const RowShape& shape,
                            const JoinLimits& limits, GreyLine& row, GreyLine& neighbour,
                            const std::uint64_t* neighbour_marks, std::uint64_t* marks) {
    const auto grey = [&](const GreyLine& line, std::size_t x) -> int {
        return grey_value(shape.layout, line.pixels + x * pixel_bytes(shape.layout));
    };
    bool any = false;
    for (std::size_t i = 1; i < shape.width; ++i) {
        const bool right = direction == PassDirection::kRight;
        const std::size_t x = right ? i : shape.width - 1 - i;
        const std::size_t before = right ? x - 1 : x + 1;
        const int own = grey(row, x);
        const int steepest =
            std::max({std::abs(own - grey(row, before)), std::abs(own - grey(neighbour, x)),
                      std::abs(own - grey(neighbour, before))});
        if (marked(marks, x) || own > limits.lightest || steepest > limits.steepest) continue;
        if (marked(marks, before) || marked(neighbour_marks, x) ||
            marked(neighbour_marks, before)) {
            mark(marks, x);
            any = true;
        }
    }
    return any;
}

}  // namespace simd::plain

// Plain forms of grey_rows.h.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "common/luminance.h"
#include "simd/pixels/grey_rows.h"

namespace simd::plain {

inline void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                          std::uint8_t* grey) {
    const std::size_t red = order == ChannelOrder::kRedFirst ? 0 : 2;
    for (std::size_t x = 0; x < width; ++x, colour += 3) {
        grey[x] = common::luminance(colour[red], colour[1], colour[2 - red]);
    }
}

inline void luminance_in_thousandths(const std::uint8_t* colour, std::size_t width,
                                     ChannelOrder order, std::uint8_t* grey) {
    const std::size_t red = order == ChannelOrder::kRedFirst ? 0 : 2;
    for (std::size_t x = 0; x < width; ++x, colour += 3) {
        grey[x] = common::luminance_in_thousandths(colour[red], colour[1], colour[2 - red]);
    }
}

inline void luminance_in_place(std::uint8_t* row, std::size_t width, ChannelOrder order) {
    luminance_in_thousandths(row, width, order, row);
}

inline void clamp_saturated(const std::uint8_t* colour, std::size_t width, std::uint8_t* grey) {
    for (std::size_t x = 0; x < width; ++x, colour += 3) {
        const auto [least, most] = std::minmax({colour[0], colour[1], colour[2]});
        const bool saturated = most - least > kSaturatedChroma;
        if (saturated && grey[x] > kSaturatedMaximum) grey[x] = kSaturatedMaximum;
    }
}

inline bool differs_above(const std::uint8_t* first, const std::uint8_t* second, std::size_t count,
                          std::uint8_t limit) {
    for (std::size_t x = 0; x < count; ++x) {
        if (std::abs(first[x] - second[x]) > limit) return true;
    }
    return false;
}

inline std::uint8_t smoothed(const std::uint8_t* above, const std::uint8_t* row,
                             const std::uint8_t* below, NeighbourWeight weight) {
    const int neighbours =
        above[-1] + above[0] + above[1] + row[-1] + row[1] + below[-1] + below[0] + below[1];
    return static_cast<std::uint8_t>((weight * neighbours + 8 * (128 - weight) * row[0]) / 1024);
}

inline void smooth_row(const std::uint8_t* above, const std::uint8_t* row,
                       const std::uint8_t* below, std::size_t width, NeighbourWeight weight,
                       std::uint8_t* out) {
    if (width == 0) return;
    out[0] = row[0];
    for (std::size_t x = 1; x + 1 < width; ++x) {
        out[x] = smoothed(above + x, row + x, below + x, weight);
    }
    out[width - 1] = row[width - 1];
}

inline void gaussian_row(const std::uint8_t* above, const std::uint8_t* row,
                         const std::uint8_t* below, std::size_t width, std::uint8_t* out) {
    const auto column = [=](std::size_t x) { return above[x] + 2 * row[x] + below[x]; };
    for (std::size_t x = 1; x + 1 < width; ++x) {
        out[x] =
            static_cast<std::uint8_t>((column(x - 1) + 2 * column(x) + column(x + 1) + 8) / 16);
    }
}

}  // namespace simd::plain

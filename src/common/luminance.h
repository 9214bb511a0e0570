// The luminance of a colour, 0 .. 255, rounded down: 0.299 red, 0.587 green and 0.114 blue
// (ITU-R BT.601). It is defined in two precisions, which differ by 1 for some colours.
#pragma once

#include <cstdint>

namespace common {

constexpr std::uint32_t kRedWeight = 19595;
constexpr std::uint32_t kGreenWeight = 38470;
constexpr std::uint32_t kBlueWeight = 7471;

// In weights of 1/65536: what the library binarizes. A neutral pixel keeps its value in either.
constexpr std::uint8_t luminance(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return static_cast<std::uint8_t>(
        (kRedWeight * red + kGreenWeight * green + kBlueWeight * blue) >> 16);
}

// In weights of 1/1000: what dark borders are told by.
constexpr std::uint8_t luminance_in_thousandths(std::uint32_t red, std::uint32_t green,
                                                std::uint32_t blue) {
    return static_cast<std::uint8_t>((299 * red + 587 * green + 114 * blue) / 1000);
}

}  // namespace common

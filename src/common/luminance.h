// The luminance that every family of the library shares.
#pragma once

#include <cstdint>

namespace common {

constexpr std::uint32_t kRedWeight = 19595;
constexpr std::uint32_t kGreenWeight = 38470;
constexpr std::uint32_t kBlueWeight = 7471;

// 0 .. 255; the weights add up to 65536, so a neutral pixel keeps its value.
constexpr std::uint8_t luminance(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return static_cast<std::uint8_t>(
        (kRedWeight * red + kGreenWeight * green + kBlueWeight * blue) >> 16);
}

}  // namespace common

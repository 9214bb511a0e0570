// Colours as luma and two chroma differences, in weights of 1/65536 (ITU-R BT.601, full range), and
// the two ways back.
//
// Use: to_luma_chroma() of the red, green and blue of a pixel; to_colour() after scaling, where
// green is solved from the luma; to_colour_directly() after a perspective correction, where each
// colour comes from its own weights. The two differ in green.
//
// Keep true: divisions are cut off towards zero.
#pragma once

#include <algorithm>
#include <cstdint>

#include "common/luminance.h"

namespace common {

struct LumaChroma {
    std::uint8_t y;
    std::uint8_t cr;  // red difference, 128 for none
    std::uint8_t cb;  // blue difference, 128 for none
};

struct Colour {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

constexpr std::int32_t kChromaUnit = 65536;
constexpr std::int32_t kRedFromCr = 91881;
constexpr std::int32_t kBlueFromCb = 116130;
constexpr std::int32_t kGreenFromCr = -46802;
constexpr std::int32_t kGreenFromCb = -22553;

constexpr std::uint8_t clamped_to_byte(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// The chroma of any colour is within 1 .. 255 and needs no clamp.
constexpr LumaChroma to_luma_chroma(std::int32_t red, std::int32_t green, std::int32_t blue) {
    const std::int32_t cr = (32768 * red - 27440 * green - 5328 * blue) / kChromaUnit + 128;
    const std::int32_t cb = (-11056 * red - 21712 * green + 32768 * blue) / kChromaUnit + 128;
    return {luminance(static_cast<std::uint32_t>(red), static_cast<std::uint32_t>(green),
                      static_cast<std::uint32_t>(blue)),
            static_cast<std::uint8_t>(cr), static_cast<std::uint8_t>(cb)};
}

// Green is what the luma leaves after red and blue, which count before they are clamped.
constexpr Colour to_colour(LumaChroma from) {
    constexpr std::int32_t kGreen = kGreenWeight;
    const std::int32_t red = from.y + (from.cr - 128) * kRedFromCr / kChromaUnit;
    const std::int32_t blue = from.y + (from.cb - 128) * kBlueFromCb / kChromaUnit;
    const std::int32_t rest = kChromaUnit * from.y - static_cast<std::int32_t>(kRedWeight) * red -
                              static_cast<std::int32_t>(kBlueWeight) * blue;
    return {clamped_to_byte(red), clamped_to_byte(rest / kGreen), clamped_to_byte(blue)};
}

constexpr Colour to_colour_directly(LumaChroma from) {
    const std::int32_t cr = from.cr - 128;
    const std::int32_t cb = from.cb - 128;
    return {clamped_to_byte(from.y + cr * kRedFromCr / kChromaUnit),
            clamped_to_byte(from.y + (cr * kGreenFromCr + cb * kGreenFromCb) / kChromaUnit),
            clamped_to_byte(from.y + cb * kBlueFromCb / kChromaUnit)};
}

}  // namespace common

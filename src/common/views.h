// Views of images that somebody else owns: what the families work on.
//
// Use: BitonalView page{src, height, width, stride}; page.row(y) is the first byte of row y. The
// mutable form converts to the const one. Bitonal: 8 pixels a byte, leftmost in the most
// significant bit, 1 = black. Grey: a byte a pixel. Colour: three bytes a pixel.
//
// Keep true: data covers height rows that start stride bytes apart; the checks were made in
// src/api.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace common {

enum class PixelKind { kBitonal, kGrey, kColour };

template <class Byte, PixelKind kKind>
struct View {
    Byte* data = nullptr;
    std::int32_t height = 0;    // rows
    std::int32_t width = 0;     // pixels
    std::ptrdiff_t stride = 0;  // bytes from row to row

    Byte* row(std::ptrdiff_t y) const { return data + y * stride; }

    // Bytes of all rows, what lies beyond the width included; sizes are at least 0.
    std::size_t size() const {
        return static_cast<std::size_t>(height) * static_cast<std::size_t>(stride);
    }

    operator View<const Byte, kKind>() const requires(!std::is_const_v<Byte>) {
        return {data, height, width, stride};
    }
};

using BitonalView = View<const std::uint8_t, PixelKind::kBitonal>;
using MutableBitonalView = View<std::uint8_t, PixelKind::kBitonal>;
using GreyView = View<const std::uint8_t, PixelKind::kGrey>;
using MutableGreyView = View<std::uint8_t, PixelKind::kGrey>;
using ColourView = View<const std::uint8_t, PixelKind::kColour>;
using MutableColourView = View<std::uint8_t, PixelKind::kColour>;

// Bytes that hold `width` pixels of a bitonal row.
constexpr std::int64_t bitonal_bytes(std::int64_t width) {
    return (width + 7) / 8;
}

// Row stride of whole 32-bit words for `width` pixels: what bitonal results use.
constexpr std::int64_t bitonal_stride(std::int64_t width) {
    return (width + 31) / 32 * 4;
}

}  // namespace common

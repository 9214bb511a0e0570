#include "cleaning/borders/border_crop.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "cleaning/borders/border_mask.h"

namespace cleaning {
namespace {

// The first pixel from x on that is marked, or that is not; width if there is none. Rows of a mask
// begin with the least significant bit; border_ink.cpp searches bitonal rows, which begin with the
// most significant one.
std::size_t find_pixel(const std::uint64_t* row, std::size_t x, std::size_t width, bool marked) {
    while (x < width) {
        const std::uint64_t word = (marked ? row[x / 64] : ~row[x / 64]) >> (x % 64);
        if (word != 0) {
            return std::min(width, x + static_cast<std::size_t>(std::countr_zero(word)));
        }
        x = (x / 64 + 1) * 64;
    }
    return width;
}

// Makes the colours of the pixels white and keeps the byte in front of each.
void whiten_after_first(std::uint8_t* pixels, std::size_t count) {
    constexpr std::uint8_t kColours[4] = {0, 255, 255, 255};
    std::uint32_t colours = 0;
    std::memcpy(&colours, kColours, 4);
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, pixels + 4 * i, 4);
        pixel |= colours;
        std::memcpy(pixels + 4 * i, &pixel, 4);
    }
}

void whiten(const BorderPage& page, const BorderMask& mask) {
    const auto width = static_cast<std::size_t>(page.width);
    const std::size_t bytes = simd::pixel_bytes(page.layout);
    for (std::ptrdiff_t y = 0; y < page.height; ++y) {
        const std::uint64_t* const border = mask.row(y);
        for (std::size_t x = find_pixel(border, 0, width, true); x < width;) {
            const std::size_t end = find_pixel(border, x, width, false);
            std::uint8_t* const pixels = page.row(y) + x * bytes;
            if (page.layout == simd::PixelLayout::kXrgb) {
                whiten_after_first(pixels, end - x);
            } else {
                std::memset(pixels, 255, (end - x) * bytes);
            }
            x = find_pixel(border, end, width, true);
        }
    }
}

}  // namespace

std::optional<common::Rectangle> crop_border(const BorderPage& page, const BorderLimits& limits) {
    BorderMask mask(page.height, page.width);
    if (page.height < kSmallestCropped || page.width < kSmallestCropped) return std::nullopt;
    grow_border(page, limits, mask);
    mask.dilate();
    mask.mark_frame();
    const common::Rectangle content = content_of(mask);
    whiten(page, mask);
    return content;
}

}  // namespace cleaning

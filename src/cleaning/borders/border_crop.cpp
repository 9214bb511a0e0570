#include "cleaning/borders/border_crop.h"

#include <cstddef>
#include <cstring>

#include "cleaning/borders/border_mask.h"

namespace cleaning {
namespace {

// The byte in front of each pixel's colours keeps its value.
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
    const std::size_t bytes = simd::pixel_bytes(page.layout);
    for (std::ptrdiff_t y = 0; y < page.height; ++y) {
        for (std::int32_t x = mask.next(y, 0, true); x < page.width;) {
            const std::int32_t end = mask.next(y, x, false);
            const auto count = static_cast<std::size_t>(end - x);
            std::uint8_t* const pixels = page.row(y) + static_cast<std::size_t>(x) * bytes;
            if (page.layout == simd::PixelLayout::kXrgb) {
                whiten_after_first(pixels, count);
            } else {
                std::memset(pixels, 255, count * bytes);
            }
            x = mask.next(y, end, true);
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

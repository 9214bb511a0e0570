// The interior is counted first and the frame around it added: every pixel is counted once.
#include "binarization/gradient_levels.h"

#include <algorithm>
#include <cstddef>

namespace binarization {
namespace {

constexpr std::uint64_t kWhiteShare = 16;  // one pixel in so many makes a level the page's white
constexpr int kFrameShare = 12;            // the frame takes one row or column in so many, per side
constexpr int kFullScale = 128;            // the setting that stands for white

common::GreyView part(const common::GreyView& grey, std::int32_t y0, std::int32_t y1,
                      std::int32_t x0, std::int32_t x1) {
    return {grey.row(y0) + x0, y1 - y0, x1 - x0, grey.stride};
}

void add(Histogram& sum, const Histogram& counts) {
    for (std::size_t level = 0; level < sum.size(); ++level) sum[level] += counts[level];
}

std::uint8_t to_page_scale(int scaled) {
    return static_cast<std::uint8_t>(scaled >= 256 * kFullScale ? 255 : scaled / kFullScale);
}

}  // namespace

int white_level(const Histogram& histogram) {
    std::uint64_t pixels = 0;
    for (const std::uint64_t count : histogram) pixels += count;
    if (pixels == 0) return 255;
    int darkest = 0;
    while (histogram[static_cast<std::size_t>(darkest)] == 0) ++darkest;
    std::uint64_t light = histogram[255];
    if (pixels < kWhiteShare * light) return (darkest + 256) >> 1;
    int level = 255;
    while (level > darkest && pixels >= kWhiteShare * light) {
        --level;
        light += histogram[static_cast<std::size_t>(level)];
    }
    return (level + darkest + 1) >> 1;
}

DarkLevels page_levels(const common::GreyView& grey, const DarkLevels& settings) {
    if (settings.black1 == 0) return {};
    const std::int32_t top = grey.height / kFrameShare;
    const std::int32_t side = grey.width / kFrameShare;
    const std::int32_t bottom = grey.height - top;
    const std::int32_t right = grey.width - side;
    Histogram counts = histogram(part(grey, top, bottom, side, right));
    const int interior_white = white_level(counts);
    add(counts, histogram(part(grey, 0, top, 0, grey.width)));
    add(counts, histogram(part(grey, bottom, grey.height, 0, grey.width)));
    add(counts, histogram(part(grey, top, bottom, 0, side)));
    add(counts, histogram(part(grey, top, bottom, right, grey.width)));
    const int page_white = white_level(counts);

    const int black1 = settings.black1;
    const int white = black1 < interior_white ? page_white : interior_white;
    // Divided before it is multiplied: black2 follows black1 in whole multiples of it.
    const int floor = white * settings.black2 / black1 * black1;
    return {to_page_scale(black1 * white), to_page_scale(floor)};
}

}  // namespace binarization

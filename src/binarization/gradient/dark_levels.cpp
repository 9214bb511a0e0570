// The white level needs two levels of a page only: the darkest one, and the one that a sixteenth of
// the pixels reaches. The latter is guessed from a few rows; pixels are counted at the levels
// around the guess, and at all levels where it turns out to lie elsewhere.
#include "binarization/gradient/dark_levels.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "simd/pixels/light_counts.h"

namespace binarization {
namespace {

constexpr std::uint64_t kWhiteShare = 16;  // one pixel in so many makes a level the page's white
constexpr int kFrameShare = 12;            // the frame takes one row or column in so many, per side
constexpr int kFullScale = 128;            // the setting that stands for white
constexpr std::int32_t kSampledRows = 32;  // one row in so many makes the guess

// Whether more than a sixteenth of the pixels are among these.
bool make_white(std::uint64_t light, std::uint64_t pixels) {
    return kWhiteShare * light > pixels;
}

common::GreyView part(const common::GreyView& grey, std::int32_t y0, std::int32_t y1,
                      std::int32_t x0, std::int32_t x1) {
    return {grey.row(y0) + x0, y1 - y0, x1 - x0, grey.stride};
}

// The lightest level that more than a sixteenth of the pixels reach; there are pixels.
int lightest_common(const Histogram& histogram) {
    std::uint64_t pixels = 0;
    for (const std::uint64_t count : histogram) pixels += count;
    std::uint64_t light = histogram[255];
    int level = 255;
    while (!make_white(light, pixels)) light += histogram[static_cast<std::size_t>(--level)];
    return level;
}

int guess_lightest_common(const common::GreyView& grey) {
    const std::int32_t rows = (grey.height + kSampledRows - 1) / kSampledRows;
    return lightest_common(histogram({grey.data, rows, grey.width, grey.stride * kSampledRows}));
}

// Halfway, rounded up, between the darkest level that occurs and the lightest one that more than a
// sixteenth of the pixels reach.
int halfway_up(int lightest_common, int darkest) {
    return (lightest_common + darkest + 1) >> 1;
}

// What is known of the light and the dark end of a set of pixels.
class Ends {
  public:
    explicit Ends(int guess)
        : first_(std::clamp(guess - simd::kLightLevels / 2 + 1, 1, 256 - simd::kLightLevels)) {}

    void add(const common::GreyView& grey) {
        simd::count_light(grey, static_cast<std::uint8_t>(first_), counts_);
        pixels_ += static_cast<std::uint64_t>(grey.width) * static_cast<std::uint64_t>(grey.height);
    }

    // Whether the level that the lightest sixteenth reaches is one of those counted.
    bool decided() const {
        return make_white(counts_.at_least.front(), pixels_) &&
               (first_ == 256 - simd::kLightLevels ||
                !make_white(counts_.at_least.back(), pixels_));
    }

    int white_level() const {
        std::size_t k = simd::kLightLevels - 1;
        while (!make_white(counts_.at_least[k], pixels_)) --k;
        return halfway_up(first_ + static_cast<int>(k), counts_.least);
    }

  private:
    int first_;
    std::uint64_t pixels_ = 0;
    simd::LightCounts counts_;
};

int counted_white_level(const common::GreyView& grey) {
    const Histogram counts = histogram(grey);
    int darkest = 0;
    while (counts[static_cast<std::size_t>(darkest)] == 0) ++darkest;
    return halfway_up(lightest_common(counts), darkest);
}

std::uint8_t to_page_scale(int scaled) {
    return static_cast<std::uint8_t>(scaled >= 256 * kFullScale ? 255 : scaled / kFullScale);
}

// The white level that a setting is measured by: the one of the whole page for a setting below the
// one of its interior.
int white_for(int black1, const common::GreyView& grey) {
    const std::int32_t top = grey.height / kFrameShare;
    const std::int32_t side = grey.width / kFrameShare;
    const std::int32_t bottom = grey.height - top;
    const std::int32_t right = grey.width - side;
    const common::GreyView interior = part(grey, top, bottom, side, right);
    Ends ends(guess_lightest_common(grey));
    ends.add(interior);
    const int inner_white = ends.decided() ? ends.white_level() : counted_white_level(interior);
    if (black1 >= inner_white) return inner_white;
    ends.add(part(grey, 0, top, 0, grey.width));
    ends.add(part(grey, bottom, grey.height, 0, grey.width));
    ends.add(part(grey, top, bottom, 0, side));
    ends.add(part(grey, top, bottom, right, grey.width));
    return ends.decided() ? ends.white_level() : counted_white_level(grey);
}

}  // namespace

DarkLevels page_levels(const common::GreyView& grey, const DarkLevels& settings) {
    if (settings.black1 == 0) return {};
    const int black1 = settings.black1;
    const int white = white_for(black1, grey);
    // Divided before it is multiplied, so it is a multiple of black1 on this scale.
    const int floor = white * settings.black2 / black1 * black1;
    return {to_page_scale(black1 * white), to_page_scale(floor)};
}

}  // namespace binarization

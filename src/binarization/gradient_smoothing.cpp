// All sums are whole: the mean is taken once, with the sum of the weights that took part.
#include "binarization/gradient_smoothing.h"

namespace binarization {

void smooth_gaussian(const common::GreyView& grey, std::size_t y, std::uint8_t* out) {
    const auto height = static_cast<std::size_t>(grey.height);
    const auto width = static_cast<std::size_t>(grey.width);
    const auto row_at = [&](std::size_t at) { return grey.row(static_cast<std::ptrdiff_t>(at)); };
    const std::uint8_t* row = row_at(y);
    const std::uint8_t* above = y > 0 ? row_at(y - 1) : nullptr;
    const std::uint8_t* below = y + 1 < height ? row_at(y + 1) : nullptr;
    const int weight = 2 + (above != nullptr ? 1 : 0) + (below != nullptr ? 1 : 0);
    const auto column = [=](std::size_t x) {
        return 2 * row[x] + (above != nullptr ? above[x] : 0) + (below != nullptr ? below[x] : 0);
    };
    int left = 0;
    int here = column(0);
    for (std::size_t x = 0; x < width; ++x) {
        const bool last = x + 1 == width;
        const int right = last ? 0 : column(x + 1);
        const int weights = weight * (2 + (x > 0 ? 1 : 0) + (last ? 0 : 1));
        out[x] = static_cast<std::uint8_t>((left + 2 * here + right + weights / 2) / weights);
        left = here;
        here = right;
    }
}

}  // namespace binarization

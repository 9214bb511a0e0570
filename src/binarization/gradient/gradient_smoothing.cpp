// Sums are in integers, and divided once by the sum of the weights that took part.
#include "binarization/gradient/gradient_smoothing.h"

#include <algorithm>

#include "simd/pixels/grey_rows.h"

namespace binarization {
namespace {

std::uint8_t smoothed_at(const common::GreyView& grey, std::int32_t y, std::int32_t x) {
    int sum = 0;
    int weights = 0;
    for (std::int32_t i = std::max(y - 1, 0); i <= std::min(y + 1, grey.height - 1); ++i) {
        for (std::int32_t j = std::max(x - 1, 0); j <= std::min(x + 1, grey.width - 1); ++j) {
            const int weight = (i == y ? 2 : 1) * (j == x ? 2 : 1);
            sum += weight * grey.row(i)[j];
            weights += weight;
        }
    }
    return static_cast<std::uint8_t>((sum + weights / 2) / weights);
}

}  // namespace

void smooth_gaussian(const common::GreyView& grey, std::int32_t y, std::uint8_t* out) {
    if (y == 0 || y + 1 == grey.height) {
        for (std::int32_t x = 0; x < grey.width; ++x) out[x] = smoothed_at(grey, y, x);
        return;
    }
    simd::gaussian_row(grey.row(y - 1), grey.row(y), grey.row(y + 1),
                       static_cast<std::size_t>(grey.width), out);
    out[0] = smoothed_at(grey, y, 0);
    out[grey.width - 1] = smoothed_at(grey, y, grey.width - 1);
}

}  // namespace binarization

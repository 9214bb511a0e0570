// Unsharp masking: what a pixel differs by from the mean of the 3 x 3 pixels around it is added to
// it once more.
#include "reading/sharpen.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tool::reading {
namespace {

// sums: of every pixel and those above and below it.
void sharpen_row(const unsigned char* __restrict own, const std::int16_t* __restrict sums,
                 int width, unsigned char* __restrict result) {
    for (int x = 1; x + 1 < width; ++x) {
        const auto more =
            static_cast<std::int16_t>(9 * own[x] - sums[x - 1] - sums[x] - sums[x + 1]);
        const auto sharp = static_cast<std::int16_t>(own[x] + static_cast<std::int16_t>(more / 9));
        result[x] = static_cast<unsigned char>(std::clamp<std::int16_t>(sharp, 0, 255));
    }
}

}  // namespace

void sharpen(Page& grey) {
    const Page soft = copy_of(grey);
    std::vector<std::int16_t> sums(static_cast<std::size_t>(grey.width));
    for (int y = 1; y + 1 < grey.height; ++y) {
        const unsigned char* __restrict above = soft.row(y - 1);
        const unsigned char* __restrict own = soft.row(y);
        const unsigned char* __restrict below = soft.row(y + 1);
        std::int16_t* __restrict sum = sums.data();
        for (int x = 0; x < grey.width; ++x) {
            sum[x] = static_cast<std::int16_t>(above[x] + own[x] + below[x]);
        }
        sharpen_row(own, sum, grey.width, grey.row(y));
    }
}

}  // namespace tool::reading

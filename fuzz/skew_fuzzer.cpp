// Skew of bitonal pages: sizes, strides and ink from the input; the page lies in a block of exactly
// its size.
//
// Input: 7 bytes of arguments, then ink, repeated over the page.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "vemoprepro/deskew.h"

namespace {

constexpr std::size_t kArguments = 7;

void check(bool holds) {
    if (!holds) std::abort();
}

struct Outputs {
    int yskew = -1;
    int scale = -1;
    double confidence = -1;
    int height = -1;
    int width = -1;
};

Outputs estimate(const std::vector<std::uint8_t>& page, int height, int width, int stride,
                 int& result) {
    Outputs out;
    result =
        estimate_skew_of_binary_image(0, nullptr, page.data(), height, width, stride, &out.yskew,
                                      &out.scale, &out.confidence, &out.height, &out.width);
    return out;
}

// The page that the estimator sees: no bits beyond the last whole byte, no row beyond an even
// number.
std::vector<std::uint8_t> cleaned(std::vector<std::uint8_t> page, int height, int width,
                                  int stride) {
    for (int y = 0; y < height; ++y) {
        const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(y) * stride;
        const int kept = y == height / 2 * 2 ? 0 : width / 8;
        std::fill(page.begin() + row + kept, page.begin() + row + stride, std::uint8_t{0});
    }
    return page;
}

void check_success(const std::vector<std::uint8_t>& page, int height, int width, int stride,
                   const Outputs& out) {
    check(out.scale == 512 && std::abs(out.yskew) <= 96);
    check(out.yskew == 0 || !(out.confidence < 1.5));
    int dim_height = 0;
    int dim_width = 0;
    check(skrotbmp_dim(out.yskew, out.scale, height, width, &dim_height, &dim_width) == 0);
    check(dim_height == out.height && dim_width == out.width);

    int result = 0;
    const Outputs again =
        estimate(cleaned(page, height, width, stride), height, width, stride, result);
    check(result == 0 && again.yskew == out.yskew);
    check(std::memcmp(&again.confidence, &out.confidence, sizeof(double)) == 0);

    Outputs brief;
    check(skbitmap_mem(page.data(), height, width, stride, &brief.yskew, &brief.scale,
                       &brief.height, &brief.width) == 0);
    check(brief.yskew == out.yskew && brief.height == out.height && brief.width == out.width);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] | (data[1] & 1) << 8;
    const int width = data[2] | (data[3] & 3) << 8;
    const int extra = data[4] % 16 == 0 ? data[5] : data[5] % 8 * 4;
    const int stride = (width + 31) / 32 * 4 + extra - (data[6] % 8 == 0 ? 4 : 0);
    if (stride < 0) return 0;
    data += kArguments;
    size -= kArguments;

    std::vector<std::uint8_t> page(static_cast<std::size_t>(height) *
                                   static_cast<std::size_t>(stride));
    for (std::size_t i = 0; i < page.size(); ++i) page[i] = data[i % size];

    int result = 0;
    const Outputs out = estimate(page, height, width, stride, result);
    if (page.empty()) check(result == -1);
    if (result == 0) {
        check_success(page, height, width, stride, out);
    } else {
        check(result == -1 && out.yskew == 0 && out.scale == 512 && out.confidence == 1.0);
        check(out.height == -1 && out.width == -1);
        check(height < 32 || width < 32 || stride % 4 != 0 || stride < (width + 31) / 32 * 4);
    }
    return 0;
}

// Skew of bitonal pages beside its slow model: sizes, strides and ink from the input; the page lies
// in a block of exactly its size.
//
// Input: 7 bytes of arguments, then ink, repeated over the page.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "models/skew_model.h"
#include "vemoprepro/deskew.h"

namespace {

constexpr std::size_t kArguments = 7;

void check(bool holds) {
    if (!holds) std::abort();
}

struct Outputs {
    int result = 0;
    int yskew = -1;
    int scale = -1;
    double confidence = -1;
    int height = -1;
    int width = -1;

    bool operator==(const Outputs& other) const {
        const bool as_sure = confidence == other.confidence ||
                             (std::isnan(confidence) && std::isnan(other.confidence));
        return as_sure && result == other.result && yskew == other.yskew && scale == other.scale &&
               height == other.height && width == other.width;
    }
};

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

    Outputs out;
    out.result =
        estimate_skew_of_binary_image(0, nullptr, page.data(), height, width, stride, &out.yskew,
                                      &out.scale, &out.confidence, &out.height, &out.width);
    Outputs expected;
    expected.result = model::estimate_skew_of_binary_image(
        nullptr, page.data(), height, width, stride, &expected.yskew, &expected.scale,
        &expected.confidence, &expected.height, &expected.width);
    check(out == expected);
    return 0;
}

// Skew of bitonal pages beside its slow model: sizes, strides and ink from the input; the page lies
// in a block of exactly its size.
//
// Input: 7 bytes of arguments, then ink, repeated over the page.
#include <cstdint>
#include <cstdlib>

#include "models/skew_comparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kArguments = 7;
    if (size <= kArguments) return 0;
    const int height = data[0] | (data[1] & 1) << 8;
    const int width = data[2] | (data[3] & 3) << 8;
    const int extra = data[4] % 16 == 0 ? data[5] : data[5] % 8 * 4;
    const int stride = (width + 31) / 32 * 4 + extra - (data[6] % 8 == 0 ? 4 : 0);
    if (stride < 0) return 0;
    support::BitonalPage page{height, width, stride};
    for (std::size_t i = 0; i < page.bytes.size(); ++i) {
        page.bytes[i] = data[kArguments + i % (size - kArguments)];
    }
    if (model::estimated_skew(page) != model::modelled_skew(page)) std::abort();
    return 0;
}

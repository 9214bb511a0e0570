// Line removal and underline extraction beside their slow models: page geometry, zone and settings
// from the input.
//
// Input: 16 bytes of arguments, then ink, repeated over the page.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "models/lines_comparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kArguments = 16;
    if (size <= kArguments) return 0;
    const int width = data[1] + 1;
    support::BitonalPage page{data[0] % 64 + 1, width, (width + 7) / 8 + data[2] % 3};
    for (std::size_t i = 0; i < page.bytes.size(); ++i) {
        page.bytes[i] = data[kArguments + i % (size - kArguments)];
    }
    model::LineCall call{data[3], {}};
    std::memcpy(call.numbers, data + 4, sizeof(call.numbers));
    if (!model::lines_agree(page, call)) std::abort();
    return 0;
}

// Despeckling and the text filter beside their slow models, on a page in a block of exactly its
// size.
//
// Input: 8 bytes of arguments, then ink, repeated over the page.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "models/despeckle_comparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kArguments = 8;
    if (size <= kArguments) return 0;
    const int width = data[1] % 200 + 1;
    support::BitonalPage page{data[0] % 90 + 1, width, (width + 7) / 8 + data[2] % 4};
    for (std::size_t i = 0; i < page.bytes.size(); ++i) {
        page.bytes[i] = data[kArguments + i % (size - kArguments)];
    }
    const auto number = [&](std::size_t i, int less) {
        return data[i] == 255 ? INT32_MAX : data[i] - less;
    };
    const model::SpeckArguments arguments{number(3, 2),
                                          data[4] == 255 ? INT32_MAX : data[4] % 40 - 1,
                                          number(5, 20),
                                          static_cast<short>(data[6]),
                                          static_cast<short>(data[7] - 2),
                                          data[2] / 4 % 4 - 1};
    if (model::differing_despeckling(page, arguments) != nullptr) std::abort();
    return 0;
}

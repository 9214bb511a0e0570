// The tools on runs and components beside their slow models: page geometry, zone, length and ink
// from the input; the page lies in a block of exactly its size.
//
// Input: 9 bytes of arguments, then ink, repeated over the page.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ink/run_morphology.h"
#include "models/components_comparison.h"
#include "models/runs_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kArguments = 9;
    if (size <= kArguments) return 0;
    const int height = data[0] % 64 + 1;
    const int stride = data[1] % 24 + 1;
    const int width = std::max(stride * 8 - data[2] % 16, 1);
    const int n = data[3] == 255 ? INT32_MAX : data[3] % 80 - 2;
    const int x0 = data[4] % (stride * 8 + 1);
    const int x1 = std::min(x0 + data[5], stride * 8);
    const int y0 = data[6] % (height + 1);
    const int y1 = std::min(y0 + data[7], height);

    std::vector<std::uint8_t> page(static_cast<std::size_t>(height * stride));
    for (std::size_t i = 0; i < page.size(); ++i) {
        page[i] = data[kArguments + i % (size - kArguments)];
    }
    if (model::differing_components({page.data(), height, width, stride}, data[8] >> 7, data[8] & 7,
                                    (data[8] & 0x40) != 0) != nullptr) {
        std::abort();
    }

    const struct {
        ink::LoggedRunOperation* call;
        decltype(model::h_erode) expected;
    } operations[] = {{ink::h_fill_gaps, model::h_fill_gaps},
                      {ink::v_fill_gaps, model::v_fill_gaps},
                      {ink::h_remove_short, model::h_remove_short},
                      {ink::v_remove_short, model::v_remove_short},
                      {ink::h_dilate, model::h_dilate},
                      {ink::v_dilate, model::v_dilate},
                      {ink::h_erode, model::h_erode},
                      {ink::v_erode, model::v_erode}};
    const auto& [call, expected] = operations[data[8] % 8];
    std::vector<std::uint8_t> changed = page;
    expected(std::clamp(n, 0, 1000), changed.data(), stride, x0, x1, y0, y1);
    if (call(nullptr, n, page.data(), stride, x0, x1, y0, y1) != 0 || page != changed) std::abort();
    return 0;
}

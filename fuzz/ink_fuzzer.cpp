// The tools on runs and components: page geometry, zone, length and ink from the input; the page
// lies in a block of exactly its size.
//
// Input: 9 bytes of arguments, then ink, repeated over the page.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ink/buffer_logic.h"
#include "ink/component_engine.h"
#include "ink/extract_runs.h"
#include "ink/run_labels.h"
#include "ink/run_morphology.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 9;

void check(bool holds) {
    if (!holds) std::abort();
}

bool ink_at(const Bytes& page, int stride, int x, int y) {
    return (page[static_cast<std::size_t>(y * stride + x / 8)] >> (7 - x % 8) & 1) != 0;
}

// Erases what it is given, and sums it up.
struct ErasingRule {
    std::uint8_t* image;
    int stride;
    int ink_value;
    std::uint32_t settled_above;
    std::int64_t area = 0;
    std::int32_t count = 0;

    bool finished(ink::ComponentEngine& engine, std::int32_t slot) {
        area += engine.components[slot].area;
        ++count;
        engine.erase_ink(slot, ink_value, image, stride);
        return true;
    }
    bool settled(const ink::component& open) const { return open.area > settled_above; }
};

void check_components(const Bytes& page, int height, int width, int stride, int ink_value,
                      std::uint32_t settled_above) {
    const common::BitonalView view{page.data(), height, width, stride};
    const ink::RunLabels labels = ink::label_runs(view, ink_value);
    const ink::PageComponents found = ink::find_components(view, ink_value);
    check(labels.component_count == found.count);
    std::int64_t area = 0;
    for (std::int32_t i = 0; i < found.count; ++i) {
        area += found.components[static_cast<std::size_t>(i)].area;
    }

    Bytes erased = page;
    ErasingRule rule{erased.data(), stride, ink_value, settled_above};
    ink::scan_components(view, 0, width, ink_value, nullptr, rule);
    check(rule.area == area && rule.count == found.count);
    if (settled_above != UINT32_MAX) return;
    // Without early release every run was there to be erased.
    std::vector<std::int32_t> runs(static_cast<std::size_t>(width) + 1);
    for (int y = 0; y < height; ++y) {
        check(ink::extract_runs(ink_value, erased.data() + y * stride, 0, width, runs.data()) == 0);
    }
}

void check_morphology(const Bytes& page, int height, int stride, int n, int x0, int x1, int y0,
                      int y1, unsigned choice) {
    static ink::LoggedRunOperation* const kOperations[] = {
        ink::h_fill_gaps, ink::v_fill_gaps, ink::h_remove_short, ink::v_remove_short,
        ink::h_dilate,    ink::v_dilate,    ink::h_erode,        ink::v_erode};
    const unsigned which = choice % 8;
    Bytes changed = page;
    check(kOperations[which](nullptr, n, changed.data(), stride, x0, x1, y0, y1) == 0);
    const bool adds_ink = which < 2 || which == 4 || which == 5;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < stride * 8; ++x) {
            const bool before = ink_at(page, stride, x, y);
            const bool after = ink_at(changed, stride, x, y);
            const bool inside = x >= x0 && x < x1 && y >= y0 && y < y1;
            check(before == after || (inside && after == adds_ink));
        }
    }
    // Filling and removing leave nothing for a second pass.
    if (which >= 4) return;
    Bytes again = changed;
    check(kOperations[which](nullptr, n, again.data(), stride, x0, x1, y0, y1) == 0);
    check(again == changed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] % 64;
    const int stride = data[1] % 24 + 1;
    const int width = stride * 8 - data[2] % 16 < 1 ? 1 : stride * 8 - data[2] % 16;
    const int n = data[3] == 255 ? INT32_MAX : data[3] % 80 - 2;
    const int x0 = data[4] % (stride * 8 + 1);
    const int x1 = std::min(x0 + data[5], stride * 8);
    const int y0 = data[6] % (height + 1);
    const int y1 = std::min(y0 + data[7], height);

    Bytes page(static_cast<std::size_t>(height) * static_cast<std::size_t>(stride));
    for (std::size_t i = 0; i < page.size(); ++i) {
        page[i] = data[kArguments + i % (size - kArguments)];
    }
    const int ink_value = data[8] >> 7;
    const std::uint32_t settled_above = (data[8] & 0x40) != 0 ? data[8] & 7 : UINT32_MAX;
    check_components(page, height, width, stride, ink_value, settled_above);
    check_morphology(page, height, stride, n, x0, x1, y0, y1, data[8]);
    return 0;
}

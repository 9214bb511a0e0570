// Line removal and underline extraction beside their slow models: page geometry, zone and settings
// from the input, the page in a block of exactly its size.
//
// Input: 16 bytes of arguments, then ink, repeated over the page.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "models/lines_model.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 16;

void require(bool holds) {
    if (!holds) std::abort();
}

struct Arguments {
    const Bytes& page;
    int height, width, stride;
    const std::uint8_t* n;
    unsigned choice;
};

void fuzz_handle(const Arguments& a) {
    Bytes changed = a.page;
    Bytes expected = a.page;
    lrm_settings* const lrm =
        lrm_init_mem(changed.data(), static_cast<unsigned short>(a.height),
                     static_cast<unsigned short>(a.width), static_cast<unsigned short>(a.stride));
    require(lrm != nullptr);
    model::LrmSettings settings{expected.data(), a.height, a.width, a.stride};
    const std::uint8_t* const n = a.n;
    if (lrm_set_zone(lrm, n[6], n[7], n[0] % 8, n[1]) == 0) {
        settings.x0 = n[6], settings.x1 = n[7], settings.y0 = n[0] % 8, settings.y1 = n[1];
    }
    const auto setting = [&](std::size_t i) {
        return static_cast<unsigned short>(n[i] == 255 ? 65535 : n[i]);
    };
    const bool horizontal = (a.choice & 1U) != 0;
    (horizontal ? lrm_set_horz_min_length : lrm_set_vert_min_length)(lrm, setting(0));
    (horizontal ? lrm_set_horz_max_thickness : lrm_set_vert_max_thickness)(lrm, setting(1));
    (horizontal ? lrm_set_horz_max_gap : lrm_set_vert_max_gap)(lrm, setting(2));
    (horizontal ? lrm_set_horz_dilate : lrm_set_vert_dilate)(lrm, setting(3));
    (horizontal ? lrm_set_horz_clean_x : lrm_set_vert_clean_y)(lrm, setting(4));
    (horizontal ? lrm_set_horz_clean_y : lrm_set_vert_clean_x)(lrm, setting(5));
    (horizontal ? settings.horz : settings.vert) = {setting(0), setting(1), setting(2),
                                                    setting(3), setting(4), setting(5)};
    require((horizontal ? lrm_do_horz : lrm_do_vert)(lrm) == 0);
    require(lrm_exit(lrm) == 0);
    require(model::lrm_do(settings, horizontal) == 0);
    require(changed == expected);
}

void fuzz_careful(const Arguments& a) {
    const auto cleaned = [&a](auto function) {
        Bytes page = a.page;
        const auto setting = [&](std::size_t i) { return a.n[i] == 255 ? 2147483647 : a.n[i] - 2; };
        require(function(page.data(), a.height, a.width, a.stride, setting(0), setting(1),
                         setting(2), setting(3), setting(4), setting(5)) == 0);
        return page;
    };
    const bool horizontal = (a.choice & 1U) != 0;
    require(cleaned(horizontal ? linerm_h : linerm_v) ==
            cleaned(horizontal ? model::linerm_h : model::linerm_v));
}

void fuzz_underline(const Arguments& a) {
    const std::uint8_t* const n = a.n;
    const int x0 = n[6] - 2;
    const int x1 = n[7];
    Bytes target(a.page.size(), 0x5C);
    Bytes expected = target;
    const auto extract = [&](auto function, Bytes& lines) {
        return function(static_cast<int>(a.choice >> 1 & 1U), static_cast<int>(a.choice & 1U),
                        n[0] - 1, n[1], n[2], n[3] == 255 ? 2147483647 : n[3], a.page.data(),
                        lines.data(), a.height, a.stride, x0, x1);
    };
    const bool inside = x0 >= x1 || (x0 >= 0 && x1 <= 8 * a.stride);
    require(extract(extract_underline, target) ==
            (inside ? extract(model::extract_underline, expected) : -1));
    require(target == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] % 64 + 1;
    const int width = data[1] + 1;
    const int stride = (width + 7) / 8 + data[2] % 3;
    Bytes page(static_cast<std::size_t>(height * stride));
    for (std::size_t i = 0; i < page.size(); ++i) {
        page[i] = data[kArguments + i % (size - kArguments)];
    }
    const Arguments arguments{page, height, width, stride, data + 4, data[3]};
    constexpr decltype(&fuzz_handle) kKinds[] = {fuzz_careful, fuzz_underline, fuzz_handle,
                                                 fuzz_handle};
    kKinds[data[3] >> 2 & 3U](arguments);
    return 0;
}

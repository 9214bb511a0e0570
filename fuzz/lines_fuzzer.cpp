// Line removal and underline extraction: page geometry, zone and settings from the input, the page
// in a block of exactly its size.
//
// Input: 16 bytes of arguments, then ink, repeated over the page.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 16;

void check(bool holds) {
    if (!holds) std::abort();
}

bool ink_at(const Bytes& page, int stride, int x, int y) {
    return (page[static_cast<std::size_t>(y * stride + x / 8)] >> (7 - x % 8) & 1) != 0;
}

// Nothing is blackened, and nothing outside of the zone changes.
void check_removal(const Bytes& before, const Bytes& after, int stride, int x0, int x1, int y0,
                   int y1) {
    const int height = static_cast<int>(before.size()) / stride;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < 8 * stride; ++x) {
            const bool inside = x >= x0 && x < x1 && y >= y0 && y < y1;
            const bool was = ink_at(before, stride, x, y);
            const bool is = ink_at(after, stride, x, y);
            check(was == is || (inside && was));
        }
    }
}

void fuzz_handle(const Bytes& page, int height, int width, int stride, const std::uint8_t* n,
                 unsigned choice) {
    Bytes changed = page;
    lrm_settings* const lrm =
        lrm_init_mem(changed.data(), static_cast<unsigned short>(height),
                     static_cast<unsigned short>(width), static_cast<unsigned short>(stride));
    check(lrm != nullptr);
    int x0 = 0, x1 = width, y0 = 0, y1 = height;
    if (lrm_set_zone(lrm, n[6], n[7], n[0] % 8, n[1]) == 0) {
        x0 = n[6], x1 = n[7], y0 = n[0] % 8, y1 = n[1];
    }
    const auto setting = [&](std::size_t i) {
        return static_cast<unsigned short>(n[i] == 255 ? 65535 : n[i]);
    };
    const bool horizontal = (choice & 1U) != 0;
    (horizontal ? lrm_set_horz_min_length : lrm_set_vert_min_length)(lrm, setting(0));
    (horizontal ? lrm_set_horz_max_thickness : lrm_set_vert_max_thickness)(lrm, setting(1));
    (horizontal ? lrm_set_horz_max_gap : lrm_set_vert_max_gap)(lrm, setting(2));
    (horizontal ? lrm_set_horz_dilate : lrm_set_vert_dilate)(lrm, setting(3));
    (horizontal ? lrm_set_horz_clean_x : lrm_set_vert_clean_x)(lrm, setting(4));
    (horizontal ? lrm_set_horz_clean_y : lrm_set_vert_clean_y)(lrm, setting(5));
    check((horizontal ? lrm_do_horz : lrm_do_vert)(lrm) == 0);
    check(lrm_exit(lrm) == 0);
    check_removal(page, changed, stride, x0, x1, y0, y1);
}

void fuzz_careful(const Bytes& page, int height, int width, int stride, const std::uint8_t* n,
                  unsigned choice) {
    Bytes changed = page;
    const auto setting = [&](std::size_t i) { return n[i] == 255 ? 2147483647 : n[i] - 2; };
    const auto call = (choice & 1U) != 0 ? linerm_h : linerm_v;
    check(call(changed.data(), height, width, stride, setting(0), setting(1), setting(2),
               setting(3), setting(4), setting(5)) == 0);
    check_removal(page, changed, stride, 0, width, 0, height);
}

// Lines are ink of the source; no more columns or rows have one than there are.
void fuzz_underline(const Bytes& page, int height, int stride, const std::uint8_t* n,
                    unsigned choice) {
    Bytes target(page.size());
    const int vertical = static_cast<int>(choice & 1U);
    const int ink_value = static_cast<int>(choice >> 1 & 1U);
    const int x0 = n[6] - 2;
    const int x1 = n[7];
    const int covered = extract_underline(ink_value, vertical, n[0] - 1, n[1], n[2],
                                          n[3] == 255 ? 2147483647 : n[3], page.data(),
                                          target.data(), height, stride, x0, x1);
    if (x0 < x1 && (x0 < 0 || x1 > 8 * stride)) {
        check(covered == -1);
        return;
    }
    check(covered >= 0);
    check(covered <= (vertical != 0 ? height : std::max(x1 - x0, 0)));
    if (ink_value != 0) return;
    for (std::size_t i = 0; i < page.size(); ++i) check((target[i] & ~page[i]) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    const int height = data[0] % 64 + 1;
    const int width = data[1] + 1;
    const int stride = (width + 7) / 8 + data[2] % 3;
    const unsigned choice = data[3];
    const std::uint8_t* const n = data + 4;
    Bytes page(static_cast<std::size_t>(height * stride));
    for (std::size_t i = 0; i < page.size(); ++i) {
        page[i] = data[kArguments + i % (size - kArguments)];
    }
    switch (choice >> 2 & 3U) {
        case 0:
            fuzz_careful(page, height, width, stride, n, choice);
            break;
        case 1:
            fuzz_underline(page, height, stride, n, choice);
            break;
        default:
            fuzz_handle(page, height, width, stride, n, choice);
    }
    return 0;
}

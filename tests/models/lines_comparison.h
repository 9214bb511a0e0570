// Line removal and underline extraction beside their slow models, with arguments made from bytes:
// what the tests and the fuzz target have in common.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>

#include "lines_model.h"
#include "support/bitonal_page.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/cleaning.h"

namespace model {

// Which function is called on a page, and with what. The numbers stand for lengths, but for the
// last four, which stand for a zone.
struct LineCall {
    std::uint8_t choice;
    std::uint8_t numbers[12];

    bool bit(int i) const { return (choice >> i & 1) != 0; }
    // Number i as a place along `size` pixels.
    int place(int i, int size) const { return numbers[i] * size / 255; }
};

// The setters for horizontal and for vertical lines, in the order of LrmDirection.
inline constexpr int (*kLineSetters[2][6])(lrm_settings*, unsigned short) = {
    {lrm_set_horz_min_length, lrm_set_horz_max_thickness, lrm_set_horz_max_gap, lrm_set_horz_dilate,
     lrm_set_horz_clean_x, lrm_set_horz_clean_y},
    {lrm_set_vert_min_length, lrm_set_vert_max_thickness, lrm_set_vert_max_gap, lrm_set_vert_dilate,
     lrm_set_vert_clean_y, lrm_set_vert_clean_x}};

inline bool handle_agrees(const support::BitonalPage& page, const LineCall& call) {
    support::GuardedBuffer changed(page.bytes);
    support::BitonalPage expected = page;
    const auto narrow = [](int value) { return static_cast<unsigned short>(value); };
    lrm_settings* const lrm =
        lrm_init_mem(changed.data(), narrow(page.height), narrow(page.width), narrow(page.stride));
    if (lrm == nullptr) return false;
    LrmSettings settings{expected.bytes.data(), page.height, page.width, page.stride};
    bool done = true;
    if (call.bit(4)) {
        settings.x0 = call.place(8, page.width - 1);
        settings.x1 = std::max(call.place(9, page.width), settings.x0 + 1);
        settings.y0 = call.place(10, page.height - 1);
        settings.y1 = std::max(call.place(11, page.height), settings.y0 + 1);
        done = lrm_set_zone(lrm, narrow(settings.x0), narrow(settings.x1), narrow(settings.y0),
                            narrow(settings.y1)) == 0;
    }
    const bool horizontal = call.bit(0);
    constexpr int LrmDirection::*kValues[] = {
        &LrmDirection::min_length, &LrmDirection::max_thickness, &LrmDirection::max_gap,
        &LrmDirection::dilate,     &LrmDirection::clean_along,   &LrmDirection::clean_across};
    LrmDirection& direction = horizontal ? settings.horz : settings.vert;
    for (int i = 0; i < 6; ++i) {
        if (call.numbers[i] == 254) continue;  // the default
        const int value = call.numbers[i] == 255 ? 65535 : call.numbers[i];
        done = done && kLineSetters[horizontal ? 0 : 1][i](lrm, narrow(value)) == 0;
        direction.*kValues[i] = value;
    }
    for (const bool first : {true, false}) {
        if (!first && !call.bit(5)) continue;
        const bool now_horizontal = first == horizontal;
        done = done && (now_horizontal ? lrm_do_horz : lrm_do_vert)(lrm) == 0;
        lrm_do(settings, now_horizontal);
    }
    done = lrm_exit(lrm) == 0 && done;
    return done && changed.guards_intact() && changed.contents() == expected.bytes;
}

inline bool careful_removal_agrees(const support::BitonalPage& page, const LineCall& call) {
    support::GuardedBuffer changed(page.bytes);
    support::BitonalPage expected = page;
    const auto remove = [&](auto function, std::uint8_t* image) {
        const auto n = [&](int i) {
            return call.numbers[i] == 255 ? INT_MAX : call.numbers[i] == 254 ? -3 : call.numbers[i];
        };
        return function(image, page.height, page.width, page.stride, n(0), n(1), n(2), n(3), n(4),
                        n(5));
    };
    const bool horizontal = call.bit(0);
    const bool done = remove(horizontal ? ::linerm_h : ::linerm_v, changed.data()) == 0;
    remove(horizontal ? linerm_h : linerm_v, expected.bytes.data());
    return done && changed.guards_intact() && changed.contents() == expected.bytes;
}

inline bool underlines_agree(const support::BitonalPage& page, const LineCall& call) {
    support::GuardedBuffer target(page.bytes.size());
    std::vector<std::uint8_t> expected(page.bytes.size());
    const auto extract = [&](auto function, std::uint8_t* lines) {
        const std::uint8_t* const n = call.numbers;
        return function(call.bit(1) && call.bit(4) ? 1 : 0, call.bit(0) ? 1 : 0, n[0] - 1, n[1],
                        n[2], n[3] == 255 ? INT_MAX : n[3], page.bytes.data(), lines, page.height,
                        page.stride, call.place(8, 8 * page.stride),
                        call.bit(5) ? 8 * page.stride : call.place(9, 8 * page.stride));
    };
    return extract(::extract_underline, target.data()) ==
               extract(extract_underline, expected.data()) &&
           target.guards_intact() && target.contents() == expected;
}

inline bool lines_agree(const support::BitonalPage& page, const LineCall& call) {
    if (call.bit(3)) return handle_agrees(page, call);
    return (call.bit(2) ? underlines_agree : careful_removal_agrees)(page, call);
}

}  // namespace model

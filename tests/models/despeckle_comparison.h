// Despeckling and the text filter beside their slow models: what the tests and the fuzz target have
// in common. Pages must come out the same, after the same questions in the same order.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "despeckle_model.h"
#include "support/bitonal_page.h"
#include "vemoprepro/cleaning.h"

namespace model {

struct SpeckArguments {
    int max_area, distance, density;
    short max_height, min_density;  // of text
    int answer;                     // of the rule about some components; about the others it says 0
};

// Answers by the shape of what it is asked about, and remembers that.
struct Judge {
    int answer;
    std::vector<std::array<int, 3>> asked = {};

    static int ask(void* user, int height, int width, int area) {
        auto* self = static_cast<Judge*>(user);
        self->asked.push_back({height, width, area});
        return (height * 3 + width * 5 + area) % 4 < 2 || area < 6 ? self->answer : 0;
    }
};

// Whether both make the same of a page. The copy that the library gets ends with the last row's
// pixels: the sanitizer sees a touch of what is behind.
template <class Call, class Model>
bool agree_on(const support::BitonalPage& page, Call call, Model theirs) {
    std::vector<std::uint8_t> expected = page.bytes;
    const std::size_t used = offset(page.height - 1, page.stride, ceil_div(page.width, 8));
    std::vector<std::uint8_t> image(expected.begin(),
                                    expected.begin() + static_cast<std::ptrdiff_t>(used));
    if (call(image.data()) != theirs(expected.data())) return false;
    expected.resize(used);
    return image == expected;
}

// The function that differs from its model on this page, or null.
inline const char* differing_despeckling(const support::BitonalPage& page,
                                         const SpeckArguments& arguments) {
    const auto [max_area, distance, density, max_height, min_density, answer] = arguments;
    const auto with = [&page](auto function, auto... more) {
        return [=, &page](std::uint8_t* image) {
            return function(image, page.height, page.width, page.stride, more...);
        };
    };
    Judge judge{answer};
    Judge other{answer};
    const auto agree = [&](auto function, auto theirs, auto... more) {
        return agree_on(page, with(function, more...), with(theirs, more...));
    };
    const auto agree_by_rule = [&](auto function, auto theirs, auto... more) {
        return agree_on(page, with(function, Judge::ask, static_cast<void*>(&judge), more...),
                        with(theirs, Judge::ask, static_cast<void*>(&other), more...)) &&
               judge.asked == other.asked;
    };
    if (!agree(::despeckl_mem, despeckl_mem, max_area)) return "despeckl_mem";
    if (!agree(::despeckl_c_mem, despeckl_c_mem, max_area, distance)) return "despeckl_c_mem";
    if (!agree(::despeckl_selective, despeckl_selective, 0, max_area, density))
        return "despeckl_selective";
    if (!agree_by_rule(::despeckl_cb_mem, despeckl_cb_mem)) return "despeckl_cb_mem";
    if (!agree_by_rule(::despeckl_ccb_mem, despeckl_ccb_mem, distance)) return "despeckl_ccb_mem";
    if (!agree(::pre_tva, pre_tva, max_height, min_density)) return "pre_tva";
    return nullptr;
}

}  // namespace model

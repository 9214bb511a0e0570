// Despeckling and the text filter through the exported functions, on a page in a block of exactly
// its size. Nothing may add ink or touch padding, and the kinds of passes must agree with each
// other.
//
// Input: 8 bytes of arguments, then ink, repeated over the page.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "ink/run_labels.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 8;

struct Geometry {
    int height;
    int width;
    int stride;
};

void check(bool holds) {
    if (!holds) std::abort();
}

void check_only_ink_went(const Bytes& before, const Bytes& after, const Geometry& page) {
    for (std::size_t i = 0; i < before.size(); ++i) {
        const unsigned gone = before[i] ^ after[i];
        check((gone & ~static_cast<unsigned>(before[i])) == 0);
        const int inside = page.width - static_cast<int>(i) % page.stride * 8;  // pixels from here
        check(inside >= 8 || (gone & (0xFFU >> (inside < 0 ? 0 : inside))) == 0);
    }
}

template <class Call>
Bytes cleaned(const Bytes& before, const Geometry& page, Call call) {
    Bytes image = before;
    check(call(image.data(), page.height, page.width, page.stride) == 0);
    check_only_ink_went(before, image, page);
    return image;
}

// The callback that says what the area rule says.
struct AreaJudge {
    int max_area;
    long long asked;

    static int ask(void* user, int height, int width, int area) {
        auto* self = static_cast<AreaJudge*>(user);
        check(height > 0 && width > 0 && area > 0);
        check(area <= height * width && area >= (height > width ? height : width));
        ++self->asked;
        return area <= self->max_area ? 1 : 0;
    }
};

void check_areas(const Bytes& ink, const Geometry& page, int max_area) {
    const ink::PageComponents left =
        ink::find_components({ink.data(), page.height, page.width, page.stride});
    for (std::int32_t i = 0; i < left.count; ++i) {
        check(left.components[static_cast<std::size_t>(i)].area > max_area);
    }
}

void check_despeckling(const Bytes& before, const Geometry& page, int max_area, int distance) {
    const auto by_area =
        cleaned(before, page, [=](auto... image) { return despeckl_mem(image..., max_area); });
    check_areas(by_area, page, max_area);
    AreaJudge judge{max_area, 0};
    check(by_area == cleaned(before, page, [&judge](auto... image) {
              return despeckl_cb_mem(image..., AreaJudge::ask, &judge);
          }));
    check(judge.asked ==
          ink::find_components({before.data(), page.height, page.width, page.stride}).count);
    const auto near = cleaned(
        before, page, [=](auto... image) { return despeckl_c_mem(image..., max_area, distance); });
    check(near == cleaned(before, page, [&judge, distance](auto... image) {
              return despeckl_ccb_mem(image..., AreaJudge::ask, &judge, distance);
          }));
    check_only_ink_went(near, by_area, page);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    Geometry page{data[0] % 90 + 1, data[1] % 200 + 1, 0};
    page.stride = (page.width + 7) / 8 + data[2] % 4;
    const int max_area = data[3] == 255 ? INT32_MAX : data[3] - 2;
    const int distance = data[4] == 255 ? INT32_MAX : data[4] % 40 - 1;
    const int density = data[5] == 255 ? INT32_MAX : data[5] - 20;

    Bytes before(static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.stride));
    for (std::size_t i = 0; i < before.size(); ++i) {
        before[i] = data[kArguments + i % (size - kArguments)];
    }
    check_despeckling(before, page, max_area, distance);
    cleaned(before, page,
            [=](auto... image) { return despeckl_selective(image..., 0, max_area, density); });
    const short height = static_cast<short>(data[6]);
    const short text_density = static_cast<short>(data[7] - 2);
    const auto text = cleaned(
        before, page, [=](auto... image) { return pre_tva(image..., height, text_density); });
    // What is kept once is kept again.
    check(text == cleaned(text, page,
                          [=](auto... image) { return pre_tva(image..., height, text_density); }));
    return 0;
}

// Despeckling and the text filter beside their slow models, on a page in a block of exactly its
// size: the same page, and the same questions in the same order.
//
// Input: 8 bytes of arguments, then ink, repeated over the page.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "models/despeckle_model.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kArguments = 8;

// Answers by the shape of a component, and keeps what it was asked.
struct Judge {
    int max_area;
    std::vector<std::array<int, 3>> asked = {};

    static int ask(void* user, int height, int width, int area) {
        auto* self = static_cast<Judge*>(user);
        self->asked.push_back({height, width, area});
        return area <= self->max_area || (height * 3 + width) % 5 == 0 ? 1 : 0;
    }
};

struct Page {
    Bytes bytes;
    int height, width, stride;
};

// Calls a function on a page of its own, with the arguments that follow those of the page.
template <class Function, class... More>
Bytes cleaned(const Page& page, Function function, More... more) {
    Bytes image = page.bytes;
    if (function(image.data(), page.height, page.width, page.stride, more...) != 0) std::abort();
    return image;
}

template <class Function, class... More>
void compare(const Page& page, Function function, Function theirs, More... more) {
    if (cleaned(page, function, more...) != cleaned(page, theirs, more...)) std::abort();
}

template <class Function, class... More>
void compare_by_rule(const Page& page, Function function, Function theirs, int max_area,
                     More... more) {
    Judge judge{max_area};
    Judge other{max_area};
    void* const user = &judge;
    void* const other_user = &other;
    const Bytes image = cleaned(page, function, Judge::ask, user, more...);
    const Bytes expected = cleaned(page, theirs, Judge::ask, other_user, more...);
    if (image != expected || judge.asked != other.asked) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    Page page{{}, data[0] % 90 + 1, data[1] % 200 + 1, 0};
    page.stride = (page.width + 7) / 8 + data[2] % 4;
    page.bytes.resize(model::offset(page.height, page.stride, 0));
    for (std::size_t i = 0; i < page.bytes.size(); ++i) {
        page.bytes[i] = data[kArguments + i % (size - kArguments)];
    }
    const int max_area = data[3] == 255 ? INT32_MAX : data[3] - 2;
    const int distance = data[4] == 255 ? INT32_MAX : data[4] % 40 - 1;
    const int density = data[5] == 255 ? INT32_MAX : data[5] - 20;
    compare(page, despeckl_mem, model::despeckl_mem, max_area);
    compare(page, despeckl_c_mem, model::despeckl_c_mem, max_area, distance);
    compare(page, despeckl_selective, model::despeckl_selective, 0, max_area, density);
    compare_by_rule(page, despeckl_cb_mem, model::despeckl_cb_mem, max_area);
    compare_by_rule(page, despeckl_ccb_mem, model::despeckl_ccb_mem, max_area, distance);
    compare(page, pre_tva, model::pre_tva, static_cast<short>(data[6]),
            static_cast<short>(data[7] - 2));
    return 0;
}

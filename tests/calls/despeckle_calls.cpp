#include "calls/calls.h"

namespace calls {
namespace {

int erase_narrow(void*, int, int width, int) {
    return width < 6 ? 1 : 0;
}

template <class Clean, class... More>
auto cleaned(Clean clean, More... more) {
    return [=](Desk& desk) {
        return desk.wrote_page(
            clean(desk.copy(desk.bitonal), desk.height, desk.width, desk.stride, more...));
    };
}

// The same for those that leave the page as it was when they fail.
template <class Clean, class... More>
auto cleaned_or_kept(Clean clean, More... more) {
    return [=](Desk& desk) {
        return desk.wrote_page_or_kept(
            clean(desk.copy(desk.bitonal), desk.height, desk.width, desk.stride, more...),
            desk.bitonal);
    };
}

const bool added = add_calls({
    {"despeckl_mem, no pixels", Allocates::kYes, cleaned_or_kept(despeckl_mem, 0)},
    {"despeckl_mem, few pixels", Allocates::kYes, cleaned_or_kept(despeckl_mem, 8)},
    {"despeckl_mem, many pixels", Allocates::kYes, cleaned(despeckl_mem, 100)},
    {"despeckl_c_mem, no pixels", Allocates::kYes, cleaned_or_kept(despeckl_c_mem, -1, 3)},
    {"despeckl_c_mem, not near", Allocates::kYes, cleaned_or_kept(despeckl_c_mem, 8, 0)},
    {"despeckl_c_mem, few pixels", Allocates::kYes, cleaned(despeckl_c_mem, 8, 3)},
    {"despeckl_c_mem, many pixels", Allocates::kYes, cleaned_or_kept(despeckl_c_mem, 100, 3)},
    {"despeckl_cb_mem", Allocates::kYes, cleaned(despeckl_cb_mem, erase_narrow, nullptr)},
    {"despeckl_ccb_mem", Allocates::kYes,
     cleaned_or_kept(despeckl_ccb_mem, erase_narrow, nullptr, 2)},
    {"despeckl_selective", Allocates::kYes, cleaned_or_kept(despeckl_selective, 0, 100, 2)},
    {"pre_tva", Allocates::kYes, cleaned(pre_tva, short{40}, short{2})},
});

}  // namespace
}  // namespace calls

#include "calls/calls.h"

namespace calls {
namespace {

template <class Remove>
auto by_handle(Remove remove) {
    return [=](Desk& desk) {
        lrm_settings* const handle = lrm_init_mem(
            desk.copy(desk.bitonal), static_cast<unsigned short>(desk.height),
            static_cast<unsigned short>(desk.width), static_cast<unsigned short>(desk.stride));
        if (handle == nullptr) return -1;
        const int status = remove(handle);
        lrm_exit(handle);
        return desk.wrote_page_or_kept(status, desk.bitonal);
    };
}

template <class Remove>
auto carefully(Remove remove) {
    return [=](Desk& desk) {
        return desk.wrote_page_or_kept(remove(desk.copy(desk.bitonal), desk.height, desk.width,
                                              desk.stride, 5, 60, 3, 20, 3, 2),
                                       desk.bitonal);
    };
}

auto underlined(int vertical) {
    return [=](Desk& desk) {
        return desk.wrote(
            extract_underline(0, vertical, 20, 8, 6, 1, desk.bitonal.data(), desk.out.data(),
                              desk.height, desk.stride, 3, desk.width),
            desk.out.data(), desk.bitonal.size());
    };
}

const bool added = add_calls({
    {"lrm_do_horz", Allocates::kYes, by_handle(lrm_do_horz)},
    {"lrm_do_vert", Allocates::kYes, by_handle(lrm_do_vert)},
    {"linerm_h", Allocates::kYes, carefully(linerm_h)},
    {"linerm_v", Allocates::kYes, carefully(linerm_v)},
    {"extract_underline, horizontal", Allocates::kYes, underlined(0)},
    {"extract_underline, vertical", Allocates::kYes, underlined(1)},
});

}  // namespace
}  // namespace calls

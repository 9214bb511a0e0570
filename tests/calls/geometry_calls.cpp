#include "calls/calls.h"

namespace calls {
namespace {

template <class Turn>
auto turned(Turn turn, bool quarter) {
    return [=](Desk& desk) {
        const int status =
            turn(desk.bitonal.data(), desk.width, desk.height, desk.stride, desk.out.data(),
                 static_cast<int>(desk.out.size()), &desk.result_stride);
        const int rows = quarter ? desk.width : desk.height;
        return desk.wrote(status, desk.out.data(),
                          static_cast<std::size_t>(rows) * desk.result_stride);
    };
}

auto dispatched(int mode) {
    return turned(
        [mode](const unsigned char* src, int width, int height, auto... more) {
            return kyd_rotate_bitmap(mode, src, height, width, more...);
        },
        mode != PREPRO_TURN_HALF);
}

auto packed(int mode, bool colour) {
    return [=](Desk& desk) {
        const Bytes& source = colour ? desk.colour : desk.grey;
        return desk.wrote(
            kyd_rotate_color(mode, colour ? 3 : 1, source.data(), desk.height, desk.width,
                             desk.out.data(), &desk.numbers[0], &desk.numbers[1]),
            desk.out.data(), source.size());
    };
}

const bool added = add_calls({
    {"kyd_rotate_180", Allocates::kNo, turned(kyd_rotate_180, false)},
    {"kyd_rotate_270", Allocates::kNo, turned(kyd_rotate_270, true)},
    {"kyd_rotate_090", Allocates::kNo, turned(kyd_rotate_090, true)},
    {"kyd_rotate_bitmap", Allocates::kNo, dispatched(PREPRO_TURN_CLOCKWISE)},
    {"kyd_rotate_color, grey", Allocates::kNo, packed(PREPRO_TURN_CLOCKWISE, false)},
    {"kyd_rotate_color, colour", Allocates::kNo, packed(PREPRO_TURN_COUNTER_CLOCKWISE, true)},
    {"kyd_rotate_color, half", Allocates::kNo, packed(PREPRO_TURN_HALF, true)},
});

}  // namespace
}  // namespace calls

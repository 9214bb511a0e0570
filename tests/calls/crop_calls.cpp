#include "calls/calls.h"

namespace calls {
namespace {

auto bitonal(int ink_value) {
    return [=](Desk& desk) {
        constexpr std::uint8_t kUntouched = 0x5C;
        std::fill_n(desk.out.begin(), desk.bitonal.size(), kUntouched);
        const int status = cropbmp(ink_value, desk.bitonal.data(), desk.height, desk.width,
                                   desk.stride, desk.out.data());
        EXPECT_TRUE(status == 0 || desk.out.front() == kUntouched) << "a failure left traces";
        return desk.wrote(status, desk.out.data(), desk.bitonal.size());
    };
}

// Of a page without rows enough nothing is cropped.
auto cropped(int type, int most_rows = 1 << 15) {
    return [=](Desk& desk) {
        const Bytes& original = type == PREPRO_CROP_GREY ? desk.grey : desk.colour;
        int* const box = desk.numbers;
        std::fill_n(box, 4, -7);
        const int status = cropimg(desk.copy(original), type, std::min(desk.height, most_rows),
                                   desk.width, desk.width * (type == PREPRO_CROP_GREY ? 1 : 3), 99,
                                   200, 100, box, box + 1, box + 2, box + 3);
        EXPECT_TRUE(status == 0 || std::count(box, box + 4, -7) == 4) << "a failure left traces";
        return desk.wrote_page_or_kept(status, original);
    };
}

int border_of_grey(Desk& desk) {
    return desk.wrote(
        cropgrey_get(desk.out.data(), desk.grey.data(), desk.height, desk.width, desk.width),
        desk.out.data(), 1);
}

int border_of_colour(Desk& desk) {
    return desk.wrote(
        cropcolor_get(desk.out.data(), desk.colour.data(), desk.height, desk.width, desk.width),
        desk.out.data(), 3);
}

int replace_grey(Desk& desk) {
    return desk.wrote_page(
        cropgrey_replace(255, 17, desk.copy(desk.grey), desk.height, desk.width, desk.width));
}

// The colours of one row of the page, wherever they come again, become those of its first row.
int replace_colour(Desk& desk) {
    const std::size_t row_bytes = 3 * static_cast<std::size_t>(desk.width);
    const std::uint8_t* middle =
        desk.colour.data() + row_bytes * static_cast<std::size_t>(desk.height / 2);
    return desk.wrote_page(cropcolor_replace(middle, desk.colour.data(), desk.copy(desk.colour),
                                             desk.height, desk.width, desk.width));
}

const bool added = add_calls({
    {"cropbmp", Allocates::kYes, bitonal(0)},
    {"cropbmp, paper", Allocates::kYes, bitonal(1)},
    {"cropimg, grey", Allocates::kYes, cropped(PREPRO_CROP_GREY)},
    {"cropimg, colour", Allocates::kYes, cropped(PREPRO_CROP_RGB)},
    {"cropimg, few rows", Allocates::kYes, cropped(PREPRO_CROP_BGR, 23)},
    {"cropgrey_get", Allocates::kNo, border_of_grey},
    {"cropgrey_replace", Allocates::kNo, replace_grey},
    {"cropcolor_get", Allocates::kNo, border_of_colour},
    {"cropcolor_replace", Allocates::kNo, replace_colour},
});

}  // namespace
}  // namespace calls

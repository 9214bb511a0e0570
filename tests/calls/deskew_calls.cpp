#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "calls/calls.h"

namespace calls {
namespace {

// Made before the calls, removed behind them.
const struct TraceFolder {
    std::string path = std::filesystem::temp_directory_path() / "vemoprepro-calls";

    ~TraceFolder() { std::filesystem::remove_all(path); }
} trace_folder;

// A failure leaves the values that are stored first, and the size as it was.
int estimated(Desk& desk, int status) {
    if (status != 0) {
        EXPECT_EQ(desk.numbers[0], 0);
        EXPECT_EQ(desk.numbers[1], 512);
        EXPECT_TRUE(desk.numbers[2] == -7 && desk.numbers[3] == -7);
        EXPECT_EQ(desk.confidence, 1.0);
    }
    return desk.wrote(status, nullptr, 0);
}

int estimate(Desk& desk, int debug) {
    desk.numbers[2] = desk.numbers[3] = -7;
    return estimated(desk, estimate_skew_of_binary_image(
                               debug, trace_folder.path.c_str(), desk.bitonal.data(), desk.height,
                               desk.width, desk.stride, &desk.numbers[0], &desk.numbers[1],
                               &desk.confidence, &desk.numbers[2], &desk.numbers[3]));
}

int estimate_briefly(Desk& desk) {
    desk.numbers[2] = desk.numbers[3] = -7;
    desk.confidence = 1.0;
    return estimated(
        desk, skbitmap_mem(desk.bitonal.data(), desk.height, desk.width, desk.stride,
                           &desk.numbers[0], &desk.numbers[1], &desk.numbers[2], &desk.numbers[3]));
}

auto estimated_colour(prepro_row_reader reader, int format, int debug) {
    return [=](Desk& desk) {
        desk.numbers[2] = desk.numbers[3] = -7;
        return estimated(
            desk, estimate_skew_of_color_image(debug, trace_folder.path.c_str(), reader, &desk,
                                               format, desk.height, desk.width, &desk.numbers[0],
                                               &desk.numbers[1], &desk.confidence));
    };
}

int estimate_colour_briefly(Desk& desk) {
    desk.numbers[2] = desk.numbers[3] = -7;
    desk.confidence = 1.0;
    return estimated(desk, sk_color_mem(Desk::read, &desk, PREPRO_SOURCE_RGB, desk.height,
                                        desk.width, &desk.numbers[0], &desk.numbers[1]));
}

// The first bytes of the colour page as a page of any number of bytes a pixel, turned with some
// room beyond the result.
auto turned_in_place(int pixel_bytes, int skew) {
    return [=](Desk& desk) {
        const int width = desk.width * 3 / 4;
        int out_height = 0;
        int out_width = 0;
        skrotdim(skew, 512, desk.height, width, &out_height, &out_width);
        out_height += 1;
        out_width += 2;
        const auto size = static_cast<std::size_t>(out_height) *
                          static_cast<std::size_t>(out_width * pixel_bytes);
        if (desk.out.size() < size) return -1;
        const auto used =
            static_cast<std::size_t>(desk.height) * static_cast<std::size_t>(width * pixel_bytes);
        std::copy_n(desk.colour.begin(), used, desk.out.begin());
        const unsigned char background[] = {200, 100, 50, 25};
        const int status =
            skew < 0 ? skrotimg_mem(skew, 512, pixel_bytes, desk.out.data(), desk.height, width,
                                    out_height, out_width, nullptr)
                     : skrotimg_bg_mem(skew, 512, pixel_bytes, desk.out.data(), desk.height, width,
                                       background, out_height, out_width, nullptr);
        return desk.wrote(status, desk.out.data(), size);
    };
}

template <class Measure, class Rotate>
auto rotated(Measure measure, Rotate rotate, int skew) {
    return [=](Desk& desk) {
        int height = 0;
        int width = 0;
        measure(skew, 512, desk.height, desk.width, &height, &width);
        const int status =
            rotate(skew, 512, desk.copy(desk.bitonal), desk.height, desk.width, desk.stride,
                   desk.out.data(), height, width, (width + 31) / 32 * 4, nullptr);
        EXPECT_EQ(desk.page, desk.bitonal) << "the source did not come back";
        return desk.wrote_bits(status, height, width);
    };
}

constexpr auto kAligned = skew_binary_image_aligned_with_skrotimg_mem;
constexpr auto kAlignedBlack = skew_binary_image_aligned_with_skrotimg_mem_black_background;

const bool added = add_calls({
    {"estimate_skew_of_binary_image", Allocates::kYes,
     [](Desk& desk) { return estimate(desk, 0); }},
    {"estimate_skew_of_binary_image, traced", Allocates::kYes,
     [](Desk& desk) { return estimate(desk, 1); }},
    {"skbitmap_mem", Allocates::kYes, estimate_briefly},
    {"skrotbmp_mem, no skew", Allocates::kNo, rotated(skrotbmp_dim, skrotbmp_mem, 0)},
    {"skrotbmp_mem, components", Allocates::kYes, rotated(skrotbmp_dim, skrotbmp_mem, 15)},
    {"skrotbmp_mem, plain", Allocates::kYes, rotated(skrotbmp_dim, skrotbmp_mem, -90)},
    {"skrotbmp_b_mem", Allocates::kYes, rotated(skrotbmp_dim, skrotbmp_b_mem, -20)},
    {"aligned, two shears", Allocates::kYes, rotated(skrotdim, kAligned, 15)},
    {"aligned, three shears", Allocates::kYes, rotated(skrotdim, kAligned, -40)},
    {"estimate_skew_of_color_image, grey", Allocates::kYes,
     estimated_colour(Desk::read_grey, PREPRO_SOURCE_GREY, 0)},
    {"estimate_skew_of_color_image, traced", Allocates::kYes,
     estimated_colour(Desk::read, PREPRO_SOURCE_BGR, 1)},
    {"sk_color_mem", Allocates::kYes, estimate_colour_briefly},
    {"skrotimg_bg_mem, grey", Allocates::kYes, turned_in_place(1, 13)},
    {"skrotimg_bg_mem, half", Allocates::kYes, turned_in_place(2, 90)},
    {"skrotimg_mem, colour", Allocates::kYes, turned_in_place(3, -40)},
    {"skrotimg_mem, four bytes", Allocates::kYes, turned_in_place(4, -20)},
    {"aligned, black background", Allocates::kYes, rotated(skrotdim, kAlignedBlack, 20)},
});

}  // namespace
}  // namespace calls

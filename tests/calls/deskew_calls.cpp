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
    {"aligned, black background", Allocates::kYes, rotated(skrotdim, kAlignedBlack, 20)},
});

}  // namespace
}  // namespace calls

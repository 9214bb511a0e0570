// The deskew rotation of grey and colour pages: it moves a page as its mask, and what it refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "models/pixels.h"
#include "support/random_page.h"
#include "vemoprepro/deskew.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Whether the mask has ink within three pixels: what the fractions of three shears can reach.
bool ink_around(const model::Bits& mask, int x, int y) {
    for (int v = y - 3; v <= y + 3; ++v)
        for (int u = x - 3; u <= x + 3; ++u)
            if (mask.get(u, v)) return true;
    return false;
}

// A pixel never gives all of itself away, so white stays wherever its mask goes.
TEST(ColourRotation, MaskFallsOnItsPage) {
    constexpr int kHeight = 150;
    constexpr int kWidth = 130;
    constexpr int kStride = 20;
    Bytes mask(kHeight * kStride);
    Bytes page(kHeight * kWidth);
    support::Random random(4);
    for (int i = 0; i < 60; ++i) {
        const int x = random.between(1, kWidth - 2);
        const int y = random.between(1, kHeight - 2);
        model::set_bit(mask.data(), kStride, x, y, true);
        page[model::offset(y, kWidth, x)] = 255;
    }
    for (const int skew : {-96, -50, -26, -25, -3, 1, 9, 25, 26, 60, 96}) {
        SCOPED_TRACE(skew);
        int height, width;
        ASSERT_EQ(skrotdim(skew, 512, kHeight, kWidth, &height, &width), 0);
        const int stride = model::word_stride(width);
        Bytes turned_mask(model::offset(height, stride, 0));
        ASSERT_EQ(skew_binary_image_aligned_with_skrotimg_mem(skew, 512, mask.data(), kHeight,
                                                              kWidth, kStride, turned_mask.data(),
                                                              height, width, stride, nullptr),
                  0);
        Bytes turned = page;
        turned.resize(model::offset(height, width, 0));
        constexpr std::uint8_t kBlack = 0;
        ASSERT_EQ(skrotimg_bg_mem(skew, 512, 1, turned.data(), kHeight, kWidth, &kBlack, height,
                                  width, nullptr),
                  0);
        const model::Bits ink = model::unpack(turned_mask.data(), height, width, stride);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool lit = turned[model::offset(y, width, x)] != 0;
                ASSERT_TRUE(lit ? ink_around(ink, x, y) : !ink.get(x, y)) << x << " " << y;
            }
        }
    }
}

int reports;

TEST(ColourRotation, RefusalsLeaveThePageAlone) {
    const Bytes page = support::random_bytes(4 * 80 * 80, 1);
    Bytes buffer = page;
    const std::uint8_t background[4] = {};
    int height, width;
    ASSERT_EQ(skrotdim(40, 512, 50, 60, &height, &width), 0);
    const auto turn = [&](int skew, int scale, int pixel_bytes, int out_height, int out_width) {
        return skrotimg_bg_mem(skew, scale, pixel_bytes, buffer.data(), 50, 60, background,
                               out_height, out_width, [](unsigned, unsigned) { ++reports; });
    };
    reports = 0;
    EXPECT_EQ(turn(40, 512, 0, height, width), -1);
    EXPECT_EQ(turn(40, 512, 5, height, width), -1);
    EXPECT_EQ(turn(40, 0, 1, height, width), -1);
    EXPECT_EQ(turn(97, 512, 1, 80, 80), -1);
    EXPECT_EQ(turn(40, 512, 1, height - 1, width), -1);
    EXPECT_EQ(turn(40, 512, 1, height, width - 1), -1);
    EXPECT_EQ(turn(0, 512, 1, 49, 60), -1);
    EXPECT_EQ(skrotimg_bg_mem(0, 1, 1, buffer.data(), 50, 60, nullptr, 50, 60, nullptr), -1);
    EXPECT_EQ(skrotimg_mem(0, 1, 1, nullptr, 50, 60, 50, 60, nullptr), -1);
    EXPECT_EQ(skrotimg_mem(0, 1, 1, buffer.data(), 0, 60, 0, 60, nullptr), -1);
    EXPECT_EQ(reports, 0);
    EXPECT_EQ(buffer, page);
    EXPECT_EQ(turn(0, 0, 1, 50, 60), 0);
    EXPECT_EQ(reports, 2);
    EXPECT_EQ(buffer, page);
    EXPECT_EQ(turn(40, 512, 4, height, width), 0);
    EXPECT_EQ(reports, 7);
}

}  // namespace

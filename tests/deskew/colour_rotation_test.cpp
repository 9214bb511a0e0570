// The deskew rotation of grey and colour pages against the plain model and beside that of masks,
// and what it refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "models/colour_deskew_comparison.h"
#include "support/allocation_limit.h"
#include "support/every_target.h"
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

void expect_models_turn(const model::PackedPage& page, const model::Turn& turn) {
    SCOPED_TRACE(testing::Message()
                 << page.height << " x " << page.width << " x " << page.pixel_bytes << " by "
                 << turn.skew << "/" << turn.scale);
    const model::TurnOutcome want = model::modelled_turn(page, turn);
    EXPECT_EQ(want.status, 0);
    support::on_every_target([&] { EXPECT_TRUE(model::turned(page, turn) == want); });
}

// Noise shows every fraction; its two levels, flat patches the ends of lines.
TEST(ColourRotation, EqualsTheModelOnEveryInstructionSet) {
    support::Random random(9);
    for (std::uint32_t i = 0; i < 194; ++i) {
        const int skew = static_cast<int>(i) % 97 * (i < 97 ? 1 : -1);
        for (int pixel_bytes = 1; pixel_bytes <= 4; ++pixel_bytes) {
            const bool tiny = i % 8 == 0;
            const int height = random.between(1, tiny ? 5 : 140);
            const int width = random.between(1, tiny ? 140 : 90);
            model::PackedPage page{pixel_bytes, height, width, {}};
            page.bytes = support::random_bytes(model::offset(height, width * pixel_bytes, 0), i);
            if (i % 3 == 0)
                for (auto& value : page.bytes) value = value < 99 ? 0 : 255;
            model::Turn turn{skew, 512, 0, 0, {}};
            if (i % 5 != 0) turn.background = support::random_bytes(4, i);
            ASSERT_EQ(skrotdim(skew, 512, height, width, &turn.out_height, &turn.out_width), 0);
            if (i % 4 == 0) {
                turn.out_height += random.between(0, 3);
                turn.out_width += random.between(0, 70);
            }
            expect_models_turn(page, turn);
            if (HasFailure()) return;
        }
    }
}

// Lines that move by more than 256 pixels.
TEST(ColourRotation, VeryWideAndVeryTallPages) {
    for (const int skew : {-20, 20}) {
        for (const auto& [height, width] : {std::pair{3, 8000}, {8000, 3}}) {
            model::Turn turn{skew, 512, 0, 0, {}};
            skrotdim(skew, 512, height, width, &turn.out_height, &turn.out_width);
            expect_models_turn({1, height, width, support::random_bytes(24000, 5)}, turn);
        }
    }
}

// Less than half a unit is no skew, but the page is sheared all the same: by nothing.
TEST(ColourRotation, WithoutASkewThePageIsLaidOutAnew) {
    for (int pixel_bytes = 1; pixel_bytes <= 4; ++pixel_bytes) {
        const model::PackedPage page{
            pixel_bytes, 20, 30,
            support::random_bytes(std::size_t{600} * static_cast<std::size_t>(pixel_bytes), 2)};
        expect_models_turn(page, {0, 0, 20, 30, {}});
        expect_models_turn(page, {0, 0, 23, 30, {}});
        expect_models_turn(page, {0, 0, 20, 37, {}});
        expect_models_turn(page, {1, 1024, 20, 30, {1, 2, 3, 4}});
        expect_models_turn(page, {-1, 1024, 25, 35, {1, 2, 3, 4}});
        expect_models_turn(page, {-7, -90, 40, 40, {1, 2, 3, 4}});
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

// Every shear allocates once, before it moves anything.
TEST(ColourRotation, FailedAllocationEndsItBeforeAShear) {
    Bytes buffer(80 * 80);
    const auto turn = [&] {
        reports = 0;
        return skrotimg_mem(40, 512, 1, buffer.data(), 50, 60, 80, 80,
                            [](unsigned, unsigned) { ++reports; });
    };
    prepro_redefine_malloc(support::failing_malloc);
    for (int failing = 0; failing < 3; ++failing) {
        support::allocations_until_failure = failing;
        EXPECT_EQ(turn(), -1);
        EXPECT_EQ(reports, 2 + failing);
    }
    support::allocations_until_failure = 3;
    EXPECT_EQ(turn(), 0);
    EXPECT_EQ(reports, 5);
    support::allocations_until_failure = -1;
    prepro_redefine_malloc(nullptr);
}

}  // namespace

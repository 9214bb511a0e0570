#include "simd/grey_rows.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <vector>

#include "simd/threshold_bits.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongest = 3 * 64 + 7;  // three of the widest vectors, and a rest

// Calls check(width, offset) for all widths and several alignments, on every instruction set.
template <class Check>
void for_all_rows(Check&& check) {
    support::on_every_target([&] {
        for (std::size_t width = 0; width <= kLongest; ++width) {
            for (const std::size_t offset : {0U, 1U, 3U, 8U}) check(width, offset);
        }
    });
}

// All 2^24 colours, in rows of one red.
TEST(GreyRows, LuminanceIsExactForEveryColour) {
    support::on_every_target([] {
        constexpr std::size_t kColours = 65536;
        Bytes colours(3 * kColours);
        Bytes grey(kColours);
        Bytes expected(kColours);
        for (std::size_t i = 0; i < kColours; ++i) {
            colours[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
            colours[3 * i + 2] = static_cast<std::uint8_t>(i);
        }
        // The emulated vectors are slow; a few reds tell as much about them.
        const std::size_t step = hwy::SupportedTargets() == HWY_EMU128 ? 51 : 1;
        for (std::size_t red = 0; red < 256; red += step) {
            for (std::size_t i = 0; i < kColours; ++i) {
                colours[3 * i] = static_cast<std::uint8_t>(red);
            }
            simd::luminance_row(colours.data(), kColours, simd::ChannelOrder::kRedFirst,
                                grey.data());
            simd::plain::luminance_row(colours.data(), kColours, simd::ChannelOrder::kRedFirst,
                                       expected.data());
            ASSERT_EQ(grey, expected) << "red " << red;
        }
    });
}

TEST(GreyRows, LuminanceAgreesOnEveryLength) {
    const Bytes colours = support::random_bytes(4000, 1);
    for (const auto order : {simd::ChannelOrder::kRedFirst, simd::ChannelOrder::kBlueFirst}) {
        for_all_rows([&](std::size_t width, std::size_t offset) {
            support::GuardedBuffer grey(width);
            Bytes expected(width);
            simd::luminance_row(colours.data() + offset, width, order, grey.data());
            simd::plain::luminance_row(colours.data() + offset, width, order, expected.data());
            ASSERT_EQ(grey.contents(), expected) << width;
            ASSERT_TRUE(grey.guards_intact());
        });
    }
}

TEST(GreyRows, HoldAgreesOnEveryLength) {
    // Channels near each other's limit of spread, greys near the held value.
    support::Random random(2);
    Bytes colours(4000);
    for (auto& value : colours) value = static_cast<std::uint8_t>(random.between(160, 255));
    Bytes start(400);
    for (auto& value : start) value = static_cast<std::uint8_t>(random.between(190, 255));
    for_all_rows([&](std::size_t width, std::size_t offset) {
        support::GuardedBuffer grey(width);
        std::copy_n(start.begin(), width, grey.data());
        Bytes expected(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(width));
        simd::hold_saturated(colours.data() + offset, width, grey.data());
        simd::plain::hold_saturated(colours.data() + offset, width, expected.data());
        ASSERT_EQ(grey.contents(), expected) << width;
        ASSERT_TRUE(grey.guards_intact());
    });
}

TEST(GreyRows, DifferenceIsFoundAtEveryPlaceAndOnlyAboveTheLimit) {
    for_all_rows([](std::size_t width, std::size_t offset) {
        Bytes first(width + offset, 130);
        Bytes second(width + offset, 18);
        const std::uint8_t* a = first.data() + offset;
        const std::uint8_t* b = second.data() + offset;
        ASSERT_FALSE(simd::differs_above(a, b, width, 112)) << width;
        for (std::size_t x = 0; x<width; x += width> 40 ? 5 : 1) {
            second[offset + x] = 17;
            ASSERT_TRUE(simd::differs_above(a, b, width, 112)) << x << " of " << width;
            ASSERT_TRUE(simd::differs_above(b, a, width, 112)) << x << " of " << width;
            second[offset + x] = 18;
        }
    });
}

TEST(GreyRows, SmoothingAgreesOnEveryLengthAndWeight) {
    const Bytes noise = support::random_bytes(3000, 3);
    int parameter = 1;
    for_all_rows([&](std::size_t width, std::size_t offset) {
        parameter = parameter % 255 + 1;
        const auto weight = static_cast<simd::NeighbourWeight>(1024 / (parameter + 8));
        const std::uint8_t* above = noise.data() + offset;
        support::GuardedBuffer smoothed(width);
        Bytes expected(width);
        simd::smooth_row(above, above + 1000, above + 2000, width, weight, smoothed.data());
        simd::plain::smooth_row(above, above + 1000, above + 2000, width, weight, expected.data());
        ASSERT_EQ(smoothed.contents(), expected) << width << " weight " << weight;
        ASSERT_TRUE(smoothed.guards_intact());
    });
}

TEST(ThresholdBits, AgreeOnEveryLengthAndThreshold) {
    const Bytes grey = support::random_bytes(400, 4);
    int threshold = 0;
    for_all_rows([&](std::size_t width, std::size_t offset) {
        threshold = (threshold + 7) % 256;
        const auto t = static_cast<std::uint8_t>(threshold);
        support::GuardedBuffer bits((width + 7) / 8);
        Bytes expected((width + 7) / 8);
        simd::pack_below(grey.data() + offset, width, t, bits.data());
        simd::plain::pack_below(grey.data() + offset, width, t, expected.data());
        ASSERT_EQ(bits.contents(), expected) << width << " threshold " << threshold;
        ASSERT_TRUE(bits.guards_intact());
    });
}

TEST(ThresholdBits, OfBlocksAgreeOnEveryLength) {
    const Bytes grey = support::random_bytes(400, 4);
    const Bytes thresholds = support::random_bytes(100, 5);
    for_all_rows([&](std::size_t width, std::size_t offset) {
        support::GuardedBuffer bits((width + 7) / 8);
        Bytes expected((width + 7) / 8);
        const std::uint8_t* pixels = grey.data() + offset;
        // Its own block, so that a threshold behind the last one is not there to be read.
        const Bytes own(thresholds.begin(),
                        thresholds.begin() + static_cast<std::ptrdiff_t>((width + 3) / 4));
        simd::pack_below_blocks(pixels, width, own.data(), bits.data());
        simd::plain::pack_below_blocks(pixels, width, own.data(), expected.data());
        ASSERT_EQ(bits.contents(), expected) << width;
        ASSERT_TRUE(bits.guards_intact());
    });
}

}  // namespace

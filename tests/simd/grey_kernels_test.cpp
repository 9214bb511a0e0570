// The kernels on grey and colour rows against their plain forms. (Those of border cropping are
// tested with it, on every instruction set.)
#include <hwy/highway.h>

#include "simd/pixels/border_rows.h"
#include "simd/pixels/grey_rows.h"
#include "simd/pixels/histogram.h"
#include "simd/pixels/light_counts.h"
#include "simd/pixels/threshold_bits.h"
#include "support/kernel_frame.h"

namespace {

using simd::PixelLayout;
using support::expect_twins;
using support::on_every_width;
using support::Random;
using support::Row;
using support::Words;

// Reds `step` apart with all greens and blues. The emulated vectors are slow; a few reds tell as
// much about them.
template <class Check>
void on_colours(std::size_t step, const Check& check) {
    support::on_every_target([&] {
        support::Bytes colours(std::size_t{3} * 65536);
        const bool emulated = hwy::SupportedTargets() == HWY_EMU128;
        for (std::size_t red = 0; red < 256; red += emulated ? 51 : step) {
            for (std::size_t i = 0; i < colours.size(); i += 3) {
                colours[i] = static_cast<std::uint8_t>(red);
                colours[i + 1] = static_cast<std::uint8_t>(i / 3 >> 8);
                colours[i + 2] = static_cast<std::uint8_t>(i / 3);
            }
            check(colours);
        }
    });
}

TEST(GreyRows, LuminanceOfEveryColour) {
    on_colours(1, [](const support::Bytes& colours) {
        support::Bytes grey(65536), expected(65536);
        const auto order = simd::ChannelOrder::kRedFirst;
        simd::luminance_row(colours.data(), grey.size(), order, grey.data());
        simd::plain::luminance_row(colours.data(), grey.size(), order, expected.data());
        ASSERT_EQ(grey, expected) << "red " << int{colours[0]};
    });
}

TEST(GreyRows, LuminanceClampedAndSmoothed) {
    on_every_width(0, [](std::size_t width, Random& random) {
        Row noise(3 * width, random);
        for (const auto order : {simd::ChannelOrder::kRedFirst, simd::ChannelOrder::kBlueFirst}) {
            expect_twins(1, width, random, [&](bool fast, const auto& out) {
                (fast ? simd::luminance_row : simd::plain::luminance_row)(noise, width, order,
                                                                          out[0]);
            });
        }
        // Channels near each other's limit of chroma, greys near the value they are clamped to.
        Row light(3 * width, random, 160), start(width, random, 190);
        expect_twins(1, width, random, [&](bool fast, const auto& out) {
            std::copy_n(start.data(), width, out[0]);
            (fast ? simd::clamp_saturated : simd::plain::clamp_saturated)(light, width, out[0]);
        });
        expect_twins(1, width, random, [&](bool fast, const auto& out) {
            (fast ? simd::gaussian_row : simd::plain::gaussian_row)(
                noise, noise + width, noise + 2 * width, width, out[0]);
        });
        for (const int parameter : {1, random.between(2, 254), 255}) {
            const auto weight = static_cast<simd::NeighbourWeight>(1024 / (parameter + 8));
            expect_twins(1, width, random, [&](bool fast, const auto& out) {
                (fast ? simd::smooth_row : simd::plain::smooth_row)(
                    noise, noise + width, noise + 2 * width, width, weight, out[0]);
            });
        }
    });
}

TEST(GreyRows, DifferencesAreFoundAtEveryPlaceAndOnlyAboveTheLimit) {
    on_every_width(0, [](std::size_t width, Random& random) {
        Row a(width, random, 130, 130), b(width, random, 18, 18);
        ASSERT_FALSE(simd::differs_above(a, b, width, 112));
        for (std::size_t x = 0; x < width; ++x) {
            b[x] = 17;
            ASSERT_TRUE(simd::differs_above(a, b, width, 112)) << x;
            ASSERT_TRUE(simd::differs_above(b, a, width, 112)) << x;
            b[x] = 18;
        }
    });
}

// Rows of thresholds of their own, so that one behind the last is not there to be read.
TEST(ThresholdBits, OfRowsAndOfBlocks) {
    on_every_width(0, [](std::size_t width, Random& random) {
        for (const int most : {9, 255}) {
            Row grey(width, random, 0, most), thresholds((width + 3) / 4, random, 0, most);
            const auto threshold = static_cast<std::uint8_t>(random.between(0, most));
            expect_twins(2, (width + 7) / 8, random, [&](bool fast, const auto& out) {
                (fast ? simd::pack_below : simd::plain::pack_below)(grey, width, threshold, out[0]);
                (fast ? simd::pack_below_blocks : simd::plain::pack_below_blocks)(
                    grey, width, thresholds, out[1]);
            });
        }
    });
}

TEST(Histogram, AddsEveryLevel) {
    for (const int span : {0, 1, 14, 15, 16, 255}) {
        for (const std::size_t count : {0U, 1U, 3U, 63U, 511U, 512U, 513U, 1023U, 1024U, 5000U}) {
            on_every_width(count, count, [&](std::size_t, Random& random) {
                // A span of levels that the count by upper halves must not mix up.
                Row bytes(count, random, 0, span);
                for (std::size_t i = 0; i < count; ++i)
                    bytes[i] = static_cast<std::uint8_t>(bytes[i] + 230);
                expect_twins<std::uint64_t>(1, 256, random, [&](bool fast, const auto& out) {
                    simd::Histogram counts;
                    std::copy_n(out[0], 256, counts.begin());
                    (fast ? simd::add_to_histogram : simd::plain::add_to_histogram)(bytes, count,
                                                                                    counts);
                    std::copy_n(counts.begin(), 256, out[0]);
                });
            });
        }
    }
}

TEST(LightCounts, AddTheRowsOfAPage) {
    on_every_width(0, [](std::size_t width, Random& random) {
        const std::int32_t height = width % 64 == 1 ? 300 : 7;
        Row page(static_cast<std::size_t>(height) * (width + 3), random);
        const common::GreyView grey{page, height, static_cast<std::int32_t>(width),
                                    static_cast<std::ptrdiff_t>(width) + 3};
        for (const int level : {1, 100, 248}) {
            const auto first = static_cast<std::uint8_t>(level);
            expect_twins<std::uint64_t>(
                1, simd::kLightLevels, random, [&](bool fast, const auto& out) {
                    simd::LightCounts counts;
                    std::copy_n(out[0], simd::kLightLevels, counts.at_least.begin());
                    (fast ? simd::count_light : simd::plain::count_light)(grey, first, counts);
                    std::copy_n(counts.at_least.begin(), simd::kLightLevels, out[0]);
                    return counts.least;
                });
        }
    });
}

TEST(BorderRows, GreyValuesOfColours) {
    on_colours(5, [](const support::Bytes& colours) {
        support::Bytes grey(65536 + 2 * simd::kMaskBlock), expected;
        Words marks(65536 / 64), ready(65536 / 4096);
        simd::GreyLine line{colours.data(), grey.data() + simd::kMaskBlock, ready.data()};
        simd::mark_dark({PixelLayout::kRgb, 65536}, line, 0, marks.data());
        for (std::size_t i = 0; i < colours.size(); i += 3)
            expected.push_back(simd::plain::grey_value(PixelLayout::kRgb, colours.data() + i));
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), line.grey))
            << "red " << int{colours[0]};
    });
}

}  // namespace

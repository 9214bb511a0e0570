// The exported skew estimators of grey and colour pages against the plain model, and their
// arguments.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "models/colour_deskew_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using model::ColourSkewOutcome;
using model::PackedPage;
using model::SkewOutputs;

// Lines of stems and bars that rise by `rise` pixels in 512, on paper of many tints; or noise.
PackedPage drawn_page(int height, int width, int pixel_bytes, int rise, std::uint32_t seed) {
    PackedPage page{pixel_bytes, height, width, {}};
    page.bytes = support::random_bytes(model::offset(height, width * pixel_bytes, 0), seed);
    if (seed % 4 == 3) return page;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = x - rise / 512.0 * y;
            const double v = y + rise / 512.0 * x + 10000;
            const bool line = std::fmod(v, 24) < 12 && std::fmod(u + 10000, 9) < 3;
            for (int c = 0; c < pixel_bytes; ++c) {
                auto& value =
                    page.bytes[model::offset(y, width * pixel_bytes, x * pixel_bytes + c)];
                value = static_cast<std::uint8_t>(line ? value / 8 : 200 + value / 6);
            }
        }
    }
    return page;
}

TEST(ColourSkew, EqualsTheModelOnEveryInstructionSet) {
    support::Random random(1);
    for (std::uint32_t seed = 0; seed < 48; ++seed) {
        const int format = 1 + static_cast<int>(seed) % 3;
        const int height = seed == 0 ? 32 : random.between(32, 150);
        const int width = seed == 0 ? 32 : random.between(32, 260);
        const PackedPage page =
            drawn_page(height, width, format == 1 ? 1 : 3, random.between(-90, 90), seed);
        SCOPED_TRACE(testing::Message() << height << " x " << width << " of " << format);
        const ColourSkewOutcome want = model::modelled_colour_skew(page, format);
        EXPECT_EQ(want.outputs.result, 0);
        support::on_every_target(
            [&] { EXPECT_EQ(model::estimated_colour_skew(page, format), want); });
    }
}

TEST(ColourSkew, FindsTheSlopeOfText) {
    for (const int rise : {-90, -10, 0, 3, 95}) {
        SCOPED_TRACE(rise);
        const SkewOutputs found =
            model::estimated_colour_skew(drawn_page(500, 700, 3, rise, 2), 3).outputs;
        EXPECT_NEAR(found.yskew, rise, 1);
        EXPECT_GT(found.confidence, 1.5);
    }
}

// Stripes of black and white are the strongest edges that there are, on the longest pages.
TEST(ColourSkew, VeryWideAndVeryTallPages) {
    for (const auto& [height, width] : {std::pair{33, 32767}, std::pair{32767, 35}}) {
        PackedPage page{1, height, width, {}};
        page.bytes.resize(model::offset(height, width, 0));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                page.bytes[model::offset(y, width, x)] = (y / 2 + x / 2) % 2 == 0 ? 255 : 0;
        EXPECT_EQ(model::estimated_colour_skew(page, 1), model::modelled_colour_skew(page, 1));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                page.bytes[model::offset(y, width, x)] = y / 2 % 2 == 0 || x / 2 % 2 == 0 ? 255 : 0;
        EXPECT_EQ(model::estimated_colour_skew(page, 1), model::modelled_colour_skew(page, 1));
    }
}

TEST(ColourSkew, ReadsWholePairsAndThenWholeSixteens) {
    const PackedPage page = drawn_page(101, 40, 1, 5, 1);
    std::vector<int> want(100 + 96, 1);
    want[0] = want[100] = 0;
    EXPECT_EQ(model::estimated_colour_skew(page, 1).modes, want);
}

TEST(ColourSkew, UniformPagesHaveNoSkew) {
    const PackedPage page{1, 90, 70, std::vector<std::uint8_t>(6300, 77)};
    const SkewOutputs found = model::estimated_colour_skew(page, 1).outputs;
    EXPECT_EQ(found.result, 0);
    EXPECT_EQ(found.yskew, 0);
    EXPECT_TRUE(std::isnan(found.confidence));
}

TEST(ColourSkew, Refusals) {
    const SkewOutputs untouched{-1, -7, -7, -7, -7, -7};
    const SkewOutputs initial{-1, 0, 512, 1.0, -7, -7};
    const PackedPage page = drawn_page(40, 40, 3, 0, 1);
    const auto refused = [&](int format, int height, int width) {
        return model::estimated_colour_skew({3, height, width, page.bytes}, format);
    };
    for (const auto& [height, width] : {std::pair{31, 40}, {40, 31}, {INT_MIN, 40}, {40, -1}})
        EXPECT_EQ(refused(4, height, width), (ColourSkewOutcome{untouched, {}}));
    for (const int format : {0, 4, INT_MIN})
        EXPECT_EQ(refused(format, 40, 40), (ColourSkewOutcome{initial, {}}));

    for (int absent = 0; absent < 4; ++absent) {
        support::RecordingReader reader(page.bytes, page.row_bytes());
        SkewOutputs out;
        const auto unless = [&](int index, auto* pointer) {
            return index == absent ? nullptr : pointer;
        };
        EXPECT_EQ(estimate_skew_of_color_image(
                      0, nullptr, unless(3, &support::RecordingReader::read), &reader, 3, 40, 40,
                      unless(0, &out.yskew), unless(1, &out.scale), unless(2, &out.confidence)),
                  -1);
        EXPECT_EQ(out, (SkewOutputs{-7, absent == 0 ? -7 : 0, absent == 1 ? -7 : 512,
                                    absent == 2 ? -7 : 1.0, -7, -7}));
        EXPECT_TRUE(reader.modes.empty());
    }
}

TEST(ColourSkew, WhatTheReaderThrowsFailsTheCall) {
    int yskew, scale;
    const auto throwing = [](void*, int, unsigned char*) -> int { throw std::runtime_error("no"); };
    EXPECT_EQ(sk_color_mem(throwing, nullptr, 1, 40, 40, &yskew, &scale), -1);
    EXPECT_EQ(yskew, 0);
    EXPECT_EQ(scale, 512);
}

TEST(ColourSkew, TraceIsTheModelsByteForByte) {
    const std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) / ("colour_skew_" + std::to_string(getpid()));
    for (std::uint32_t seed = 1; seed < 4; ++seed) {
        const PackedPage page = drawn_page(70, 99, 3, 20, seed);
        std::ostringstream want;
        const ColourSkewOutcome modelled = model::modelled_colour_skew(page, 2, &want);
        EXPECT_EQ(model::estimated_colour_skew(page, 2, 0x180, folder.c_str()), modelled);
        std::ostringstream got;
        got << std::ifstream(folder / "estimate_skew_of_color_image.log", std::ios::binary).rdbuf();
        EXPECT_EQ(got.str(), want.str());
    }
    // A file in the way of the folder; the reader is not called.
    std::ofstream(folder / "file") << "in the way";
    const std::string taken = folder / "file";
    EXPECT_EQ(model::estimated_colour_skew(drawn_page(70, 99, 3, 20, 1), 2, 1, taken.c_str()),
              (ColourSkewOutcome{{-1, 0, 512, 1.0, -7, -7}, {}}));
    std::filesystem::remove_all(folder);
}

}  // namespace

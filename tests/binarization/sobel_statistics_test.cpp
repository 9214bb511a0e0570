#include "binarization/sobel_statistics.h"

#include <gtest/gtest.h>

#include <vector>

#include "models/sobel_statistics_model.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using binarization::SobelStatistics;

enum class Kind { kNoise, kText, kFaint, kNight, kSteps, kCount };

// Rows of `stride` bytes, those behind the picture random.
Bytes picture(Kind kind, int height, int width, std::size_t stride, support::Random& random) {
    Bytes bytes = support::random_bytes(static_cast<std::size_t>(height) * stride,
                                        static_cast<std::uint32_t>(random.between(0, 1 << 30)));
    if (kind == Kind::kNoise) return bytes;
    const int paper = kind == Kind::kNight ? random.between(0, 40) : random.between(120, 235);
    const int ink = kind == Kind::kFaint ? paper - 30 : random.between(0, 60);
    const int noise = random.between(0, 6);
    const int shade = random.between(0, 3);
    const double density = random.chance(0.3) ? 0.1 : 1;
    Bytes strokes = support::random_text(height, width, static_cast<std::size_t>(width + 7) / 8,
                                         static_cast<std::uint32_t>(random.between(0, 1 << 30)));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::size_t at =
                static_cast<std::size_t>(y) * ((static_cast<std::size_t>(width) + 7) / 8) +
                static_cast<std::size_t>(x / 8);
            const bool black = (strokes[at] >> (7 - x % 8) & 1) != 0 && random.chance(density);
            int value = (black ? ink : paper) + random.between(-noise, noise) + x * shade / 8;
            if (kind == Kind::kSteps) value = value / 64 * 64;
            bytes[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x)] =
                static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        }
    }
    return bytes;
}

std::uint8_t parameter(support::Random& random, int usual) {
    if (random.chance(0.3)) return random.chance(0.5) ? 0 : 255;
    return static_cast<std::uint8_t>(random.between(0, random.chance(0.8) ? usual : 255));
}

int sigma(support::Random& random) {
    if (random.chance(0.3)) return random.chance(0.5) ? -128 : 127;
    return random.between(-128, 127);
}

struct Size {
    int height;
    int width;
};

Size size(support::Random& random, int i) {
    if (i % 40 == 0) return {random.between(13, 20), random.between(129, 420)};
    if (i % 4 == 0) return {random.between(13, 40), random.between(60, 160)};
    return {random.between(1, 40), random.between(1, 40)};
}

void compare_with_model(support::Random& random, int i) {
    const auto [height, width] = size(random, i);
    const std::size_t stride =
        static_cast<std::size_t>(width + (random.chance(0.5) ? 0 : random.between(1, 9)));
    const auto kind = static_cast<Kind>(random.between(0, static_cast<int>(Kind::kCount) - 1));
    const Bytes bytes = picture(kind, height, width, stride, random);
    Bytes packed;
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        const auto row = bytes.begin() + static_cast<std::ptrdiff_t>(y * stride);
        packed.insert(packed.end(), row, row + width);
    }
    const SobelStatistics p{.delta1 = parameter(random, 60),
                            .delta2 = parameter(random, 60),
                            .black1 = parameter(random, 120),
                            .black2 = parameter(random, 100),
                            .sigma = sigma(random)};
    const auto bits_stride = common::bitonal_stride(width);
    const std::size_t bits_size = static_cast<std::size_t>(bits_stride * height);
    Bytes expected(bits_size);
    model::sobel_variant(packed.data(), height, width, p.delta1, p.delta2, p.black1, p.black2,
                         p.sigma, expected.data());
    support::GuardedBuffer out(bits_size);
    binarization::binarize_by_sobel_statistics(
        {bytes.data(), height, width, static_cast<std::ptrdiff_t>(stride)}, p,
        {out.data(), height, width, bits_stride});
    ASSERT_EQ(out.contents(), expected)
        << "case " << i << ": " << height << " x " << width << ", kind " << static_cast<int>(kind)
        << ", delta " << +p.delta1 << ' ' << +p.delta2 << ", black " << +p.black1 << ' '
        << +p.black2 << ", sigma " << p.sigma;
    ASSERT_TRUE(out.guards_intact()) << "case " << i;
}

TEST(SobelStatistics, GivesTheModelsBytes) {
    support::on_every_target([] {
        support::Random random(11);
        for (int i = 0; i < 300; ++i) {
            compare_with_model(random, i);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

// What the rules give for pages that can be checked by hand.
TEST(SobelStatistics, RulesSeenOnPlainPages) {
    const auto ink = [](const Bytes& grey, int side, const SobelStatistics& parameters) {
        const auto stride = common::bitonal_stride(side);
        Bytes out(static_cast<std::size_t>(stride * side));
        binarization::binarize_by_sobel_statistics({grey.data(), side, side, side}, parameters,
                                                   {out.data(), side, side, stride});
        int count = 0;
        for (const std::uint8_t byte : out) count += __builtin_popcount(byte);
        return count;
    };
    constexpr int kSide = 64;
    Bytes page(kSide * kSide, 90);
    EXPECT_EQ(ink(page, kSide, {.black1 = 89, .black2 = 90}), 0)
        << "no edges, nothing below black2";
    EXPECT_EQ(ink(page, kSide, {.black1 = 0, .black2 = 91}), kSide * kSide) << "below black2";
    EXPECT_EQ(ink(page, kSide, {.black1 = 90}), 0) << "a dark page, but not below its own level";
    EXPECT_EQ(ink(page, kSide, {.black1 = 91}), kSide * kSide) << "a dark page";
    for (int y = 20; y < 40; ++y) std::fill_n(page.begin() + y * kSide + 20, 20, std::uint8_t{9});
    EXPECT_EQ(ink(page, kSide, {}), 400) << "a black square";
    EXPECT_EQ(ink(page, kSide, {.delta1 = 115}), 0) << "too weak a gradient for an edge";
    EXPECT_EQ(ink(page, kSide, {.delta2 = 82}), 0) << "too little contrast for an edge";
}

}  // namespace

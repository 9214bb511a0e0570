// The two adaptive methods against their models, over random pages and parameters.
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "binarization/gradient/gradient.h"
#include "binarization/statistics/sobel_statistics.h"
#include "models/gradient_model.h"
#include "models/sobel_statistics_model.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using binarization::SobelStatistics;
using support::Random;

enum class Kind { kNoise, kNarrow, kText, kFaint, kSteps, kSlopes, kNight, kSparks, kCount };

// Rows of `stride` bytes, those behind the picture random.
Bytes picture(Kind kind, int height, int width, int stride, Random& random) {
    const auto seed = static_cast<std::uint32_t>(random.between(0, 1 << 30));
    Bytes page = support::random_bytes(model::offset(height, stride, 0), seed);
    if (kind == Kind::kNoise) return page;
    const int ink_stride = (width + 7) / 8;
    const Bytes ink =
        support::random_text(height, width, static_cast<std::size_t>(ink_stride), seed);
    const double density = random.chance(0.3) ? 0.1 : 1;
    const int paper = kind == Kind::kNight ? random.between(0, 40) : random.between(60, 250);
    const int depth = kind == Kind::kFaint ? 30 : random.between(5, 200);
    const int slope = random.between(-3, 3);
    const int noise = random.between(0, 12);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool black =
                model::get_bit(ink.data(), ink_stride, x, y) && random.chance(density);
            int value = paper - (black ? depth : 0) + slope * x / 8 + random.between(-noise, noise);
            if (kind == Kind::kNarrow) value = random.between(100, 100 + 2 * noise);
            if (kind == Kind::kSteps) value = value / 64 * 64;
            if (kind == Kind::kSlopes)
                value = (x * slope * 2 + y * 5) / (1 + y / 16) % 256 + (black ? 40 : 0);
            if (kind == Kind::kSparks) value = random.chance(0.05) ? 8 : 0;
            page[model::offset(y, stride, x)] =
                static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        }
    }
    return page;
}

Kind any_kind(Random& random) {
    return static_cast<Kind>(random.between(0, static_cast<int>(Kind::kCount) - 1));
}

std::uint8_t one_of(Random& random, const std::vector<int>& usual) {
    if (random.chance(0.4)) return random.byte();
    const int last = static_cast<int>(usual.size()) - 1;
    return static_cast<std::uint8_t>(usual[static_cast<std::size_t>(random.between(0, last))]);
}

void expect_as_model(int height, int width, const auto& model_binarize, const auto& binarize,
                     const std::string& what) {
    const auto stride = common::bitonal_stride(width);
    Bytes expected(static_cast<std::size_t>(stride * height));
    model_binarize(expected.data());
    support::GuardedBuffer out(expected.size());
    binarize(common::MutableBitonalView{out.data(), height, width, stride});
    ASSERT_TRUE(out.contents() == expected) << what << ", " << height << " x " << width;
    ASSERT_TRUE(out.guards_intact()) << what;
}

binarization::GradientParameters random_parameters(Random& random) {
    binarization::GradientParameters made;
    if (random.chance(0.4)) return made;
    made.fill_mean = random.chance(0.4);
    made.internal_gaussian_smoothing = static_cast<std::uint8_t>(random.between(0, 2));
    made.delta1 = one_of(random, {0, 1, 8, 20, 40, 60, 239, 245, 246, 247, 255});
    made.delta2 = one_of(random, {0, 1, 2, 16, 32, 40, 255});
    made.black1 = one_of(random, {0, 1, 2, 100, 128, 255});
    made.black2 = one_of(random, {0, 1, 96, 128, 255});
    made.normalize_magnitude = static_cast<std::uint8_t>(random.between(0, 3));
    return made;
}

TEST(Gradient, GivesTheModelsBytes) {
    Random random(1);
    for (int i = 0; i < 1500 && !HasFatalFailure(); ++i) {
        const bool small = random.chance(0.5);
        const bool tall = !small && random.chance(0.15);
        const bool wide = !small && !tall && random.chance(0.1);  // more blocks than a vector has
        const int height = tall ? random.between(99, 235) : random.between(1, small ? 9 : 70);
        const int width = random.between(wide ? 257 : 1, small ? 9 : tall ? 70 : wide ? 700 : 150);
        const int threads = random.between(1, 8);
        const Kind kind = any_kind(random);
        const binarization::GradientParameters p = random_parameters(random);
        const Bytes grey = picture(kind, height, width, width, random);
        const model::GradientParameters q{p.fill_mean ? 1 : 0,
                                          p.internal_gaussian_smoothing,
                                          p.delta1,
                                          p.delta2,
                                          p.black1,
                                          p.black2,
                                          p.normalize_magnitude};
        std::ostringstream what;
        what << "case " << i << ": kind " << static_cast<int>(kind) << ", threads " << threads
             << ", fill mean " << q.fill_mean << ", smoothing " << q.gaussian << ", deltas "
             << q.delta1 << ' ' << q.delta2 << ", black " << q.black1 << ' ' << q.black2
             << ", normalize " << q.normalize;
        expect_as_model(
            height, width,
            [&](unsigned char* out) {
                model::bi_grey_gradl(grey.data(), height, width, q, threads, out);
            },
            [&](const common::MutableBitonalView& out) {
                binarization::binarize_by_gradient({grey.data(), height, width, width}, p, threads,
                                                   out);
            },
            what.str());
    }
}

void compare_statistics_with_model(Random& random, int i) {
    const bool wide = i % 4 == 0;
    const int height = wide ? random.between(13, 40) : random.between(1, 40);
    const int width = i % 40 == 0 ? random.between(129, 420) : random.between(1, wide ? 160 : 40);
    const int stride = width + (random.chance(0.5) ? 0 : random.between(1, 9));
    const Kind kind = any_kind(random);
    const Bytes bytes = picture(kind, height, width, stride, random);
    const SobelStatistics p{.delta1 = one_of(random, {0, 2, 10, 25, 60, 255}),
                            .delta2 = one_of(random, {0, 5, 20, 60, 255}),
                            .black1 = one_of(random, {0, 20, 60, 120, 255}),
                            .black2 = one_of(random, {0, 20, 60, 100, 255}),
                            .sigma = static_cast<std::int8_t>(one_of(random, {-128, 127}))};
    std::ostringstream what;
    what << "case " << i << ": kind " << static_cast<int>(kind) << ", delta " << +p.delta1 << ' '
         << +p.delta2 << ", black " << +p.black1 << ' ' << +p.black2 << ", sigma " << p.sigma;
    Bytes packed;
    for (int y = 0; y < height; ++y) {
        const auto row = bytes.begin() + std::ptrdiff_t{y} * stride;
        packed.insert(packed.end(), row, row + width);
    }
    expect_as_model(
        height, width,
        [&](unsigned char* out) {
            model::sobel_variant(packed.data(), height, width, p.delta1, p.delta2, p.black1,
                                 p.black2, p.sigma, out);
        },
        [&](const common::MutableBitonalView& out) {
            binarization::binarize_by_sobel_statistics({bytes.data(), height, width, stride}, p,
                                                       out);
        },
        what.str());
}

TEST(SobelStatistics, GivesTheModelsBytes) {
    support::on_every_target([] {
        Random random(11);
        for (int i = 0; i < 300 && !HasFatalFailure(); ++i)
            compare_statistics_with_model(random, i);
    });
}

// What the rules give for pages that can be checked by hand.
TEST(SobelStatistics, RulesSeenOnPlainPages) {
    constexpr int kSide = 64;
    Bytes page(kSide * kSide, 90);
    const auto ink = [&](const SobelStatistics& parameters) {
        Bytes out(kSide * kSide / 8);
        binarization::binarize_by_sobel_statistics({page.data(), kSide, kSide, kSide}, parameters,
                                                   {out.data(), kSide, kSide, kSide / 8});
        int count = 0;
        for (const std::uint8_t byte : out) count += __builtin_popcount(byte);
        return count;
    };
    EXPECT_EQ(ink({.black1 = 89, .black2 = 90}), 0) << "no edges, nothing below black2";
    EXPECT_EQ(ink({.black1 = 0, .black2 = 91}), kSide * kSide) << "below black2";
    EXPECT_EQ(ink({.black1 = 90}), 0) << "a dark page, but not below its own level";
    EXPECT_EQ(ink({.black1 = 91}), kSide * kSide) << "a dark page";
    for (int y = 20; y < 40; ++y) std::fill_n(page.begin() + y * kSide + 20, 20, std::uint8_t{9});
    EXPECT_EQ(ink({}), 400) << "a black square";
    EXPECT_EQ(ink({.delta1 = 115}), 0) << "too weak a gradient for an edge";
    EXPECT_EQ(ink({.delta2 = 82}), 0) << "too little contrast for an edge";
}

}  // namespace

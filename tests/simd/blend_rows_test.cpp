#include "simd/pixels/plain/blend_rows.h"

#include "support/kernel_frame.h"

namespace simd {
namespace {

// Noise, rows of two values, or equal rows.
struct FourOf {
    FourOf(std::size_t width, Random& random) {
        const bool flat = random.chance(0.2);
        const int low = random.chance(0.3) ? 254 : 0;
        for (int i = 0; i < 4; ++i) rows.emplace_back(width, random, low, 255, flat ? 0.9 : 0);
    }
    Neighbours neighbours() { return {rows[0], rows[1], rows[2], rows[3]}; }

    std::vector<Row> rows;
};

// Fractions of source positions: with few bits, next to fractions of small numbers, with all bits.
double random_fraction(Random& random) {
    const int source = random.between(1, 400);
    const double at = random.between(1, random.chance(0.5) ? 300 : 30000) *
                      (static_cast<double>(source) / random.between(1, 400));
    return at - std::floor(at);
}

TEST(BlendRows, InWholeWeights) {
    constexpr WholeWeights kAll[] = {{0, 1, 1, 0, 2},     {0, 2, 1, 0, 3},   {0, 1, 2, 0, 3},
                                     {0, 3, 1, 0, 4},     {0, 1, 3, 0, 4},   {1, 9, 9, 1, 16},
                                     {4, 42, 18, 2, 54},  {1, 9, 21, 2, 27}, {9, 111, 29, 3, 128},
                                     {3, 29, 111, 9, 128}};
    on_every_width(0, [&](std::size_t width, Random& random) {
        for (const WholeWeights& weights : kAll) {
            FourOf four(width, random);
            expect_twins(1, width, random, [&](bool fast, const auto& out) {
                TWIN(weigh_rows)(four.neighbours(), weights, width, out[0]);
            });
        }
    });
}

TEST(BlendRows, AtFractions) {
    on_every_width(0, [&](std::size_t width, Random& random) {
        for (int i = 0; i < 50; ++i) {
            FourOf four(width, random);
            const double t = random_fraction(random);
            expect_twins(1, width, random, [&](bool fast, const auto& out) {
                TWIN(linear_rows)(four.neighbours(), linear_weights(t), width, out[0]);
            });
            expect_twins(1, width, random, [&](bool fast, const auto& out) {
                TWIN(cubic_rows)(four.neighbours(), cubic_weights(t), width, out[0]);
            });
        }
    });
}

// Every pair of pixels.
TEST(BlendRows, LinearOfAllPixels) {
    on_every_target([] {
        Bytes a(65536), b(65536), out(65536);
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = static_cast<std::uint8_t>(i);
            b[i] = static_cast<std::uint8_t>(i >> 8);
        }
        Random random(1);
        for (int round = 0; round < (HWY_STATIC_TARGET == HWY_EMU128 ? 5 : 60); ++round) {
            const double t = random_fraction(random);
            linear_rows({nullptr, a.data(), b.data(), nullptr}, linear_weights(t), a.size(),
                        out.data());
            for (std::size_t i = 0; i < a.size(); ++i)
                ASSERT_EQ(out[i], plain::linear(a[i], b[i], t)) << t << ' ' << i;
        }
    });
}

}  // namespace
}  // namespace simd

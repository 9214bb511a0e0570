#include "vemoprepro/scaling.h"

#include <gtest/gtest.h>

#include "models/scaling_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using model::ScalingKind;
using support::Random;

// Noise, or with a chance few different values: flat areas, where rounding has its own cases.
std::vector<std::uint8_t> page_of(std::size_t size, Random& random) {
    std::vector<std::uint8_t> bytes(size);
    const bool flat = random.chance(0.3);
    const std::uint8_t values[] = {random.byte(), random.byte(), 0, 255};
    for (auto& value : bytes)
        value = flat ? values[random.chance(0.9) ? 3 : random.between(0, 3)] : random.byte();
    return bytes;
}

// A target size for a source size: any, or near one of the exact ratios.
int random_target(int source, Random& random) {
    switch (random.between(0, 5)) {
        case 0:
            return 2 * source;
        case 1:
            return std::max(1, 3 * source / 2);
        case 2:
            return std::max(1, 4 * source / 3);
        case 3:
            return std::max(1, source / random.between(1, 4));
        default:
            return random.between(1, 150);
    }
}

// The strides say how much wider they are than they must be.
struct ScaledPage {
    int height, width, stride;
};

testing::AssertionResult agrees(const ScalingKind& kind, ScaledPage from, ScaledPage to,
                                int threads, Random& random) {
    const int least = kind.row_bytes(from.width);
    from.stride += least;
    to.stride += kind.row_bytes(to.width);
    // The source ends with the last row's pixels, behind which the sanitizer watches.
    const auto src =
        page_of(static_cast<std::size_t>((from.height - 1) * from.stride + least), random);
    if (model::scalings_agree(
            kind, src, {from.height, from.width, from.stride, to.height, to.width, to.stride},
            threads))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << kind.name << ' ' << from.height << " x " << from.width << " (" << from.stride
           << ") to " << to.height << " x " << to.width << " (" << to.stride << "), " << threads;
}

TEST(Scaling, EqualsTheModelOnEveryTarget) {
    support::on_every_target([] {
        Random random(3);
        for (int i = 0; i < 40; ++i) {
            for (const ScalingKind& kind : model::kScalingKinds) {
                const ScaledPage from{random.between(1, 70), random.between(1, 70),
                                      random.between(-1, 9)};
                const ScaledPage to{random_target(from.height, random),
                                    random_target(from.width, random), random.between(-1, 9)};
                ASSERT_TRUE(agrees(kind, from, to, 1, random));
            }
        }
    });
}

// Bands of the source from 100 rows on; the target may have fewer rows than there are threads.
TEST(Scaling, ThreadsGiveTheSameBytes) {
    Random random(4);
    for (const ScalingKind& kind : model::kScalingKinds) {
        for (const int threads : {-1, 1, 2, 3, 8, 1000}) {
            const ScaledPage from{random.between(100, 420), random.between(1, 40), 3};
            const ScaledPage to{random.chance(0.3) ? random.between(1, 8) : 4 * from.height / 3,
                                random_target(from.width, random), 2};
            ASSERT_TRUE(agrees(kind, from, to, threads, random));
        }
    }
}

// Every phase of an exact ratio, ends included, along both axes; the largest sides; one pixel.
TEST(Scaling, SizesAtTheirLimits) {
    Random random(5);
    for (const ScalingKind& kind : model::kScalingKinds) {
        for (int size = 1; size <= 9; ++size)
            for (int target = 1; target <= 2 * size + 1; ++target)
                ASSERT_TRUE(agrees(kind, {size, size, 0}, {target, target, 0}, 1, random));
        constexpr int kMost = 32767;
        ASSERT_TRUE(agrees(kind, {1, kMost, 0}, {2, kMost / 3, 0}, 1, random));
        ASSERT_TRUE(agrees(kind, {3, 1000, 0}, {2, kMost, 0}, 1, random));
        ASSERT_TRUE(agrees(kind, {kMost, 1, 0}, {1000, 2, 0}, 8, random));
        ASSERT_TRUE(agrees(kind, {700, 2, 0}, {kMost, 3, 0}, 8, random));
    }
}

TEST(Scaling, RefusesWhatItCannotScale) {
    std::uint8_t src[64] = {};
    std::uint8_t dst[64] = {};
    for (const ScalingKind& kind : model::kScalingKinds) {
        const int stride = kind.row_bytes(2);
        const auto status = [&](const std::uint8_t* from, std::uint8_t* to, int height, int width,
                                int dst_height, int dst_width) {
            return kind.scaling(from, height, width, stride, to, dst_height, dst_width, stride, 1);
        };
        EXPECT_EQ(status(src, dst, 2, 2, 2, 2), 0);
        EXPECT_EQ(status(nullptr, dst, 2, 2, 2, 2), -1);
        EXPECT_EQ(status(src, nullptr, 2, 2, 2, 2), -1);
        for (int i = 0; i < 4; ++i) {
            for (const int size : {0, -1}) {
                int sizes[] = {2, 2, 2, 2};
                sizes[i] = size;
                EXPECT_EQ(status(src, dst, sizes[0], sizes[1], sizes[2], sizes[3]), -1);
            }
        }
    }
}

}  // namespace

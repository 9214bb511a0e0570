#include <gtest/gtest.h>

#include <vector>

#include "simd/block_fill.h"
#include "simd/edge_block_sums.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongest = 3 * 64 + 7;

struct Sums {
    std::vector<std::int32_t> numbers[6];

    explicit Sums(std::size_t blocks) {
        for (auto& sum : numbers) sum.assign(blocks + 1, -7);  // the last one is a guard
    }
    simd::EdgeBlockSums arrays() {
        return {numbers[0].data(), numbers[1].data(), numbers[2].data(),
                numbers[3].data(), numbers[4].data(), numbers[5].data()};
    }
};

// Flat, noisy and stepped rows, so that limits are met, missed and hit exactly.
Bytes rows_of_tones(std::size_t size, support::Random& random) {
    const int step = random.chance(0.5) ? 1 : random.between(2, 85);
    const int span = random.chance(0.5) ? 255 : random.between(0, 60);
    Bytes bytes(size);
    for (auto& value : bytes) {
        value = static_cast<std::uint8_t>(random.between(0, span) / step * step);
    }
    return bytes;
}

TEST(EdgeBlockSums, AgreeOnEveryWidth) {
    support::on_every_target([] {
        support::Random random(3);
        for (std::size_t width = 1; width <= kLongest; ++width) {
            // Rows end where their block of memory ends.
            Bytes rows[6];
            simd::BlockRows block{};
            for (std::size_t k = 0; k < 6; ++k) {
                rows[k] = rows_of_tones(width, random);
                block.row[k] = rows[k].data();
            }
            block.width = width;
            block.edges_from = random.chance(0.2) ? 1 : 0;
            block.edges_to = random.chance(0.2) ? 3 : 4;
            const int gradient = 3 * (random.chance(0.2) ? 255 : random.between(0, 90)) + 20;
            const simd::EdgeLimits limits{gradient * gradient,
                                          static_cast<std::uint8_t>(random.between(0, 120))};
            Sums fast(width / 4);
            Sums slow(width / 4);
            simd::sum_edge_blocks(block, limits, fast.arrays());
            simd::plain::sum_edge_blocks(block, limits, slow.arrays());
            for (int k = 0; k < 6; ++k) {
                ASSERT_EQ(fast.numbers[k], slow.numbers[k]) << "width " << width << ", sum " << k;
            }
        }
    });
}

// Both members of the bound that rules pixels out before their gradient is taken: the steepest
// gradient that a difference of `contrast` can have counts, a limit just above it does not.
TEST(EdgeBlockSums, TheSteepestGradientOfEveryContrast) {
    support::on_every_target([] {
        for (int contrast = 5; contrast <= 175; ++contrast) {
            Bytes rows[6];
            simd::BlockRows block{{}, 12};
            for (auto& row : rows) row.assign(12, 40);
            const auto light = static_cast<std::uint8_t>(40 + contrast);
            rows[2][6] = rows[3][6] = rows[1][6] = rows[3][5] = light;
            for (std::size_t k = 0; k < 6; ++k) block.row[k] = rows[k].data();
            const int most = 20 * contrast * contrast;  // at row 2, column 5
            for (const int above : {0, 1}) {
                Sums sums(3);
                simd::sum_edge_blocks(block, {most + above, 0}, sums.arrays());
                ASSERT_EQ(sums.numbers[1][1], 1 - above) << contrast;
            }
        }
    });
}

Bytes sparse_cells(std::size_t width, support::Random& random) {
    const double density = random.between(0, 10) / 10.0;
    Bytes cells(width);
    for (auto& cell : cells) {
        cell = random.chance(density) ? static_cast<std::uint8_t>(random.between(0, 255)) : 0;
    }
    return cells;
}

TEST(BlockFill, RowsAgreeOnEveryWidth) {
    support::on_every_target([] {
        support::Random random(5);
        for (std::size_t i = 0; i < 3 * kLongest; ++i) {
            const std::size_t width = i % kLongest;
            const Bytes above = sparse_cells(width, random);
            const Bytes row = sparse_cells(width, random);
            const Bytes below = sparse_cells(width, random);
            support::GuardedBuffer out(width);
            support::GuardedBuffer was_empty(width);
            Bytes expected(width);
            Bytes expected_empty(width);
            simd::widen_into_empty(above.data(), row.data(), below.data(), width, out.data(),
                                   was_empty.data());
            simd::plain::widen_into_empty(above.data(), row.data(), below.data(), width,
                                          expected.data(), expected_empty.data());
            ASSERT_EQ(out.contents(), expected) << width;
            ASSERT_EQ(was_empty.contents(), expected_empty) << width;

            simd::pull_forward(above.data(), was_empty.data(), width, out.data());
            simd::plain::pull_forward(above.data(), expected_empty.data(), 0, width,
                                      expected.data());
            ASSERT_EQ(out.contents(), expected) << width;
            simd::pull_backward(below.data(), was_empty.data(), width, out.data());
            simd::plain::pull_backward(below.data(), expected_empty.data(), 0, width, width,
                                       expected.data());
            ASSERT_EQ(out.contents(), expected) << width;
            ASSERT_TRUE(out.guards_intact() && was_empty.guards_intact()) << width;
        }
    });
}

}  // namespace

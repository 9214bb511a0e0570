#include "simd/blocks/plain/edge_block_sums.h"

#include "support/kernel_frame.h"

namespace simd {

// Flat, noisy and stepped rows, so that limits are met, missed and hit exactly.
TEST(EdgeBlockSums, OfEveryWidth) {
    on_every_width(1, [](std::size_t width, Random& random) {
        std::vector<Row> rows;
        BlockRows block{{}, width, random.chance(0.2) ? 1U : 0U, random.chance(0.2) ? 3U : 4U};
        for (std::size_t k = 0; k < 6; ++k) {
            const int step = random.chance(0.5) ? 1 : random.between(2, 85);
            rows.emplace_back(width, random, 0, random.chance(0.5) ? 255 : random.between(0, 60));
            for (std::size_t x = 0; x < width; ++x)
                rows[k][x] = static_cast<std::uint8_t>(rows[k][x] / step * step);
        }
        for (std::size_t k = 0; k < 6; ++k) block.row[k] = rows[k];
        const int gradient = 3 * (random.chance(0.2) ? 255 : random.between(0, 90)) + 20;
        const EdgeLimits limits{gradient * gradient,
                                static_cast<std::uint8_t>(random.between(0, 120))};
        const auto call = [&](bool fast, const auto& out) {
            TWIN(sum_edge_blocks)(block, limits, {out[0], out[1], out[2], out[3], out[4], out[5]});
        };
        expect_twins<std::int32_t>(6, width / 4, random, call);
    });
}

// Both members of the bound that rules pixels out before their gradient is taken: the steepest
// gradient that a difference of `contrast` can have counts, a limit just above it does not.
TEST(EdgeBlockSums, TheSteepestGradientOfEveryContrast) {
    on_every_target([] {
        for (int contrast = 5; contrast <= 175; ++contrast) {
            Random random(1);
            std::vector<Row> rows(6, Row(12, random, 40, 40));
            BlockRows block{{}, 12};
            for (std::size_t k = 0; k < 6; ++k) block.row[k] = rows[k];
            const auto light = static_cast<std::uint8_t>(40 + contrast);
            rows[2][6] = rows[3][6] = rows[1][6] = rows[3][5] = light;
            const int most = 20 * contrast * contrast;  // at row 2, column 5
            for (const int above : {0, 1}) {
                std::int32_t sums[6][3];
                sum_edge_blocks(block, {most + above, 0},
                                {sums[0], sums[1], sums[2], sums[3], sums[4], sums[5]});
                ASSERT_EQ(sums[1][1], 1 - above) << contrast;
            }
        }
    });
}

}  // namespace simd

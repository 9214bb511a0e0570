// The kernels of the gradient methods and of their maps of blocks against their plain forms.
#include "simd/blocks/block_fill.h"
#include "simd/blocks/block_rows.h"
#include "simd/blocks/block_threshold_bits.h"
#include "simd/blocks/edge_block_sums.h"
#include "simd/pixels/gradient_rows.h"
#include "simd/pixels/midpoint_rows.h"
#include "support/kernel_frame.h"

namespace {

using support::expect_twins;
using support::on_every_width;
using support::Random;
using support::Row;
using support::Words;

constexpr std::size_t kRoom = simd::kRowPad + 64;  // whole words, and the padding behind

// Rows with the room around them that the kernels ask for.
struct Rows {
    std::vector<Row> rows;

    Rows(std::size_t count, std::size_t width, Random& random, int most = 255, double empty = 0) {
        for (std::size_t i = 0; i < count; ++i)
            rows.emplace_back(width, random, 0, most, empty, kRoom);
    }
    Row& operator[](std::size_t i) { return rows[i]; }
    simd::ThreeRows three(std::size_t i = 0) { return {rows[i], rows[i + 1], rows[i + 2]}; }
    simd::FourRows four() { return {{rows[0], rows[1], rows[2], rows[3]}}; }
};

TEST(GradientKernels, Gradients) {
    on_every_width(1, [](std::size_t width, Random& random) {
        Rows grey(3, width, random, random.chance(0.5) ? 255 : 20);
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::gradient_row : simd::plain::gradient_row)(
                grey[0], grey[1], grey[2], width, {out[0], out[1], out[2]});
        };
        expect_twins(3, width, random, call, kRoom);
    });
}

// A step of gx to the right and of gy downwards gives these components: all pairs that there are.
TEST(GradientKernels, MagnitudesAreRoundedRoots) {
    support::on_every_target([] {
        Random random(1);
        Rows grey(3, 128, random), out(3, 128, random);
        for (int i = 0; i < 128 * 128; ++i) {
            const int gx = i / 128;
            const int gy = i % 128;
            for (int x = 0; x < 128; ++x) {
                grey[0][x] = grey[1][x] = static_cast<std::uint8_t>(x == 0 ? 0 : gx);
                grey[2][x] = static_cast<std::uint8_t>(grey[0][x] + gy);
            }
            simd::gradient_row(grey[0], grey[1], grey[2], 128, {out[0], out[1], out[2]});
            const int magnitude = out[0][1];
            const int square = gx * gx + gy * gy;
            ASSERT_EQ(out[1][1] & 0x7F, gx);
            ASSERT_EQ(out[2][1], gy);
            // Nearest whole number: its distance to the root is below a half.
            ASSERT_LE(magnitude * magnitude - magnitude, square) << gx << " " << gy;
            ASSERT_LE(square, magnitude * magnitude + magnitude) << gx << " " << gy;
        }
    });
}

TEST(GradientKernels, LocalMaxima) {
    on_every_width(2, [](std::size_t width, Random& random) {
        Rows magnitudes(3, width, random, random.chance(0.5) ? 181 : 4);
        Rows gradient(2, width, random, 127);
        for (std::size_t x = 0; x < width; ++x) {
            if (random.chance(0.5)) gradient[0][x] |= 0x80;
            if (random.chance(0.2)) gradient[1][x] = gradient[0][x] & 0x7F;
        }
        const simd::EdgeThresholds thresholds{static_cast<std::uint8_t>(random.between(0, 60)),
                                              static_cast<std::uint8_t>(random.between(0, 100)),
                                              static_cast<std::uint8_t>(random.between(0, 60))};
        const simd::ThreeRows rows{magnitudes[0], magnitudes[1], magnitudes[2]};
        const simd::GradientRow across{magnitudes[1], gradient[0], gradient[1]};
        const auto call = [&](bool fast, const auto& out) {
            return (fast ? simd::local_maxima_row : simd::plain::local_maxima_row)(
                rows, across, width, thresholds, out[0], out[1]);
        };
        expect_twins<std::uint64_t>(2, (width + 63) / 64, random, call);
    });
}

TEST(GradientKernels, MidpointsAndMarks) {
    on_every_width(2, [](std::size_t width, Random& random) {
        Rows grey(5, width, random, random.chance(0.2) ? 1 : 255);
        Rows midpoints(3, width, random), contrast(1, width, random);
        std::vector<Words> edges;
        const std::size_t words = (width + 63) / 64;
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back(support::random_marks(width, random.chance(0.2) ? 0 : 0.1, random));
            edges[i][0] &= ~std::uint64_t{1};
            edges[i].back() &= ~(std::uint64_t{1} << ((width - 1) % 64));
            const auto call = [&](bool fast, const auto& out) {
                return (fast ? simd::midpoint_row : simd::plain::midpoint_row)(
                    grey.three(i), edges[i].data(), words, out[0], out[1]);
            };
            expect_twins(2, width, random, call, kRoom);
            simd::plain::midpoint_row(grey.three(i), edges[i].data(), words, midpoints[i],
                                      contrast[0]);
        }
        const simd::ThreeBitRows bits{edges[0].data(), edges[1].data(), edges[2].data()};
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::mark_below_midpoints : simd::plain::mark_below_midpoints)(
                midpoints.three(), bits, grey[2], width, out[0]);
        };
        expect_twins<std::uint64_t>(1, words, random, call);
    });
}

TEST(GradientKernels, MeansOfBlocks) {
    on_every_width(1, [](std::size_t width, Random& random) {
        const std::size_t words = (width + 63) / 64;
        Rows midpoints(4, 64 * words, random), contrasts(4, 64 * words, random, 255, 0.8);
        Words any(words);
        for (std::size_t i = 0; i < words; ++i) {
            any[i] = random.chance(0.8) ? 1 : 0;
            for (auto& row : contrasts.rows)
                if (any[i] == 0) std::fill_n(row + 64 * i, 64, std::uint8_t{0});
        }
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::edge_means : simd::plain::edge_means)(midpoints.four(), contrasts.four(),
                                                                any.data(), words, out[0], out[1]);
            (fast ? simd::grey_means : simd::plain::grey_means)(midpoints.four(), words, out[2]);
        };
        expect_twins(3, 16 * words, random, call, kRoom);
    });
}

TEST(GradientKernels, RowsOfBlocks) {
    on_every_width(2, [](std::size_t width, Random& random) {
        Rows map(3, width, random, random.chance(0.5) ? 255 : 9, random.chance(0.5) ? 0.5 : 0.9);
        const std::uint8_t limit = random.byte();
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::fill_empty_row : simd::plain::fill_empty_row)(map.three(), width, out[0]);
            (fast ? simd::average_filled_row : simd::plain::average_filled_row)(map.three(), width,
                                                                                out[1]);
            (fast ? simd::midrange_row : simd::plain::midrange_row)(map.three(), width, limit,
                                                                    out[2]);
        };
        expect_twins(3, width, random, call, kRoom);
    });
}

TEST(GradientKernels, ThresholdBits) {
    on_every_width(1, [](std::size_t width, Random& random) {
        Rows grey(3, width, random), thresholds(1, width, random);
        const std::uint8_t level = random.byte();
        const std::size_t words = (width + 63) / 64;
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::set_below_blocks : simd::plain::set_below_blocks)(grey[1], thresholds[0],
                                                                            words, out[0]);
            (fast ? simd::set_dark_areas : simd::plain::set_dark_areas)(grey.three(), width, level,
                                                                        out[1]);
        };
        expect_twins<std::uint64_t>(2, words, random, call);
        const std::vector<std::uint64_t> marks = support::random_marks(64 * words, 0.4, random);
        expect_twins(1, (width + 7) / 8, random, [&](bool fast, const auto& out) {
            auto bits = marks;
            (fast ? simd::set_pixels : simd::plain::set_pixels)(bits.data(), width, out[0]);
        });
    });
}

// Flat, noisy and stepped rows, so that limits are met, missed and hit exactly; they end where
// their memory ends.
TEST(EdgeBlockSums, OfEveryWidth) {
    on_every_width(1, [](std::size_t width, Random& random) {
        std::vector<Row> rows;
        simd::BlockRows block{
            {}, width, random.chance(0.2) ? 1U : 0U, random.chance(0.2) ? 3U : 4U};
        for (std::size_t k = 0; k < 6; ++k) {
            const int step = random.chance(0.5) ? 1 : random.between(2, 85);
            rows.emplace_back(width, random, 0, random.chance(0.5) ? 255 : random.between(0, 60));
            for (std::size_t x = 0; x < width; ++x)
                rows[k][x] = static_cast<std::uint8_t>(rows[k][x] / step * step);
        }
        for (std::size_t k = 0; k < 6; ++k) block.row[k] = rows[k];
        const int gradient = 3 * (random.chance(0.2) ? 255 : random.between(0, 90)) + 20;
        const simd::EdgeLimits limits{gradient * gradient,
                                      static_cast<std::uint8_t>(random.between(0, 120))};
        const auto call = [&](bool fast, const auto& out) {
            (fast ? simd::sum_edge_blocks : simd::plain::sum_edge_blocks)(
                block, limits, {out[0], out[1], out[2], out[3], out[4], out[5]});
        };
        expect_twins<std::int32_t>(6, width / 4, random, call);
    });
}

// Both members of the bound that rules pixels out before their gradient is taken: the steepest
// gradient that a difference of `contrast` can have counts, a limit just above it does not.
TEST(EdgeBlockSums, TheSteepestGradientOfEveryContrast) {
    support::on_every_target([] {
        for (int contrast = 5; contrast <= 175; ++contrast) {
            Random random(1);
            std::vector<Row> rows(6, Row(12, random, 40, 40));
            simd::BlockRows block{{}, 12};
            for (std::size_t k = 0; k < 6; ++k) block.row[k] = rows[k];
            const auto light = static_cast<std::uint8_t>(40 + contrast);
            rows[2][6] = rows[3][6] = rows[1][6] = rows[3][5] = light;
            const int most = 20 * contrast * contrast;  // at row 2, column 5
            for (const int above : {0, 1}) {
                std::int32_t sums[6][3];
                simd::sum_edge_blocks(block, {most + above, 0},
                                      {sums[0], sums[1], sums[2], sums[3], sums[4], sums[5]});
                ASSERT_EQ(sums[1][1], 1 - above) << contrast;
            }
        }
    });
}

TEST(BlockFill, DilatesAndPropagates) {
    on_every_width(0, [](std::size_t width, Random& random) {
        for (int round = 0; round < 3; ++round) {
            std::vector<Row> rows;
            for (int i = 0; i < 3; ++i)
                rows.emplace_back(width, random, 0, 255, random.between(0, 10) / 10.0);
            std::uint8_t* const above = rows[0];
            std::uint8_t* const below = rows[2];
            const bool last_row = round == 2;
            const auto call = [&](bool fast, const auto& out) {
                std::uint8_t* const beneath = last_row ? static_cast<std::uint8_t*>(out[2]) : below;
                (fast ? simd::dilate_into_empty : simd::plain::dilate_into_empty)(
                    above, rows[1], below, width, out[0]);
                if (fast) {
                    simd::propagate_forward(rows[1], above, width, out[1]);
                } else {
                    simd::plain::propagate_forward(rows[1], above, 0, width, out[1]);
                }
                std::copy_n(out[1], width, out[2]);
                if (fast) {
                    simd::propagate_backward(rows[1], beneath, width, out[2]);
                } else {
                    simd::plain::propagate_backward(rows[1], beneath, 0, width, width, out[2]);
                }
            };
            expect_twins(3, width, random, call);
        }
    });
}

}  // namespace

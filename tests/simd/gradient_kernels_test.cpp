#include <gtest/gtest.h>

#include <vector>

#include "simd/block_rows.h"
#include "simd/block_threshold_bits.h"
#include "simd/gradient_rows.h"
#include "simd/light_counts.h"
#include "simd/midpoint_rows.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Bits = std::vector<std::uint64_t>;

constexpr std::size_t kLongest = 3 * 64 + 7;

// Rows with the room around them that the kernels ask for, filled with noise.
class Rows {
  public:
    Rows(std::size_t rows, support::Random& random, int most = 255, double empty = 0) {
        for (std::size_t i = 0; i < rows; ++i) {
            Bytes row(kLongest + 64 + 2 * simd::kRowPad);
            for (auto& value : row) {
                const int tone = random.between(0, most);
                value = static_cast<std::uint8_t>(random.chance(empty) ? 0 : tone);
            }
            rows_.push_back(row);
        }
    }

    std::uint8_t* operator[](std::size_t i) { return rows_[i].data() + simd::kRowPad; }
    Bytes part(std::size_t i, std::size_t width) {
        return {(*this)[i], (*this)[i] + static_cast<std::ptrdiff_t>(width)};
    }
    simd::ThreeRows three() { return {(*this)[0], (*this)[1], (*this)[2]}; }
    simd::FourRows four() { return {{(*this)[0], (*this)[1], (*this)[2], (*this)[3]}}; }

  private:
    std::vector<Bytes> rows_;
};

// Calls check(width, random) for every width on every instruction set.
template <class Check>
void on_every_width(std::size_t least, const Check& check) {
    support::on_every_target([&] {
        support::Random random(11);
        for (std::size_t width = least; width <= kLongest; ++width) check(width, random);
    });
}

simd::GradientRow gradient_in(Rows& rows, std::size_t first) {
    return {rows[first], rows[first + 1], rows[first + 2]};
}

TEST(GradientKernels, GradientsAgreeOnEveryWidth) {
    on_every_width(1, [](std::size_t width, support::Random& random) {
        Rows grey(3, random, random.chance(0.5) ? 255 : 20);
        Rows fast(3, random);
        Rows slow(3, random);
        simd::gradient_row(grey[0], grey[1], grey[2], width, gradient_in(fast, 0));
        simd::plain::gradient_row(grey[0], grey[1], grey[2], width, gradient_in(slow, 0));
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(fast.part(i, width), slow.part(i, width)) << width;
        }
    });
}

// A step of gx to the right and of gy downwards gives these components: all pairs that there are.
TEST(GradientKernels, MagnitudesAreRoundedRoots) {
    support::on_every_target([] {
        support::Random random(1);
        for (int gx = 0; gx <= 127; ++gx) {
            Rows grey(3, random, 0);
            Rows out(3, random);
            for (int gy = 0; gy <= 127; ++gy) {
                for (std::size_t x = 0; x < 128; ++x) {
                    grey[0][x] = static_cast<std::uint8_t>(x == 0 ? 0 : gx);
                    grey[1][x] = grey[0][x];
                    grey[2][x] = static_cast<std::uint8_t>(grey[0][x] + gy);
                }
                simd::gradient_row(grey[0], grey[1], grey[2], 128, gradient_in(out, 0));
                const int magnitude = out[0][1];
                const int square = gx * gx + gy * gy;
                ASSERT_EQ(out[1][1] & 0x7F, gx);
                ASSERT_EQ(out[2][1], gy);
                // Nearest whole number: its distance to the root is below a half.
                ASSERT_LE(magnitude * magnitude - magnitude, square) << gx << " " << gy;
                ASSERT_LE(square, magnitude * magnitude + magnitude) << gx << " " << gy;
            }
        }
    });
}

TEST(GradientKernels, LocalMaximaAgreeOnEveryWidth) {
    on_every_width(2, [](std::size_t width, support::Random& random) {
        Rows magnitudes(3, random, random.chance(0.5) ? 181 : 4);
        Rows gradient(2, random, 127);
        for (std::size_t x = 0; x < width; ++x) {
            if (random.chance(0.5)) gradient[0][x] |= 0x80;
            if (random.chance(0.2)) gradient[1][x] = gradient[0][x] & 0x7F;
        }
        const simd::EdgeThresholds thresholds{static_cast<std::uint8_t>(random.between(0, 60)),
                                              static_cast<std::uint8_t>(random.between(0, 100)),
                                              static_cast<std::uint8_t>(random.between(0, 60))};
        const simd::MagnitudeRows rows{magnitudes[0], magnitudes[1], magnitudes[2]};
        const simd::GradientRow across{magnitudes[1], gradient[0], gradient[1]};
        const std::size_t words = (width + 63) / 64;
        Bits fast(2 * words), slow(2 * words);
        const bool found = simd::local_maxima_row(rows, across, width, thresholds, fast.data(),
                                                  fast.data() + words);
        ASSERT_EQ(found, simd::plain::local_maxima_row(rows, across, width, thresholds, slow.data(),
                                                       slow.data() + words));
        ASSERT_EQ(fast, slow) << width;
    });
}

// Bits of the inner pixels of a row.
Bits random_edges(std::size_t width, support::Random& random) {
    Bits edges((width + 63) / 64);
    if (random.chance(0.2)) return edges;
    for (std::size_t x = 1; x + 1 < width; ++x) {
        if (random.chance(0.1)) edges[x / 64] |= std::uint64_t{1} << (x % 64);
    }
    return edges;
}

TEST(GradientKernels, MidpointsAndMarksAgreeOnEveryWidth) {
    on_every_width(2, [](std::size_t width, support::Random& random) {
        Rows grey(5, random, random.chance(0.2) ? 1 : 255);
        Rows fast(3, random), slow(3, random), contrast(6, random);
        std::vector<Bits> edges;
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back(random_edges(width, random));
            const simd::ThreeRows around{grey[i], grey[i + 1], grey[i + 2]};
            const std::size_t words = edges[i].size();
            ASSERT_EQ(simd::midpoint_row(around, edges[i].data(), words, fast[i], contrast[i]),
                      simd::plain::midpoint_row(around, edges[i].data(), words, slow[i],
                                                contrast[i + 3]));
            ASSERT_EQ(fast.part(i, width), slow.part(i, width)) << width;
            ASSERT_EQ(contrast.part(i, width), contrast.part(i + 3, width)) << width;
        }
        const simd::ThreeBitRows bits{edges[0].data(), edges[1].data(), edges[2].data()};
        Bits marks(edges[0].size()), expected(edges[0].size());
        simd::mark_row(fast.three(), bits, grey[2], width, marks.data());
        simd::plain::mark_row(fast.three(), bits, grey[2], width, expected.data());
        ASSERT_EQ(marks, expected) << width;
    });
}

TEST(GradientKernels, BlockMeansAgreeOnEveryLength) {
    on_every_width(1, [](std::size_t width, support::Random& random) {
        const std::size_t words = (width + 63) / 64;
        Rows midpoints(4, random), contrasts(4, random, 255, 0.8), fast(3, random), slow(3, random);
        Bits any(words);
        for (std::size_t i = 0; i < words; ++i) {
            any[i] = random.chance(0.8) ? 1 : 0;
            for (std::size_t x = 64 * i; any[i] == 0 && x < 64 * i + 64; ++x) {
                for (std::size_t row = 0; row < 4; ++row) contrasts[row][x] = 0;
            }
        }
        simd::edge_means(midpoints.four(), contrasts.four(), any.data(), words, fast[0], fast[1]);
        simd::plain::edge_means(midpoints.four(), contrasts.four(), any.data(), words, slow[0],
                                slow[1]);
        simd::grey_means(midpoints.four(), words, fast[2]);
        simd::plain::grey_means(midpoints.four(), words, slow[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(fast.part(i, 16 * words), slow.part(i, 16 * words)) << width;
        }
    });
}

TEST(GradientKernels, BlockRowsAgreeOnEveryWidth) {
    on_every_width(2, [](std::size_t width, support::Random& random) {
        Rows map(3, random, random.chance(0.5) ? 255 : 9, random.chance(0.5) ? 0.5 : 0.9);
        Rows fast(3, random), slow(3, random);
        const auto limit = static_cast<std::uint8_t>(random.between(0, 255));
        simd::spread_row(map.three(), width, fast[0]);
        simd::plain::spread_row(map.three(), width, slow[0]);
        simd::clean_row(map.three(), width, fast[1]);
        simd::plain::clean_row(map.three(), width, slow[1]);
        simd::middle_row(map.three(), width, limit, fast[2]);
        simd::plain::middle_row(map.three(), width, limit, slow[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(fast.part(i, width), slow.part(i, width)) << width << ", kernel " << i;
        }
    });
}

TEST(GradientKernels, ThresholdBitsAgreeOnEveryWidth) {
    on_every_width(1, [](std::size_t width, support::Random& random) {
        Rows grey(3, random), thresholds(1, random);
        const auto level = static_cast<std::uint8_t>(random.between(0, 255));
        const std::size_t words = (width + 63) / 64;
        Bits fast(words), slow(words);
        fast[0] = slow[0] = random.byte();
        simd::set_below_blocks(grey[1], thresholds[0], words, fast.data());
        simd::plain::set_below_blocks(grey[1], thresholds[0], words, slow.data());
        ASSERT_EQ(fast, slow) << width;
        simd::set_dark_areas(grey.three(), width, level, fast.data());
        simd::plain::set_dark_areas(grey.three(), width, level, slow.data());
        ASSERT_EQ(fast, slow) << width;
    });
}

TEST(GradientKernels, LightCountsAgreeOnEveryWidth) {
    support::on_every_target([&] {
        for (std::int32_t width = 0; width <= static_cast<std::int32_t>(kLongest); ++width) {
            const std::int32_t height = width % 64 == 1 ? 300 : 7;
            const std::ptrdiff_t stride = width + 3;
            const auto size = static_cast<std::size_t>(height * stride);
            const Bytes bytes = support::random_bytes(size, static_cast<std::uint32_t>(width));
            const common::GreyView grey{bytes.data(), height, width, stride};
            for (const int first : {1, 100, 248}) {
                simd::LightCounts fast, slow;
                fast.at_least[3] = slow.at_least[3] = 9;  // counts are added to
                simd::count_light(grey, static_cast<std::uint8_t>(first), fast);
                simd::plain::count_light(grey, static_cast<std::uint8_t>(first), slow);
                ASSERT_EQ(fast.at_least, slow.at_least) << width << " from " << first;
                ASSERT_EQ(fast.least, slow.least) << width;
            }
        }
    });
}

}  // namespace

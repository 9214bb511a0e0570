// The kernels on runs and bits against their plain forms, on every instruction set.
#include <gtest/gtest.h>

#include <vector>

#include "simd/count_bits.h"
#include "simd/run_edges.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

TEST(CountBits, MatchesThePlainForm) {
    support::on_every_target([] {
        const auto bytes = support::random_bytes(300, 1);
        for (std::size_t start = 0; start < 9; ++start) {
            for (std::size_t size = 0; start + size <= bytes.size(); ++size) {
                ASSERT_EQ(simd::count_bits(bytes.data() + start, size),
                          simd::plain::count_bits(bytes.data() + start, size));
            }
        }
    });
}

TEST(RunEdges, RowsAndCountsMatchThePlainForm) {
    support::on_every_target([] {
        for (const int width : {1, 8, 63, 64, 65, 128, 200, 256}) {
            for (const bool invert : {false, true}) {
                const std::ptrdiff_t stride = (width + 7) / 8 + 1;
                const int height = 7;
                const auto page = support::random_bitonal(height, static_cast<std::size_t>(stride),
                                                          width % 3 == 0 ? 0.5 : 0.1, 9);
                std::vector<std::int32_t> expected;
                std::vector<std::size_t> expected_offsets{0};
                for (int y = 0; y < height; ++y) {
                    std::vector<std::int32_t> row(static_cast<std::size_t>(width) + 1);
                    row.resize(static_cast<std::size_t>(simd::plain::extract_runs(
                        page.data() + y * stride, 0, width, invert, row.data())));
                    expected.insert(expected.end(), row.begin(), row.end());
                    expected_offsets.push_back(expected.size() / 2);
                }
                std::vector<std::size_t> offsets(static_cast<std::size_t>(height) + 1);
                simd::count_runs(page.data(), stride, height, width, invert, offsets.data());
                ASSERT_EQ(offsets, expected_offsets);
                std::vector<std::int32_t> values(expected.size() + simd::kRunSlack);
                simd::extract_rows(page.data(), stride, height, width, invert, values.data());
                values.resize(expected.size());
                ASSERT_EQ(values, expected) << "width " << width;
            }
        }
    });
}

}  // namespace

#include "simd/bits/plain/cell_counts.h"

#include <cstring>

#include "support/kernel_frame.h"

namespace simd {

// Full and empty bytes among random ones.
TEST(CellCounts, BandsOfEveryLength) {
    on_every_width(1, 3 * kCountBlock + 7, [](std::size_t bytes, Random& random) {
        if (bytes > 20 && bytes % 3 != 0) return;
        std::vector<Row> rows;
        CountBand band{};
        for (auto& row : band.rows) {
            rows.emplace_back(bytes, random);
            for (std::size_t x = 0; x < bytes; x += 7) rows.back()[x] = x % 2 == 0 ? 0xFF : 0;
            row = rows.back();
        }
        band.bytes = bytes;
        band.pitch = kBandPairs + 3;
        band.columns = (bytes + 3) / 4 * 2;
        band.first = bytes % 2 == 0;
        std::uint16_t above[4 * kCountBlock];
        band.above = above;
        const auto call = [&](bool fast, const auto& out) {
            std::fill_n(above, std::size(above), std::uint16_t{9});
            band.tall_cells = out[0];
            band.row_edges = out[1];
            TWIN(count_band)(band);
            std::memcpy(out[2], above, 2 * band.columns);
            std::fill_n(out[0] + 4 * bytes, 4 * kCountBlock, std::uint8_t{0});
        };
        expect_twins(3, band.columns * band.pitch + 4 * kCountBlock, random, call);
    });
}

TEST(CellCounts, DifferencesOfNeighbours) {
    on_every_width(0, [](std::size_t count, Random& random) {
        Row values(count + 1, random);
        expect_twins(1, count, random, [&](bool fast, const auto& out) {
            TWIN(adjacent_differences)(values + 1, count, out[0]);
        });
    });
}

}  // namespace simd

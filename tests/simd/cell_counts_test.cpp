// The counting kernel against counts taken pixel by pixel.
#include "simd/cell_counts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

constexpr std::size_t kPairs = simd::kBandPairs;

// Sixteen rows in blocks of their exact size, so that a read beyond them is seen.
struct Rows {
    std::vector<std::vector<std::uint8_t>> bytes;

    Rows(std::size_t count, std::uint32_t seed) {
        for (std::uint32_t i = 0; i < simd::kBandRows; ++i)
            bytes.push_back(support::random_bytes(count, seed * 100 + i));
        // Full and empty cells among the random ones.
        for (std::size_t i = 0; i < count; i += 7)
            for (auto& row : bytes) row[i] = i % 2 == 0 ? 0xFF : 0x00;
    }
    int ink(std::size_t row, std::size_t x) const {
        const std::size_t byte = x / 8;
        return byte < bytes[row].size() ? (bytes[row][byte] >> (7 - x % 8)) & 1 : 0;
    }
    int ink_of(std::size_t row, std::size_t rows, std::size_t x, std::size_t columns) const {
        int sum = 0;
        for (std::size_t y = row; y < row + rows; ++y)
            for (std::size_t u = x; u < x + columns; ++u) sum += ink(y, u);
        return sum;
    }
};

void check_band(const Rows& rows, std::size_t bytes, bool first) {
    const std::size_t columns = (bytes + 3) / 4 * 2;
    const std::size_t room =
        (bytes + simd::kCountBlock - 1) / simd::kCountBlock * simd::kCountBlock;
    constexpr std::size_t kPitch = kPairs + 3;
    std::vector<std::uint8_t> edges(columns * kPitch, 99);
    std::vector<std::uint16_t> above(room / 2, first ? 555 : 9);
    std::vector<std::uint8_t> tall(4 * room, 0);

    simd::CountBand band{};
    for (std::size_t i = 0; i < simd::kBandRows; ++i) band.rows[i] = rows.bytes[i].data();
    band.bytes = bytes;
    band.row_edges = edges.data();
    band.pitch = kPitch;
    band.columns = columns;
    band.above = above.data();
    band.first = first;
    band.tall_cells = tall.data();
    simd::count_band(band);

    for (std::size_t column = 0; column < columns; ++column) {
        int before = first ? rows.ink_of(0, 2, column * 16, 16) : 9;
        for (std::size_t pair = 0; pair < kPitch; ++pair) {
            const int edge = edges[column * kPitch + pair];
            if (pair >= kPairs) {
                EXPECT_EQ(edge, 99);
                continue;
            }
            const int count = rows.ink_of(2 * pair, 2, column * 16, 16);
            EXPECT_EQ(edge, std::abs(count - before));
            before = count;
        }
        EXPECT_EQ(above[column], before);
    }
    for (std::size_t cell = 0; cell < tall.size(); ++cell)
        EXPECT_EQ(tall[cell], rows.ink_of(0, 16, cell * 2, 2));
}

TEST(CellCounts, EqualPlainCountsAtEveryLength) {
    for (std::size_t bytes = 1; bytes <= 3 * simd::kCountBlock + 7; ++bytes) {
        SCOPED_TRACE(bytes);
        const Rows rows(bytes, static_cast<std::uint32_t>(bytes));
        if (bytes % 13 == 0 || bytes < 20)
            support::on_every_target([&] { check_band(rows, bytes, bytes % 2 == 0); });
        else
            check_band(rows, bytes, bytes % 2 == 0);
    }
}

TEST(CellCounts, DifferencesOfNeighbours) {
    const std::vector<std::uint8_t> values = support::random_bytes(3 * simd::kCountBlock + 8, 5);
    for (std::size_t count = 0; count < 3 * simd::kCountBlock + 7; ++count)
        support::on_every_target([&] {
            std::vector<std::uint8_t> out(count + 1, 99);
            simd::adjacent_differences(values.data() + 1, count, out.data());
            EXPECT_EQ(out[count], 99);
            for (std::size_t i = 0; i < count; ++i)
                EXPECT_EQ(out[i], std::abs(values[i + 1] - values[i]));
        });
}

}  // namespace

// The kernels of the skew search against plain loops.
#include <cstdlib>
#include <limits>

#include "simd/bits/cell_counts.h"
#include "simd/blocks/sheared_sums.h"
#include "support/kernel_frame.h"

namespace {

using support::Bytes;
using support::on_every_width;
using support::Random;

// Sixteen rows in blocks of their exact size, with full and empty bytes among random ones.
struct Band {
    std::vector<Bytes> rows;

    Band(std::size_t bytes, Random& random) {
        for (std::size_t i = 0; i < simd::kBandRows; ++i) {
            rows.push_back(support::random_bytes(bytes, random.byte()));
            for (std::size_t x = 0; x < bytes; x += 7) rows[i][x] = x % 2 == 0 ? 0xFF : 0x00;
        }
    }
    int ink_of(std::size_t row, std::size_t height, std::size_t x, std::size_t columns) const {
        int sum = 0;
        for (std::size_t y = row; y < row + height; ++y)
            for (std::size_t u = x; u < x + columns && u / 8 < rows[y].size(); ++u)
                sum += rows[y][u / 8] >> (7 - u % 8) & 1;
        return sum;
    }
};

void check_band(const Band& band, std::size_t bytes, bool first) {
    constexpr std::size_t kPitch = simd::kBandPairs + 3;
    const std::size_t columns = (bytes + 3) / 4 * 2;
    const std::size_t room =
        (bytes + simd::kCountBlock - 1) / simd::kCountBlock * simd::kCountBlock;
    Bytes edges(columns * kPitch, 99), tall(4 * room, 0);
    std::vector<std::uint16_t> above(room / 2, first ? 555 : 9);
    simd::CountBand out{{}, bytes, edges.data(), kPitch, columns, above.data(), first, tall.data()};
    for (std::size_t i = 0; i < simd::kBandRows; ++i) out.rows[i] = band.rows[i].data();
    simd::count_band(out);

    for (std::size_t column = 0; column < columns; ++column) {
        int before = first ? band.ink_of(0, 2, column * 16, 16) : 9;
        for (std::size_t pair = 0; pair < kPitch; ++pair) {
            const int count =
                pair < simd::kBandPairs ? band.ink_of(2 * pair, 2, column * 16, 16) : before;
            const int edge = pair < simd::kBandPairs ? std::abs(count - before) : 99;
            ASSERT_EQ(edges[column * kPitch + pair], edge);
            before = count;
        }
        ASSERT_EQ(above[column], before);
    }
    for (std::size_t cell = 0; cell < tall.size(); ++cell)
        ASSERT_EQ(tall[cell], band.ink_of(0, 16, cell * 2, 2));
}

TEST(CellCounts, OfEveryLength) {
    on_every_width(1, 3 * simd::kCountBlock + 7, [](std::size_t bytes, Random& random) {
        if (bytes > 20 && bytes % 3 != 0) return;
        check_band(Band(bytes, random), bytes, bytes % 2 == 0);
    });
}

TEST(CellCounts, DifferencesOfNeighbours) {
    on_every_width(0, [](std::size_t count, Random& random) {
        support::Row values(count + 1, random);
        support::expect_twins(1, count, random, [&](bool fast, const auto& out) {
            if (fast) return simd::adjacent_differences(values + 1, count, out[0]);
            for (std::size_t i = 0; i < count; ++i)
                out[0][i] = static_cast<std::uint8_t>(std::abs(values[i + 1] - values[i]));
        });
    });
}

template <class Cell>
void check_sheared_sums(std::size_t line_count, std::size_t length, std::uint32_t largest) {
    constexpr std::size_t kMargin = simd::kLineMargin<Cell>;
    const std::size_t pitch = length + kMargin;
    std::vector<Cell> block(kMargin + line_count * pitch);
    Cell* const cells = block.data() + kMargin;
    const simd::CellLines<Cell> image{cells, line_count, length, pitch, largest};
    Random random(1);
    const int most = static_cast<int>(largest);
    for (std::size_t i = 0; i < line_count * pitch; ++i) {
        if (i % pitch >= length) continue;
        cells[i] = static_cast<Cell>(random.chance(0.3) ? most : random.between(0, most));
    }
    const auto last = static_cast<std::int64_t>(line_count) - 1;
    for (const int slope : {0, 1, -1, 4, -7, 63, 64, -64, 65, 96, -96}) {
        SCOPED_TRACE(testing::Message() << line_count << " x " << length << " slope " << slope);
        const std::int64_t lowest = std::min<std::int64_t>(last * slope / 64, 0);
        std::vector<double> expected(simd::sheared_length(line_count, length, slope));
        for (std::size_t line = 0; line < line_count; ++line) {
            const std::int64_t shift = static_cast<std::int64_t>(line) * slope / 64 - lowest;
            for (std::size_t i = 0; i < length; ++i)
                expected[i + static_cast<std::size_t>(shift)] += cells[line * pitch + i];
        }
        support::on_every_target([&] {
            std::vector<double> sums(expected.size() + kMargin, -1.0);
            simd::sum_sheared_lines(image, slope, sums.data());
            sums.resize(expected.size());
            EXPECT_EQ(sums, expected);
        });
    }
}

TEST(ShearedSums, EqualPlainSums) {
    const struct {
        std::size_t lines, length;
        std::uint32_t largest;
    } shapes[] = {{1, 1, 1},     {1, 8, 128},     {2, 16, 32},     {78, 129, 128},
                  {40, 7, 32},   {300, 3, 32},    {156, 400, 32},  {2100, 40, 32},
                  {3, 513, 255}, {33, 131, 8160}, {70, 65, 32640}, {3, 95, 65535}};
    for (const auto& [lines, length, largest] : shapes) {
        if (largest < 256) check_sheared_sums<std::uint8_t>(lines, length, largest);
        check_sheared_sums<std::uint16_t>(lines, length, largest);
    }
}

TEST(ShearedSums, MoreThan32BitsHold) {
    // Every line is the same block of the largest cells: the pitch may be 0 to read it again.
    constexpr std::size_t kLines = 100'000;
    constexpr std::size_t kMargin = simd::kLineMargin<std::uint16_t>;
    std::vector<std::uint16_t> block(2 * kMargin + 3, 0);
    std::fill_n(block.begin() + kMargin, 3, std::uint16_t{65535});
    const simd::CellLines<std::uint16_t> image = {block.data() + kMargin, kLines, 3, 0, 65535};
    support::on_every_target([&] {
        std::vector<double> sums(3 + kMargin);
        simd::sum_sheared_lines(image, 0, sums.data());
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(sums[i], 65535.0 * kLines);
    });
}

TEST(ShearedSums, SquaresOfEveryLength) {
    on_every_width(0, 60, [](std::size_t count, Random& random) {
        std::vector<double> values(count);
        double expected = 0.0;
        for (double& value : values) {
            value = random.between(0, 1'000'000);
            expected += value * value;
        }
        ASSERT_EQ(simd::sum_of_squares(values.data(), count), expected);
    });
}

template <class Cell>
void check_2x2(std::size_t count, Random& random) {
    const int most = std::numeric_limits<Cell>::max() / 4;
    std::vector<Cell> upper(2 * count), lower(2 * count);
    for (auto* row : {&upper, &lower})
        for (Cell& cell : *row) cell = static_cast<Cell>(random.between(0, most));
    support::expect_twins<Cell>(1, count, random, [&](bool fast, const auto& out) {
        if (fast) return simd::add_cells_2x2(upper.data(), lower.data(), count, out[0]);
        for (std::size_t i = 0; i < count; ++i)
            out[0][i] = static_cast<Cell>(upper[2 * i] + upper[2 * i + 1] + lower[2 * i] +
                                          lower[2 * i + 1]);
    });
}

TEST(ShearedSums, CellsAddTwoByTwo) {
    on_every_width(0, [](std::size_t count, Random& random) {
        check_2x2<std::uint8_t>(count, random);
        check_2x2<std::uint16_t>(count, random);
    });
}

}  // namespace

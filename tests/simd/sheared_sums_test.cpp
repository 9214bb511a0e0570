#include "simd/blocks/plain/sheared_sums.h"

#include <limits>

#include "support/kernel_frame.h"

namespace simd {

template <class Cell>
void expect_sheared_sums(std::size_t lines, std::size_t length, std::uint32_t largest) {
    constexpr std::size_t kMargin = kLineMargin<Cell>;
    const std::size_t pitch = length + kMargin;
    std::vector<Cell> cells(kMargin + lines * pitch);
    const CellLines<Cell> image{cells.data() + kMargin, lines, length, pitch, largest};
    Random random(1);
    const int most = static_cast<int>(largest);
    for (std::size_t i = 0; i < lines * pitch; ++i) {
        if (i % pitch >= length) continue;
        cells[kMargin + i] = static_cast<Cell>(random.chance(0.3) ? most : random.between(0, most));
    }
    for (const int slope : {0, 1, -1, 4, -7, 63, 64, -64, 65, 96, -96}) {
        SCOPED_TRACE(testing::Message() << lines << " x " << length << " slope " << slope);
        std::vector<double> expected(sheared_length(lines, length, slope));
        plain::sum_sheared_lines(image, slope, expected.data());
        on_every_target([&] {
            std::vector<double> sums(expected.size() + kMargin, -1.0);
            sum_sheared_lines(image, slope, sums.data());
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
        if (largest < 256) expect_sheared_sums<std::uint8_t>(lines, length, largest);
        expect_sheared_sums<std::uint16_t>(lines, length, largest);
    }
}

// Every line is the same block of the largest cells: the pitch may be 0 to read it again.
TEST(ShearedSums, MoreThan32BitsCanCount) {
    constexpr std::size_t kLines = 100'000;
    constexpr std::size_t kMargin = kLineMargin<std::uint16_t>;
    std::vector<std::uint16_t> block(2 * kMargin + 3, 0);
    std::fill_n(block.begin() + kMargin, 3, std::uint16_t{65535});
    const CellLines<std::uint16_t> image = {block.data() + kMargin, kLines, 3, 0, 65535};
    on_every_target([&] {
        std::vector<double> sums(3 + kMargin);
        sum_sheared_lines(image, 0, sums.data());
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(sums[i], 65535.0 * kLines);
    });
}

TEST(ShearedSums, SquaresOfEveryLength) {
    on_every_width(0, 60, [](std::size_t count, Random& random) {
        std::vector<double> values(count);
        for (double& value : values) value = random.between(0, 1'000'000);
        ASSERT_EQ(sum_of_squares(values.data(), count),
                  plain::sum_of_squares(values.data(), count));
    });
}

template <class Cell>
void expect_2x2(std::size_t count, Random& random) {
    std::vector<Cell> cells(4 * count);
    for (Cell& cell : cells)
        cell = static_cast<Cell>(random.between(0, std::numeric_limits<Cell>::max() / 4));
    const Cell* const lower = cells.data() + 2 * count;
    expect_twins<Cell>(1, count, random, [&](bool fast, const auto& out) {
        if (fast) return add_cells_2x2(cells.data(), lower, count, out[0]);
        plain::add_cells_2x2(cells.data(), lower, count, out[0]);
    });
}

TEST(ShearedSums, CellsAddTwoByTwo) {
    on_every_width(0, [](std::size_t count, Random& random) {
        expect_2x2<std::uint8_t>(count, random);
        expect_2x2<std::uint16_t>(count, random);
    });
}

}  // namespace simd

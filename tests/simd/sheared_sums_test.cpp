// The kernels of the skew search against plain loops.
#include "simd/sheared_sums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

// Lines of cells with the margins that the kernels ask for.
template <class Cell>
struct Lines {
    std::vector<Cell> block;
    simd::CellLines<Cell> image;

    Lines(std::size_t lines, std::size_t length, std::uint32_t largest) {
        constexpr std::size_t kMargin = simd::kLineMargin<Cell>;
        const std::size_t pitch = length + kMargin;
        block.assign(kMargin + lines * pitch, 0);
        image = {block.data() + kMargin, lines, length, pitch, largest};
        support::Random random(1);
        const int most = static_cast<int>(largest);
        for (std::size_t line = 0; line < lines; ++line)
            for (std::size_t i = 0; i < length; ++i)
                block[kMargin + line * pitch + i] =
                    static_cast<Cell>(random.chance(0.3) ? most : random.between(0, most));
    }
};

template <class Cell>
std::vector<double> plain_sums(const simd::CellLines<Cell>& image, int slope) {
    const auto last = static_cast<std::int64_t>(image.lines) - 1;
    const std::int64_t lowest = std::min<std::int64_t>(last * slope / 64, 0);
    std::vector<double> sums(simd::sheared_length(image.lines, image.length, slope));
    for (std::size_t line = 0; line < image.lines; ++line)
        for (std::size_t i = 0; i < image.length; ++i) {
            const std::int64_t shift = static_cast<std::int64_t>(line) * slope / 64;
            sums[static_cast<std::size_t>(static_cast<std::int64_t>(i) + shift - lowest)] +=
                image.cells[line * image.pitch + i];
        }
    return sums;
}

template <class Cell>
void expect_plain_sums(std::size_t line_count, std::size_t length, std::uint32_t largest) {
    const Lines<Cell> lines(line_count, length, largest);
    for (const int slope : {0, 1, -1, 4, -7, 63, 64, -64, 65, 96, -96}) {
        SCOPED_TRACE(testing::Message() << line_count << " x " << length << " slope " << slope);
        const std::vector<double> want = plain_sums(lines.image, slope);
        support::on_every_target([&] {
            std::vector<double> sums(want.size() + simd::kLineMargin<Cell>, -1.0);
            simd::sum_sheared_lines(lines.image, slope, sums.data());
            sums.resize(want.size());
            EXPECT_EQ(sums, want);
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
    for (const auto& shape : shapes) {
        if (shape.largest < 256)
            expect_plain_sums<std::uint8_t>(shape.lines, shape.length, shape.largest);
        expect_plain_sums<std::uint16_t>(shape.lines, shape.length, shape.largest);
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
    support::Random random(2);
    std::vector<double> values(60);
    for (double& value : values) value = random.between(0, 1'000'000);
    double want = 0.0;
    for (std::size_t count = 0; count <= values.size(); ++count) {
        support::on_every_target(
            [&] { EXPECT_EQ(simd::sum_of_squares(values.data(), count), want); });
        if (count < values.size()) want += values[count] * values[count];
    }
}

template <class Cell>
void expect_plain_2x2() {
    support::Random random(3);
    const int most = std::numeric_limits<Cell>::max() / 4;
    std::vector<Cell> upper(2 * 210), lower(2 * 210);
    for (std::size_t i = 0; i < upper.size(); ++i) {
        upper[i] = static_cast<Cell>(random.between(0, most));
        lower[i] = static_cast<Cell>(random.between(0, most));
    }
    for (std::size_t count = 0; count <= 200; ++count)
        support::on_every_target([&] {
            std::vector<Cell> out(count + 1, 7);
            simd::add_cells_2x2(upper.data(), lower.data(), count, out.data());
            EXPECT_EQ(out[count], 7);
            for (std::size_t i = 0; i < count; ++i)
                EXPECT_EQ(out[i],
                          upper[2 * i] + upper[2 * i + 1] + lower[2 * i] + lower[2 * i + 1]);
        });
}

TEST(ShearedSums, CellsAddTwoByTwo) {
    expect_plain_2x2<std::uint8_t>();
    expect_plain_2x2<std::uint16_t>();
}

}  // namespace

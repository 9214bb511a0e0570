// The shared skew search against plain sheared projections, for both widths of cells, and the angle
// that its trace prints.
#include "deskew/skew_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "models/skew_model.h"
#include "support/random_page.h"

namespace {

using deskew::Direction;

model::Cells random_cells(int rows, int columns, int largest, bool flat, std::uint32_t seed) {
    support::Random random(seed);
    model::Cells cells(rows, columns);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c) {
            const bool line = (r + c / 5) % 9 == 0 || (c + r / 7) % 11 == 0;
            cells.at(r, c) = flat || line ? largest - random.between(0, largest / 50)
                                          : random.between(0, largest);
        }
    return cells;
}

// The same cells in lines along the direction of the search, in a block of their own.
template <class Cell>
struct Placed {
    std::vector<Cell> block;
    deskew::EdgeLines<Cell> edges;

    Placed(const model::Cells& cells, Direction direction, std::uint32_t largest)
        : edges(shape(cells, direction), shape(cells, direction), largest) {
        block.assign(edges.storage(), Cell{99});
        edges.place(block.data());
        for (int r = 0; r < cells.rows; ++r)
            for (int c = 0; c < cells.columns; ++c) {
                const int line = direction == Direction::kRows ? c : r;
                const int position = direction == Direction::kRows ? r : c;
                edges.line(static_cast<std::size_t>(line))[position] =
                    static_cast<Cell>(cells.at(r, c));
            }
        edges.close_margins();
    }

    static deskew::LineShape shape(const model::Cells& cells, Direction direction) {
        if (direction == Direction::kRows) return {cells.columns, cells.rows};
        return {cells.rows, cells.columns};
    }
};

template <class Cell>
void expect_models_search(const model::Cells& cells, std::uint32_t largest, deskew::Fan fan) {
    for (const Direction direction : {Direction::kRows, Direction::kColumns}) {
        const Placed<Cell> placed(cells, direction, largest);
        const model::Along along =
            direction == Direction::kRows ? model::Along::kRows : model::Along::kColumns;
        std::ostringstream want_trace;
        const model::SearchResult want =
            model::skew_search(cells, along, fan.centre, fan.range, fan.step, &want_trace);
        std::ostringstream got_trace;
        deskew::SkewTrace trace(got_trace);
        const deskew::SearchResult got = deskew::search_skew(placed.edges, direction, fan, &trace);
        EXPECT_EQ(got.best.skew, want.best);
        EXPECT_EQ(got.best.power, want.best_power);
        EXPECT_EQ(got.worst.skew, want.worst);
        EXPECT_EQ(got.worst.power, want.worst_power);
        EXPECT_EQ(got_trace.str(), want_trace.str());
    }
}

TEST(SkewSearch, EqualsTheModel) {
    const struct {
        int rows, columns, largest;
        deskew::Fan fan;
    } cases[] = {{8, 1, 128, {0, 92, 4}},   {1, 8, 128, {0, 92, 4}},   {33, 47, 32, {40, 4, 1}},
                 {47, 33, 32, {-92, 4, 1}}, {70, 20, 255, {0, 92, 4}}, {20, 70, 255, {2, 4, 1}}};
    for (const auto& shape : cases) {
        SCOPED_TRACE(testing::Message() << shape.rows << " x " << shape.columns);
        for (const bool flat : {false, true}) {
            const auto largest = static_cast<std::uint32_t>(shape.largest);
            const model::Cells cells =
                random_cells(shape.rows, shape.columns, shape.largest, flat, 3);
            expect_models_search<std::uint8_t>(cells, largest, shape.fan);
            expect_models_search<std::uint16_t>(cells, largest, shape.fan);
        }
    }
    expect_models_search<std::uint16_t>(random_cells(50, 60, 32640, false, 4), 32640, {0, 92, 4});
}

TEST(SkewSearch, PowersBeyondExactSumsAddInAscendingOrder) {
    // Sums near 1500 * 65535 in each direction: their squares pass 2^53 and round at every step.
    expect_models_search<std::uint16_t>(random_cells(40, 1500, 65535, true, 5), 65535, {1, 2, 1});
    expect_models_search<std::uint16_t>(random_cells(1500, 40, 65535, true, 6), 65535, {-3, 2, 1});
}

TEST(SkewSearch, HalvedImageHoldsSumsOfFour) {
    for (const auto& [rows, columns] : {std::pair{8, 9}, {9, 8}, {2, 2}, {3, 131}, {131, 3}}) {
        const model::Cells cells = random_cells(rows, columns, 63, false, 7);
        const model::Cells want = model::reduce_cells(cells);
        const Placed<std::uint8_t> placed(cells, Direction::kColumns, 63);
        deskew::EdgeLines<std::uint8_t> half = placed.edges.half_shape();
        std::vector<std::uint8_t> block(half.storage(), 99);
        half.place(block.data());
        placed.edges.halve(half);
        ASSERT_EQ(half.lines(), static_cast<std::size_t>(want.rows));
        ASSERT_EQ(half.length(), static_cast<std::size_t>(want.columns));
        std::uint32_t largest = 0;
        for (int r = 0; r < want.rows; ++r)
            for (int c = 0; c < want.columns; ++c) {
                const std::uint8_t sum = half.line(static_cast<std::size_t>(r))[c];
                EXPECT_EQ(sum, want.at(r, c));
                largest = std::max<std::uint32_t>(largest, sum);
            }
        EXPECT_GE(half.largest(), largest);
    }
}

TEST(SkewSearch, ChoiceAndReset) {
    const double nan = std::nan("");
    const struct {
        double rows, columns;
        int skew;
        double confidence;
    } cases[] = {{2.0, 1.9, 7, 2.0},   {2.0, 2.0, -30, 2.0},        {1.2, 2.0, -30, 2.0},
                 {1.4, 1.2, 0, 1.4},   {1.5, 1.2, 7, 1.5},          {nan, 3.0, -30, 3.0},
                 {9.0, nan, -30, nan}, {INFINITY, 5.0, 7, INFINITY}};
    for (const auto& choice : cases) {
        const deskew::SkewEstimate chosen =
            deskew::choose_skew({{7, 100.0}, choice.rows}, {{30, 100.0}, choice.columns}, nullptr);
        EXPECT_EQ(chosen.yskew, choice.skew);
        if (std::isnan(choice.confidence))
            EXPECT_TRUE(std::isnan(chosen.confidence));
        else
            EXPECT_EQ(chosen.confidence, choice.confidence);
    }
}

TEST(SkewSearch, AngleIsNearTheTrueOne) {
    constexpr double kDegree = 3.14159265358979323846 / 180;
    for (int skew = -3000; skew <= 3000; ++skew)
        EXPECT_NEAR(deskew::skew_degrees(skew) * kDegree, std::atan(skew / 512.0), 0.0053) << skew;
}

}  // namespace

// The exported skew estimators against the plain model, and their arguments; the search that they
// share with wider cells than theirs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "deskew/skew_search.h"
#include "models/skew_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "vemoprepro/deskew.h"

namespace {

using deskew::Direction;
using Bytes = std::vector<std::uint8_t>;

using model::estimated_skew;
using model::modelled_skew;
using model::SkewOutputs;
using support::BitonalPage;

void ink(BitonalPage& page, int x, int y) {
    page.fill(x, x + 1, y, y + 1);
}

// Ink everywhere beyond the width, and nowhere else: none of it may count.
BitonalPage white_page(int height, int width, int stride) {
    BitonalPage page{height, width, stride};
    for (int y = 0; y < height; ++y)
        for (int x = width; x < stride * 8; ++x)
            model::set_bit(page.bytes.data(), stride, x, y, true);
    return page;
}

// Lines of letter-like stems and bars, turned so that they rise by `rise` pixels in 512.
BitonalPage turned_text(int height, int width, int stride, int rise, std::uint32_t seed) {
    BitonalPage page = white_page(height, width, stride);
    support::Random random(seed);
    const double slope = rise / 512.0;
    const auto box = [&](int left, int top, int w, int h) {
        for (int v = top; v < top + h; ++v)
            for (int u = left; u < left + w; ++u)
                ink(page, static_cast<int>(std::lround(u + slope * v)),
                    static_cast<int>(std::lround(v - slope * u)));
    };
    for (int top = -height; top < 2 * height; top += 24)
        for (int left = -width / 4; left < width + width / 4; left += 9) {
            if (random.chance(0.15)) continue;
            box(left, top, 2, 12);
            if (random.chance(0.5)) box(left, top + (random.chance(0.5) ? 0 : 10), 6, 2);
            if (random.chance(0.3)) box(left + 5, top, 2, 12);
        }
    return page;
}

BitonalPage noise(int height, int width, int stride, double density, std::uint32_t seed) {
    return {height, width, stride,
            support::random_bitonal(height, static_cast<std::size_t>(stride), density, seed)};
}

constexpr SkewOutputs kRefused{-1, 0, 512, 1.0, -7, -7};

TEST(SkewEstimate, EqualsTheModelOnEveryInstructionSet) {
    std::vector<BitonalPage> pages{turned_text(263, 611, 100, 17, 5),
                                   turned_text(301, 450, 60, -88, 6), noise(333, 517, 68, 0.5, 7)};
    support::Random random(1);
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        const int height = random.between(32, 130);
        const int width = random.between(32, 200);
        const int stride = model::word_stride(width) + 4 * std::max(0, random.between(-24, 12));
        pages.push_back(seed % 2 == 0
                            ? turned_text(height, width, stride, random.between(-90, 90), seed)
                            : noise(height, width, stride, 0.1 + 0.02 * (seed % 40), seed));
    }
    for (const BitonalPage& page : pages) {
        SCOPED_TRACE(testing::Message()
                     << page.height << " x " << page.width << ", " << page.stride);
        const SkewOutputs want = modelled_skew(page);
        support::on_every_target([&] { EXPECT_EQ(estimated_skew(page), want); });
    }
}

TEST(SkewEstimate, FindsTheSlopeOfText) {
    for (const int rise : {-90, -10, 0, 3, 26, 95}) {
        SCOPED_TRACE(rise);
        const SkewOutputs found = estimated_skew(turned_text(700, 1000, 128, rise, 11));
        EXPECT_NEAR(found.yskew, rise, 1);
        EXPECT_GT(found.confidence, 1.5);
    }
}

TEST(SkewEstimate, PageWithoutInkHasNoSkewAndNoConfidence) {
    for (const int height : {32, 33, 47, 48, 200}) {
        BitonalPage page = white_page(height, 100, 16);
        // The bits of the last byte that is not whole do not count either.
        for (int y = 0; y < height; ++y)
            for (int x = 96; x < 100; ++x) ink(page, x, y);
        EXPECT_EQ(estimated_skew(page),
                  (SkewOutputs{0, 0, 512, -std::numeric_limits<double>::quiet_NaN(), height, 100}));
    }
}

TEST(SkewEstimate, VeryWideAndVeryTallPages) {
    // More lines than 16-bit sums of edges can hold, in both directions.
    for (BitonalPage page : {noise(34, 70'000, 8752, 0.4, 3), noise(40'000, 36, 8, 0.4, 4)}) {
        // Half-black stripes give the largest edges there are.
        for (int y = 0; y < page.height; ++y)
            for (int x = 0; x < page.width; ++x)
                if (y / 2 % 2 == 0 || x / 2 % 2 == 0) ink(page, x, y);
        EXPECT_EQ(estimated_skew(page), modelled_skew(page));
    }
}

TEST(SkewEstimate, RefusalsKeepTheInitialValues) {
    const Bytes bytes(64 * 64, 0x11);
    const int refused[][3] = {{32, 32, 6},  {32, 32, 0}, {32, 32, -4},     {32, 33, 4},
                              {31, 32, 4},  {32, 31, 4}, {-1, 32, 4},      {32, -32, 4},
                              {32, 64, 10}, {32, 0, 4},  {INT_MIN, 32, 4}, {32, INT_MAX, 64}};
    for (const auto& [height, width, stride] : refused) {
        SCOPED_TRACE(testing::Message() << height << " " << width << " " << stride);
        EXPECT_EQ(estimated_skew({height, width, stride, bytes}), kRefused);
    }
    EXPECT_EQ(estimated_skew({32, 32, 4, bytes}).result, 0);

    for (int absent = 0; absent < 6; ++absent) {
        SkewOutputs out;
        const auto unless = [&](int index, auto* pointer) {
            return index == absent ? nullptr : pointer;
        };
        EXPECT_EQ(estimate_skew_of_binary_image(
                      0, nullptr, unless(5, bytes.data()), 32, 32, 4, unless(0, &out.yskew),
                      unless(1, &out.scale), unless(2, &out.confidence), unless(3, &out.out_height),
                      unless(4, &out.out_width)),
                  -1);
        EXPECT_EQ(out, (SkewOutputs{-7, absent == 0 ? -7 : 0, absent == 1 ? -7 : 512,
                                    absent == 2 ? -7 : 1.0, -7, -7}));
    }
}

TEST(SkewEstimate, ShortFormGivesTheSame) {
    const BitonalPage page = turned_text(300, 333, 48, 30, 9);
    const SkewOutputs full = estimated_skew(page);
    SkewOutputs brief;
    const auto run = [&](int height) {
        return skbitmap_mem(page.bytes.data(), height, page.width, page.stride, &brief.yskew,
                            &brief.scale, &brief.out_height, &brief.out_width);
    };
    EXPECT_EQ(run(31), -1);
    EXPECT_EQ(run(page.height), 0);
    EXPECT_NE(brief.yskew, 0);
    EXPECT_EQ((SkewOutputs{0, brief.yskew, brief.scale, full.confidence, brief.out_height,
                           brief.out_width}),
              full);
}

// Traces into a folder that disappears with the test.
class SkewTrace : public testing::Test {
  protected:
    std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) / ("skew_" + std::to_string(getpid()));

    void SetUp() override { std::filesystem::create_directories(folder); }
    void TearDown() override { std::filesystem::remove_all(folder); }
    std::string in(const char* name) const { return (folder / name).string(); }
};

constexpr char kTraceName[] = "/estimate_skew_of_binary_image.log";

TEST_F(SkewTrace, IsTheModelsByteForByte) {
    const std::string deep = in("one/two/three");  // none of the three exists
    for (const BitonalPage& page : {turned_text(210, 240, 36, 24, 2), noise(97, 75, 24, 0.5, 3),
                                    turned_text(65, 32, 4, -60, 4), white_page(40, 64, 8)}) {
        std::ostringstream want;
        EXPECT_EQ(estimated_skew(page, 1, deep.c_str()), modelled_skew(page, &want));
        // The second and later pages replace the file of the one before.
        std::ostringstream got;
        got << std::ifstream(deep + kTraceName, std::ios::binary).rdbuf();
        EXPECT_EQ(got.str(), want.str());
    }
}

TEST_F(SkewTrace, OnlyTheLowByteOfDebugAsksForIt) {
    const BitonalPage page = turned_text(64, 64, 8, 0, 1);
    EXPECT_EQ(estimated_skew(page, 0x7FFF'FF00, in("a").c_str()).result, 0);
    EXPECT_FALSE(std::filesystem::exists(in("a")));
    EXPECT_EQ(estimated_skew(page, 0x100 | 0x80, in("a").c_str()).result, 0);
    EXPECT_TRUE(std::filesystem::exists(in("a") + kTraceName));
}

TEST_F(SkewTrace, FailsTheCallWhereItCannotBeMade) {
    std::ofstream(in("file")) << "in the way";
    std::filesystem::create_directories(in("taken") + kTraceName + "/full");
    const BitonalPage page = turned_text(64, 64, 8, 0, 1);
    for (const char* name : {"file", "file/below", "taken"}) {
        SCOPED_TRACE(name);
        testing::internal::CaptureStdout();  // a file that cannot be removed is also reported there
        const SkewOutputs found = estimated_skew(page, 1, in(name).c_str());
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(found, kRefused);
    }
    // Bad arguments are found before the folder is touched.
    EXPECT_EQ(estimated_skew({31, 64, 8, page.bytes}, 1, in("untouched").c_str()).result, -1);
    EXPECT_FALSE(std::filesystem::exists(in("untouched")));
}

model::Field random_cells(int rows, int columns, int largest, bool flat) {
    support::Random random(3);
    model::Field cells(rows, columns);
    model::for_each_cell(cells, [&](int r, int c) {
        const bool line = (r + c / 5) % 9 == 0 || (c + r / 7) % 11 == 0;
        cells.at(r, c) =
            flat || line ? largest - random.between(0, largest / 50) : random.between(0, largest);
    });
    return cells;
}

// Searches the cells, placed in lines along the direction of the search.
template <class Cell>
void expect_models_search(const model::Field& cells, std::uint32_t largest, deskew::Fan fan) {
    for (const Direction direction : {Direction::kRows, Direction::kColumns}) {
        const bool rows = direction == Direction::kRows;
        const deskew::LineShape shape{rows ? cells.width : cells.height,
                                      rows ? cells.height : cells.width};
        deskew::EdgeLines<Cell> edges(shape, shape, largest);
        std::vector<Cell> block(edges.storage(), Cell{99});
        edges.place(block.data());
        model::for_each_cell(cells, [&](int r, int c) {
            edges.line(static_cast<std::size_t>(rows ? c : r))[rows ? r : c] =
                static_cast<Cell>(cells.at(r, c));
        });
        edges.close_margins();

        const model::SearchResult want =
            model::skew_search(cells, rows ? model::Along::kRows : model::Along::kColumns,
                               fan.centre, fan.range, fan.step, nullptr);
        const deskew::SearchResult got = deskew::search_skew(edges, direction, fan, nullptr);
        EXPECT_EQ(got.best.skew, want.best);
        EXPECT_EQ(got.best.power, want.best_power);
        EXPECT_EQ(got.worst.skew, want.worst);
        EXPECT_EQ(got.worst.power, want.worst_power);
    }
}

TEST(SkewSearch, EqualsTheModel) {
    const struct {
        int rows, columns, largest;
        deskew::Fan fan;
    } cases[] = {{8, 1, 128, {0, 92, 4}},   {1, 8, 128, {0, 92, 4}},   {33, 47, 32, {40, 4, 1}},
                 {47, 33, 32, {-92, 4, 1}}, {70, 20, 255, {0, 92, 4}}, {20, 70, 255, {2, 4, 1}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.rows << " x " << c.columns);
        for (const bool flat : {false, true}) {
            const auto largest = static_cast<std::uint32_t>(c.largest);
            const model::Field cells = random_cells(c.rows, c.columns, c.largest, flat);
            expect_models_search<std::uint8_t>(cells, largest, c.fan);
            expect_models_search<std::uint16_t>(cells, largest, c.fan);
        }
    }
    expect_models_search<std::uint16_t>(random_cells(50, 60, 32640, false), 32640, {0, 92, 4});
    // Sums near 1500 * 65535 in each direction: their squares pass 2^53 and round at every step.
    expect_models_search<std::uint16_t>(random_cells(40, 1500, 65535, true), 65535, {1, 2, 1});
    expect_models_search<std::uint16_t>(random_cells(1500, 40, 65535, true), 65535, {-3, 2, 1});
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
        EXPECT_TRUE(chosen.confidence == choice.confidence || std::isnan(choice.confidence));
        EXPECT_EQ(std::isnan(chosen.confidence), std::isnan(choice.confidence));
    }
}

TEST(SkewSearch, AngleIsNearTheTrueOne) {
    constexpr double kDegree = 3.14159265358979323846 / 180;
    for (int skew = -3000; skew <= 3000; ++skew)
        EXPECT_NEAR(deskew::skew_degrees(skew) * kDegree, std::atan(skew / 512.0), 0.0053) << skew;
}

}  // namespace

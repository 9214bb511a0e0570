// Which pages are straightened, and that the fan to look at is the one that decided.
#include "steps/skew_measure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "drawn_page.h"
#include "page/turn.h"

namespace {

namespace steps = tool::steps;

constexpr int kSide = 600;

int below(std::minstd_rand& random, int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
}

steps::MeasuredSkew skew_of(const tool::Page& page) {
    return steps::measure_skew(tool::reading::look_how_it_lies(page));
}

// Letters in lines that rise by `slope` pixels over 512; at even distances they would line up along
// other slopes as well.
tool::Page lines_of_letters(int slope, int from = 40) {
    tool::Page page = tool::blank_bits(kSide, kSide);
    std::minstd_rand random(3);
    for (int y = from; y < 560; y += 30) {
        for (int x = 30; x < 560; x += 8 + below(random, 9)) {
            const int top = y - x * slope / 512;
            if (top >= 0 && top + 14 <= kSide) tool::draw(page, x, x + 4, top, top + 14);
        }
    }
    return page;
}

tool::Page scattered(int pieces, int longest) {
    tool::Page page = tool::blank_bits(kSide, kSide);
    std::minstd_rand random(7);
    for (int i = 0; i < pieces; ++i) {
        const int x = below(random, kSide - longest), y = below(random, kSide - longest);
        tool::draw(page, x, x + 1 + below(random, longest), y, y + 1 + below(random, longest));
    }
    return page;
}

TEST(MeasureSkew, FollowsLinesAndShowsTheirPeak) {
    for (const int slope : {-90, -20, 0, 3, 20, 90}) {
        for (const int turns : {0, 1}) {
            tool::Page page = lines_of_letters(slope);
            if (turns > 0) turn(page, turns);
            const auto measured = skew_of(page);
            ASSERT_TRUE(measured.skew) << slope << measured.doubt;
            EXPECT_NEAR(measured.skew->degrees(), steps::Skew({slope, 512}).degrees(), 0.12);
            const auto& fine = (turns > 0 ? measured.fan.stems : measured.fan.lines).fine;
            const auto peak = std::max_element(
                fine.begin(), fine.end(),
                [](const auto& one, const auto& other) { return one.score < other.score; });
            EXPECT_DOUBLE_EQ(peak->degrees, measured.skew->degrees());
            EXPECT_NEAR(peak->score, measured.confidence, 1e-3);
        }
    }
}

TEST(MeasureSkew, LeavesPagesWithoutLinesAlone) {
    EXPECT_EQ(skew_of(tool::blank_bits(kSide, kSide)).doubt, "no ink on the page");
    EXPECT_FALSE(skew_of(tool::blank_bits(5, 5)).skew);
    for (const int longest : {3, 12}) {
        const auto measured = skew_of(scattered(900, longest));
        EXPECT_FALSE(measured.skew) << longest << ' ' << measured.confidence;
    }
    const auto beyond = skew_of(lines_of_letters(104, 150));
    EXPECT_EQ(beyond.doubt, "the skew is beyond 10.6 degrees");
}

}  // namespace

// The skew fan is read from the library's trace. Its words are tied here to what the library
// returns for the same search: a word that changes leaves a curve empty, or a peak where it is not.
#include "steps/skew_fan.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "drawn_page.h"
#include "steps/skew_measure.h"

namespace {

namespace steps = tool::steps;

const steps::FanPoint& peak_of(const std::vector<steps::FanPoint>& curve) {
    return *std::max_element(curve.begin(), curve.end(),
                             [](const auto& a, const auto& b) { return a.score < b.score; });
}

TEST(SkewFan, PeaksWhereTheEstimateLies) {
    tool::Page page = tool::blank_bits(600, 600);
    for (int y = 40; y < 560; y += 30) {
        for (int x = 30; x < 560; x += 12) {
            const int top = y - x * 20 / 512;
            tool::draw(page, x, x + 4, top, top + 14);
        }
    }
    const auto measured = steps::measure_skew(page, box_of(page), true);
    ASSERT_TRUE(measured.fan);
    EXPECT_NEAR(measured.skew.numerator, 20, 2);
    std::vector<steps::FanPoint> peaks;
    for (const steps::FanCurves& curves : {measured.fan->lines, measured.fan->stems}) {
        EXPECT_GE(curves.coarse.size(), 40U);
        ASSERT_GE(curves.fine.size(), 5U);
        for (const auto& curve : {curves.coarse, curves.fine}) {
            EXPECT_TRUE(std::is_sorted(
                curve.begin(), curve.end(),
                [](const auto& a, const auto& b) { return a.degrees <= b.degrees; }));
        }
        peaks.push_back(peak_of(curves.fine));
    }
    const steps::FanPoint& best = peak_of(peaks);
    EXPECT_DOUBLE_EQ(best.degrees, measured.skew.degrees());
    EXPECT_NEAR(best.score, measured.confidence, 1e-4);
    EXPECT_FALSE(steps::measure_skew(page, box_of(page), false).fan);
}

}  // namespace

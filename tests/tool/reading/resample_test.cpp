// Resampling beside its definition: the mean of the 4 x 4 pixels around a place, weighted by Keys'
// cubic, places beyond the page clamped to it.
#include "reading/resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "drawn_page.h"

namespace {

using tool::Page;

Page wavy_page(int width, int height) {
    return tool::grey_page(width, height, [](int x, int y) {
        return 128 + 60 * std::sin(x * 0.7) + 60 * std::cos(y * 0.9 + x * 0.1);
    });
}

double cubic(double distance) {
    const double d = std::abs(distance);
    if (d <= 1) return (1.5 * d - 2.5) * d * d + 1;
    return d < 2 ? ((-0.5 * d + 2.5) * d - 4) * d + 2 : 0;
}

double grey_at(const Page& grey, double x, double y) {
    const int left = static_cast<int>(std::floor(x)) - 1;
    const int top = static_cast<int>(std::floor(y)) - 1;
    double sum = 0;
    for (int v = top; v < top + 4; ++v) {
        for (int u = left; u < left + 4; ++u) {
            const int pixel =
                grey.row(std::clamp(v, 0, grey.height - 1))[std::clamp(u, 0, grey.width - 1)];
            sum += cubic(x - u) * cubic(y - v) * pixel;
        }
    }
    return std::clamp(sum, 0.0, 255.0);
}

TEST(Resample, DoublesAsDefined) {
    for (const auto& [width, height] : {std::array{1, 1}, {2, 5}, {31, 17}}) {
        const Page grey = wavy_page(width, height);
        const Page large = tool::reading::doubled(grey);
        ASSERT_EQ(large.width, 2 * width);
        ASSERT_EQ(large.height, 2 * height);
        EXPECT_EQ(large.dpi.x, 600);
        for (int y = 0; y < large.height; ++y) {
            for (int x = 0; x < large.width; ++x) {
                EXPECT_NEAR(large.row(y)[x], grey_at(grey, x / 2.0 - 0.25, y / 2.0 - 0.25), 1.0);
            }
        }
    }
}

TEST(Resample, LevelsAboutTheCentre) {
    const Page grey = wavy_page(61, 47);
    EXPECT_TRUE(tool::same_pixels(tool::reading::levelled(grey, 0, 512, 61, 47), grey));
    for (const int rise : {-96, -7, 40}) {
        const int width = 80, height = 64;
        const Page level = tool::reading::levelled(grey, rise, 512, width, height);
        const double angle = std::atan2(rise, 512);
        const int paper = level.row(0)[rise > 0 ? width - 1 : 0];  // a corner that is off the page
        EXPECT_GE(paper, 128);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double u = x - (width - 1) / 2.0, v = y - (height - 1) / 2.0;
                const double px = 30 + u * std::cos(angle) + v * std::sin(angle);
                const double py = 23 + v * std::cos(angle) - u * std::sin(angle);
                const double off = std::max({-px, -py, px - 60, py - 46});  // the page, in pixels
                if (std::abs(off) < 0.01) continue;
                EXPECT_NEAR(level.row(y)[x], off > 0 ? paper : grey_at(grey, px, py), 1.5);
            }
        }
    }
}

}  // namespace

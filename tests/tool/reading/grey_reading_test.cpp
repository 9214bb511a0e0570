// What is done to grey pages for reading: impulses beside the plain median, light and contrast on
// pages whose paper and ink are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

#include "drawn_page.h"
#include "page/ink.h"
#include "reading/even_light.h"
#include "reading/impulses.h"
#include "reading/ink_contrast.h"
#include "reading/paper_bits.h"

namespace {

using tool::Page;
namespace reading = tool::reading;

int median_at(const Page& grey, int x, int y) {
    std::array<unsigned char, 9> around{};
    for (int i = 0; i < 9; ++i) {
        around[static_cast<std::size_t>(i)] = grey.row(y - 1 + i / 3)[x - 1 + i % 3];
    }
    std::sort(around.begin(), around.end());
    return around[4];
}

TEST(Impulses, GetTheMedian) {
    std::mt19937 random(1);
    for (const unsigned noise : {40U, 61U, 256U}) {
        const Page grey = tool::grey_page(83, 41, [&](int, int) {
            return random() % 9 == 0 ? random() % 256 : 255 - random() % noise;
        });
        Page wanted = copy_of(grey), cleaned = copy_of(grey);
        int sampled = 0, free_rows = 0;  // a row is a single run
        for (int y = 1; y + 1 < grey.height; ++y) {
            const int before = sampled;
            for (int x = 1; x + 1 < grey.width; ++x) {
                const int median = median_at(grey, x, y);
                if (std::abs(median - grey.row(y)[x]) <= 60) continue;
                wanted.row(y)[x] = static_cast<unsigned char>(median);
                sampled += y % 8 == 1;
            }
            free_rows += y % 8 == 1 && sampled == before;
        }
        reading::remove_impulses(cleaned);
        EXPECT_TRUE(tool::same_pixels(cleaned, wanted)) << noise;
        const reading::ImpulseSample sample = reading::sample_impulses(grey);
        EXPECT_DOUBLE_EQ(sample.share, sampled / (5 * 81.0));
        EXPECT_DOUBLE_EQ(sample.free_runs, free_rows / 5.0);
    }
    Page narrow = tool::grey_page(2, 9, [](int x, int) { return 255 * x; });
    reading::remove_impulses(narrow);
    EXPECT_EQ(reading::sample_impulses(narrow).share, 0);
}

// Strokes that are darker than the paper by a share of it.
int printed(int paper, int x, int y) {
    return x % 12 < 3 && y % 20 < 14 ? paper * 3 / 10 : paper;
}

TEST(EvenLight, MakesAllPaperOneGrey) {
    for (const auto& [width, height] : {std::array{4, 1}, {1, 1}, {16, 17}, {17, 33}, {250, 33}}) {
        for (const int paper : {250, 60, 16}) {
            Page grey = tool::grey_page(width, height, [=](int, int) { return paper; });
            reading::even_light(grey);
            const Page wanted = tool::grey_page(width, height, [](int, int) { return 240; });
            EXPECT_TRUE(tool::same_pixels(grey, wanted)) << width << ", " << paper;
        }
    }
    for (const int slope : {0, 120}) {
        Page grey = tool::grey_page(
            600, 190, [=](int x, int y) { return printed(240 - slope * x / 600, x, y); });
        reading::even_light(grey);
        for (int y = 0; y < grey.height; ++y) {
            for (int x = 50; x < 550; ++x) {  // beyond, paper counts as the nearest block's
                const int wanted = printed(240, x, y);
                EXPECT_NEAR(grey.row(y)[x], wanted, slope == 0 ? 1 : 0.04 * wanted) << x;
            }
        }
    }
}

// Print in the light and deep in the shade, a dark picture with sharp edges, and the noise of blank
// paper.
TEST(PaperBits, KeepPrintAndDarkAreas) {
    std::mt19937 random(2);
    const auto noise = [&] { return static_cast<int>(random() % 5) - 2; };
    const auto paper = [](int x) { return 240 - x * 200 / 1200; };
    const auto in_picture = [](int x, int y) { return x < 300 && y > 400; };
    const Page grey = tool::grey_page(1200, 700, [&](int x, int y) {
        if (in_picture(x, y)) return 45 + noise();
        return (y > 300 ? paper(x) : printed(paper(x), x, y)) + noise();
    });
    const Page bits = reading::bits_by_paper(grey);
    int wrong = 0;
    for (int y = 0; y < grey.height; ++y) {
        for (int x = 0; x < grey.width; ++x) {
            const bool ink = in_picture(x, y) || (y <= 300 && x % 12 < 3 && y % 20 < 14);
            wrong += tool::is_ink(bits, x, y) != ink;
        }
    }
    EXPECT_LT(wrong, 100);
}

TEST(InkContrast, IsThatOfTheStrongInk) {
    constexpr int kFaint = 30;
    for (const int strong : {220, 90, 15, 0}) {
        const Page grey = tool::grey_page(200, 200, [=](int x, int y) {
            if (x < 100) return 240 - (x % 7 < 2 ? kFaint : 0);
            return 240 - (x % 12 < 6 && y % 20 < 14 ? strong : 0);
        });
        EXPECT_EQ(reading::ink_contrast(reading::contrasts_of(grey)), std::max(strong, kFaint));
    }
    const Page noise = tool::grey_page(200, 200, [](int x, int y) { return 240 - x * y % 19; });
    EXPECT_EQ(reading::ink_contrast(reading::contrasts_of(noise)), 0);
}

}  // namespace

// What of the dark at a page's edges is its border.
#include <gtest/gtest.h>

#include <algorithm>

#include "drawn_page.h"
#include "reading/border_mask.h"
#include "reading/border_print.h"

namespace {

using tool::Page;
namespace reading = tool::reading;

constexpr int kWidth = 400, kHeight = 300;

// A border of 40 pixels along the left and of 8 along the bottom edge, a rule of 5 that runs from
// the border into a black square, a letter's strokes of 6 on the border, and some more at the top
// edge.
void draw_border(Page& bits) {
    draw(bits, 0, 40, 0, kHeight);
    draw(bits, 0, kWidth, kHeight - 8, kHeight);
}
void draw_print(Page& bits) {
    draw(bits, 40, 200, 100, 105);
    draw(bits, 200, 260, 70, 130);
    draw(bits, 40, 46, 180, 220);
    draw(bits, 46, 70, 214, 220);
    for (int x = 300; x < 390; x += 15) draw(bits, x, x + 6, 0, 30);
}

void erase_box(Page& bits, int x0, int x1, int y0, int y1) {
    for (int y = y0; y < y1; ++y) tool::erase_inks(bits.row(y), x0, x1);
}

int black_in(const Page& mask, int x0, int x1, int y0, int y1) {
    int count = 0;
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) count += is_ink(mask, x, y) ? 1 : 0;
    }
    return count;
}

// All of the border, and no more of the print than the fringe on it.
void expect_border(const Page& mask) {
    EXPECT_EQ(black_in(mask, 0, 40, 0, kHeight), 40 * kHeight);
    EXPECT_EQ(black_in(mask, 40, kWidth, kHeight - 8, kHeight), 8 * (kWidth - 40));
    EXPECT_EQ(black_in(mask, 66, kWidth, 0, kHeight - 20), 0);
}

TEST(BorderMask, IsThick) {
    Page bits = tool::blank_bits(kWidth, kHeight);
    draw_border(bits);
    draw_print(bits);
    expect_border(reading::border_of_bits(bits));
    expect_border(reading::border_of_greys(
        tool::grey_page(kWidth, kHeight,
                        [&](int x, int y) { return is_ink(bits, x, y) ? 30 : 230; }),
        {110, 190, 32}));
}

TEST(BorderMask, IsEmptyWithoutBorder) {
    Page bits = tool::blank_bits(kWidth, kHeight);
    draw_print(bits);
    EXPECT_EQ(black_in(reading::border_of_bits(bits), 0, kWidth, 0, kHeight), 0);
}

TEST(BorderPrint, IsFoundInTheShade) {
    Page mask = tool::blank_bits(kWidth, kHeight);
    draw(mask, 0, 120, 0, kHeight);
    for (const bool print : {false, true}) {
        const Page grey = tool::grey_page(kWidth, kHeight, [&](int x, int y) {
            const int paper = x < 120 ? 80 : 230;
            return (print || x >= 120) && x % 9 < 3 && y % 14 < 9 ? paper / 4 : paper;
        });
        EXPECT_EQ(reading::covers_print(mask, grey), print);
        EXPECT_FALSE(reading::covers_print(tool::blank_bits(kWidth, kHeight), grey));
    }
}

// A dark band at the upper edge with white letters, or a few holes, and a row of black rings.
TEST(BorderPrint, IsFoundWhereItIsWhite) {
    for (const int letters : {0, 4, 12}) {
        Page bits = tool::blank_bits(kWidth, kHeight);
        draw(bits, 0, kWidth, 0, 80);
        for (int i = 0; i < 12; ++i) {
            const int x = 20 + 30 * i;
            draw(bits, x, x + 20, 150, 180);
            erase_box(bits, x + 4, x + 16, 154, 176);
            if (i < letters) erase_box(bits, x, x + 20, 30, 50);
        }
        const Page mask = reading::border_of_bits(bits);
        EXPECT_GT(black_in(mask, 0, kWidth, 0, 30), 25 * kWidth);
        EXPECT_EQ(reading::covers_white_print(mask, bits, 20), letters == 12) << letters;
    }
}

}  // namespace

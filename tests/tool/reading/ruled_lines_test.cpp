// Ruled lines go and letters stay whole, on pages where it is known which ink is which; level and
// upright.
#include "reading/ruled_lines.h"

#include <gtest/gtest.h>

#include <cmath>

#include "drawn_page.h"
#include "page/turn.h"
#include "reading/faint_lines.h"

namespace {

using tool::Page;
namespace reading = tool::reading;

constexpr reading::LineScale kScale = {150, 240, 10, 5, 16, 16, 26};

Page letters() {
    Page page = tool::blank_bits(700, 200);
    for (int x = 20; x < 680; x += 40) {
        tool::draw(page, x, x + 4, 20, 60);        // a stem that crosses the line
        tool::draw(page, x + 12, x + 26, 47, 51);  // an arch along the line, a row higher ...
        tool::draw(page, x + 12, x + 16, 51, 70);  // ... on its stems
        tool::draw(page, x + 22, x + 26, 51, 70);
        tool::draw(page, x + 31, x + 35, 44, 51);  // a dot that stands on the line
    }
    return page;
}

void expect_removed(Page page, const Page& wanted) {
    Page upright = copy_of(page);
    reading::remove_ruled_lines(page, kScale, {true, false}, reading::Sureness::kSure);
    EXPECT_EQ(tool::text_of(page), tool::text_of(wanted));
    turn(upright, 3);
    reading::remove_ruled_lines(upright, kScale, {false, true}, reading::Sureness::kLikely);
    turn(upright, 1);
    EXPECT_EQ(tool::text_of(upright), tool::text_of(wanted));
}

TEST(RuledLines, GoFromEndToEnd) {
    const Page blank = tool::blank_bits(700, 200);
    struct Case {
        int thickness;
        int pixels_per_step;  // the line steps down by a row every so often
        int gap_every;        // a gap of 4 pixels, or of 20 behind the column 400
    };
    for (const Case& line : {Case{1, 900, 900}, {3, 120, 900}, {9, 300, 900}, {2, 100, 60}}) {
        Page page = copy_of(blank);
        for (int x = 30; x < 680; ++x) {
            const int y = 100 + x / line.pixels_per_step;
            const bool gap = x % line.gap_every < (x < 400 ? 4 : 20);
            const int ragged = x > 60 && x < 640 && x % 37 < 2 ? 2 : 0;
            if (!gap || x < 30 + line.gap_every) {
                tool::draw(page, x, x + 1, y - ragged, y + line.thickness);
            }
        }
        expect_removed(std::move(page), blank);
    }
}

TEST(RuledLines, LeaveLettersWhole) {
    Page page = letters();
    tool::draw(page, 10, 690, 48, 51);
    expect_removed(std::move(page), letters());
}

TEST(RuledLines, AreNoBarsAndNoScreens) {
    Page page = tool::blank_bits(700, 600);
    tool::draw(page, 10, 150, 10, 13);   // too short
    tool::draw(page, 250, 480, 10, 13);  // longer, but joins no other
    tool::draw(page, 10, 690, 30, 42);   // too thick
    for (int y = 60; y < 190; ++y) {     // a screen whose dots join
        for (int x = 10; x < 690; ++x) {
            if (y % 6 < 3 || x % 6 < 2) tool::draw(page, x, x + 1, y, y + 1);
        }
    }
    for (int y = 240; y < 340; y += 20) tool::draw(page, 10, 690, y, y + 2);  // a stave
    for (int x = 100; x < 600; ++x) {                                         // a piece of a circle
        const int y = 380 + (x - 350) * (x - 350) / 2000;
        tool::draw(page, x, x + 1, y, y + 4);
    }
    for (int x = 10; x < 680; x += 24) {  // feet of letters
        tool::draw(page, x, x + 20, 500, 503);
        tool::draw(page, x + 8, x + 12, 460, 500);
    }
    const Page before = copy_of(page);
    expect_removed(std::move(page), before);
}

TEST(FaintLines, GoWithTheirStubsOnly) {
    Page with_lines = letters(), page = letters();
    tool::draw(with_lines, 0, 700, 55, 58);
    tool::draw(page, 329, 336, 55, 58);  // a darker piece of the line ...
    tool::draw(page, 331, 333, 52, 55);  // ... with a crumb beside the line
    tool::draw(page, 340, 342, 80, 82);  // the dot of a letter, away from the line
    Page without_lines = letters(), wanted = letters();
    tool::draw(wanted, 340, 342, 80, 82);
    reading::remove_line_stubs(page, with_lines, without_lines, 4);
    EXPECT_EQ(tool::text_of(page), tool::text_of(wanted));
}

}  // namespace

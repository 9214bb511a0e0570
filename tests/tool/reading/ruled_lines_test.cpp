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

constexpr reading::LineScale kScale = {150, 240, 10, 5, 16, 16, 26, 20};

void draw_letter(Page& page, int x, int y) {
    tool::draw(page, x, x + 3, y, y + 20);
    tool::draw(page, x + 3, x + 9, y, y + 3);
    tool::draw(page, x + 9, x + 12, y + 3, y + 20);
}

// Letters as high as an n, such as stand beside the lines of a form.
void draw_words(Page& page, int y) {
    for (int x = 60; x < 640; x += 16) draw_letter(page, x, y);
}
Page with_words(const Page& page) {
    Page form = copy_of(page);
    draw_words(form, 90);
    return form;
}
Page with_words_beside(const Page& page) {
    Page form = copy_of(page);
    for (int y = 10; y < 680; y += 40) {
        for (int x = 84; x < 180; x += 16) draw_letter(form, x, y);
    }
    return form;
}

// With what crosses and touches a line at y = 48.
Page letters() {
    Page page = tool::blank_bits(700, 200);
    for (int x = 20; x < 680; x += 120) {
        tool::draw(page, x, x + 4, 20, 60);        // a stem that crosses the line
        tool::draw(page, x + 12, x + 26, 47, 51);  // an arch along the line, a row higher ...
        tool::draw(page, x + 12, x + 16, 51, 70);  // ... on its stems
        tool::draw(page, x + 22, x + 26, 51, 70);
        tool::draw(page, x + 31, x + 35, 44, 51);  // a dot that stands on the line
    }
    return page;
}

// Level and upright. Text is level on both pages.
void expect_removed(const Page& page, const Page& wanted) {
    Page level = with_words(page);
    reading::remove_ruled_lines(level, kScale, {true, false}, reading::Sureness::kSure);
    EXPECT_EQ(tool::text_of(level), tool::text_of(with_words(wanted)));
    Page turned = copy_of(page), turned_wanted = copy_of(wanted);
    turn(turned, 3);
    turn(turned_wanted, 3);
    Page upright = with_words_beside(turned);
    reading::remove_ruled_lines(upright, kScale, {false, true}, reading::Sureness::kLikely);
    EXPECT_EQ(tool::text_of(upright), tool::text_of(with_words_beside(turned_wanted)));
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
            const int y = 48 + x / line.pixels_per_step;
            const bool gap = x % line.gap_every < (x < 400 ? 4 : 20);
            const int ragged = x > 60 && x < 640 && x % 37 < 2 ? 2 : 0;
            if (!gap || x < 30 + line.gap_every) {
                tool::draw(page, x, x + 1, y - ragged, y + line.thickness);
            }
        }
        expect_removed(page, blank);
    }
}

TEST(RuledLines, LeaveLettersWhole) {
    Page page = letters();
    tool::draw(page, 10, 690, 48, 51);
    expect_removed(page, letters());
}

TEST(RuledLines, AreNoBarsStavesScreensOrLetters) {
    void (*const drawn[])(Page&) = {
        [](Page& page) { tool::draw(page, 10, 150, 60, 63); },   // too short
        [](Page& page) { tool::draw(page, 250, 480, 60, 63); },  // longer, but joins no other
        [](Page& page) { tool::draw(page, 10, 690, 60, 72); },   // too thick
        [](Page& page) {                                         // a screen whose dots join
            for (int y = 10; y < 80; ++y) {
                for (int x = 10; x < 690; ++x) {
                    if (y % 6 < 3 || x % 6 < 2) tool::draw(page, x, x + 1, y, y + 1);
                }
            }
        },
        [](Page& page) {  // a stave
            for (int y = 10; y < 90; y += 20) tool::draw(page, 10, 690, y, y + 2);
        },
        [](Page& page) {  // a piece of a circle
            for (int x = 100; x < 600; ++x) {
                const int y = 40 + (x - 350) * (x - 350) / 2000;
                tool::draw(page, x, x + 1, y, y + 4);
            }
        },
        [](Page& page) {  // feet of letters
            for (int x = 10; x < 680; x += 24) {
                tool::draw(page, x, x + 20, 60, 63);
                tool::draw(page, x + 8, x + 12, 20, 60);
            }
        },
        [](Page& page) {  // the sign of a root
            tool::draw(page, 200, 500, 30, 33);
            for (int y = 30; y < 80; ++y) tool::draw(page, 209 - y / 3, 213 - y / 3, y, y + 1);
        }};
    for (const auto draw : drawn) {
        Page page = tool::blank_bits(700, 200);
        draw(page);
        expect_removed(page, page);
    }
}

TEST(RuledLines, OfDrawingsStayAndThoseThatAreParts) {
    Page page = tool::blank_bits(700, 700);
    tool::draw(page, 20, 680, 20, 23);  // the frame of a map
    tool::draw(page, 20, 680, 397, 400);
    tool::draw(page, 20, 23, 20, 400);
    tool::draw(page, 677, 680, 20, 400);
    for (int y = 60; y < 300; ++y) {  // rivers
        for (int x = 30 + y * 7 % 40; x < 670; x += 90) tool::draw(page, x, x + 4, y, y + 1);
    }
    draw_words(page, 340);  // its title
    tool::draw(page, 50, 650, 370, 373);
    tool::draw(page, 20, 680, 440, 443);  // far from letters
    draw_words(page, 560);                // letters that hang on a line
    tool::draw(page, 60, 640, 559, 562);
    draw_words(page, 640);  // words struck out
    tool::draw(page, 60, 640, 649, 652);
    const Page before = copy_of(page);
    reading::remove_ruled_lines(page, kScale, {true, true}, reading::Sureness::kLikely);
    EXPECT_EQ(tool::text_of(page), tool::text_of(before));
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

// Pages are turned by their text only where it is clear: a wrong turn costs more than a missed one.
#include "reading/page_lie.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "drawn_page.h"
#include "page/turn.h"

namespace {

// Lines of letters, of which `rising` and `sinking` in a hundred stand out to the top and to the
// bottom.
tool::Page text(int rising, int sinking) {
    tool::Page page = tool::blank_bits(800, 900);
    std::minstd_rand random(11);
    for (int y = 60; y < 840; y += 32) {
        for (int x = 40; x < 740;) {
            const auto kind = static_cast<int>(random() % 100);
            const int top = kind < rising ? y - 5 : y;
            const int bottom = kind >= 100 - sinking ? y + 17 : y + 12;
            tool::draw(page, x, x + 3, top, bottom);
            tool::draw(page, x, x + 8, y + 4, y + 7);
            x += random() % 6 == 0 ? 20 : 11;
        }
    }
    return page;
}

TEST(PageLie, TurnsClearTextOnly) {
    const struct {
        int rising, sinking;
        bool clear;
    } cases[] = {{25, 6, true}, {20, 12, false}, {2, 9, false}, {12, 18, false}, {0, 0, false}};
    for (const auto& one : cases) {
        tool::Page page = text(one.rising, one.sinking);
        for (int turns = 0; turns < 4; ++turns) {
            if (turns > 0) turn(page, 1);
            const std::optional<int> found = tool::reading::look_how_it_lies(page).turns_to_upright;
            EXPECT_EQ(found, one.clear ? std::optional((4 - turns) % 4) : std::nullopt)
                << one.rising << ' ' << one.sinking << ' ' << turns;
        }
    }
}

}  // namespace

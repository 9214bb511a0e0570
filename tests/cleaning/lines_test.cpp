// Line removal and underline extraction beside the pixel model, over random ruled pages and noise;
// which drawn lines are removed; and what is refused.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "models/lines_comparison.h"
#include "support/bitonal_page.h"
#include "support/random_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Page = support::BitonalPage;
using support::Random;

// Noise, text or white under some ruled lines; the padding is dirty.
Page random_page(Random& random) {
    const int height = random.between(1, random.chance(0.8) ? 60 : 150);
    const int width = random.between(1, random.chance(0.7) ? 90 : 400);
    const int stride = (width + 7) / 8 + random.between(0, 3);
    const auto seed = static_cast<std::uint32_t>(random.between(0, 1 << 30));
    const auto row = static_cast<std::size_t>(stride);
    const double density = random.chance(0.3) ? 0.0 : random.between(1, 19) / 20.0;
    Page page{height, width, stride,
              random.chance(0.4) ? support::random_text(height, width, row, seed)
                                 : support::random_bitonal(height, row, density, seed)};
    for (int line = random.between(0, 6); line > 0; --line) {
        const bool horizontal = random.chance(0.5);
        const int thickness = random.between(1, 5);
        const int x0 = random.between(0, width - 1);
        const int y0 = random.between(0, height - 1);
        for (int i = horizontal ? x0 : y0; i < (horizontal ? width : height); ++i) {
            if (random.chance(0.1)) continue;
            if (horizontal)
                page.fill(i, i + 1, y0, y0 + thickness);
            else
                page.fill(x0, x0 + thickness, i, i + 1);
        }
    }
    return page;
}

TEST(Lines, EqualTheModel) {
    Random random(31);
    for (int round = 0; round < 900; ++round) {
        const Page page = random_page(random);
        model::LineCall call{random.byte(), {}};
        for (std::uint8_t& number : call.numbers) {  // mostly small, at times beyond the page
            number =
                random.chance(0.1)
                    ? random.byte()
                    : static_cast<std::uint8_t>(random.between(0, random.chance(0.2) ? 2 : 40));
        }
        for (int i = 8; i < 12; ++i) call.numbers[i] = random.byte();
        ASSERT_TRUE(model::lines_agree(page, call))
            << "round " << round << ", choice " << static_cast<int>(call.choice);
    }
}

using Handle = std::unique_ptr<lrm_settings, decltype(&lrm_exit)>;
using Short = unsigned short;

Handle handle_of(std::uint8_t* image, int height, int width, int stride) {
    return {lrm_init_mem(image, static_cast<Short>(height), static_cast<Short>(width),
                         static_cast<Short>(stride)),
            lrm_exit};
}
Handle handle_of(Page& page) {
    return handle_of(page.bytes.data(), page.height, page.width, page.stride);
}

TEST(LineRemoval, TakesLongThinLinesOnly) {
    struct Case {
        const char* name;
        int length, thickness;
        int gap;  // every 20 pixels
        bool removed;
    };
    for (const Case& c :
         {Case{"shortest", 128, 3, 0, true}, Case{"too short", 127, 3, 0, false},
          Case{"thickest", 200, 15, 0, true}, Case{"too thick", 200, 16, 0, false},
          Case{"gaps of 1", 200, 3, 1, true}, Case{"gaps of 2", 200, 3, 2, false}}) {
        SCOPED_TRACE(c.name);
        Page page{60, 240, 30};
        page.fill(20, 20 + c.length, 30, 30 + c.thickness);
        for (int x = 40; x < 200; x += 20) page.fill(x, x + c.gap, 30, 33, false);
        const int before = page.ink();
        EXPECT_EQ(lrm_do_horz(handle_of(page).get()), 0);
        EXPECT_EQ(page.ink(), c.removed ? 0 : before);
    }
}

TEST(LineRemoval, HandlesAreChecked) {
    Page page{2, 33, 5};
    EXPECT_EQ(handle_of(page.bytes.data(), 2, 33, 4), nullptr);
    for (const auto& [height, width, stride] :
         {std::array{0, 33, 5}, std::array{0, 0, 0}, std::array{2, 0, 0}}) {
        const Handle empty = handle_of(page.bytes.data(), height, width, stride);
        ASSERT_NE(empty, nullptr);
        EXPECT_EQ(lrm_do_horz(empty.get()), -1);
        EXPECT_EQ(lrm_do_vert(empty.get()), -1);
    }
    EXPECT_EQ(lrm_do_horz(handle_of(nullptr, 2, 33, 5).get()), -1);
    const Handle handle = handle_of(page);
    struct Case {
        Short x0, x1, y0, y1;
        int result;
    };
    // The last zone that fits stays.
    for (const Case& c : {Case{0, 33, 0, 2, 0}, Case{32, 33, 1, 2, 0}, Case{0, 34, 0, 2, -1},
                          Case{7, 7, 0, 2, -1}, Case{8, 7, 0, 2, -1}, Case{0, 33, 1, 1, -1},
                          Case{0, 33, 2, 1, -1}, Case{0, 33, 0, 3, -1}}) {
        EXPECT_EQ(lrm_set_zone(handle.get(), c.x0, c.x1, c.y0, c.y1), c.result);
        EXPECT_EQ(lrm_set_zone(nullptr, c.x0, c.x1, c.y0, c.y1), -1);
    }
    for (const auto& setters : model::kLineSetters) {
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_EQ(setters[i](nullptr, 1), -1);
            EXPECT_EQ(setters[i](handle.get(), 65535), 0);
            EXPECT_EQ(setters[i](handle.get(), i == 1 ? 65535 : 0), 0);
        }
    }
    page.fill(0, 40, 0, 2);
    EXPECT_EQ(lrm_do_horz(handle.get()), 0);
    EXPECT_EQ(page.ink(), 65);
    EXPECT_EQ(page.ink(32, 33, 1, 2), 0);
    EXPECT_EQ(lrm_do_horz(nullptr), -1);
    EXPECT_EQ(lrm_do_vert(nullptr), -1);
    EXPECT_EQ(lrm_exit(nullptr), -1);
}

TEST(LineRemoval, RefusesImagesThatCannotBe) {
    Bytes bytes(8, 0xFF);
    for (const auto& [height, width, stride, result] :
         {std::array{0, 32, 4, -1}, {2, 0, 0, -1}, {2, 33, 4, -1}, {-2, 32, 4, -1}, {2, 0, 4, 0}}) {
        for (const auto call : {linerm_h, linerm_v}) {
            EXPECT_EQ(call(bytes.data(), height, width, stride, 3, 8, 2, 8, 2, 1), result);
            EXPECT_EQ(call(nullptr, 2, 32, 4, 3, 8, 2, 8, 2, 1), -1);
        }
    }
    EXPECT_EQ(bytes, Bytes(8, 0xFF));
}

// One line more than are counted: the last one's columns are not, and from then on short lines that
// began after it stay.
TEST(Underlines, BeyondTheLimitAreNotCounted) {
    Page page{204, 2000, 250};  // 1,000 lines of 1 pixel a row, every other row
    for (int y = 0; y < 200; y += 2)
        for (int x = 0; x < 2000; x += 2) page.fill(x, x + 1, y, y + 1);
    for (const int more : {0, 1}) {
        if (more == 1) page.fill(1, 2, 202, 203);
        Bytes target(page.bytes.size());
        EXPECT_EQ(extract_underline(0, 0, 0, 1, 5, 0, page.bytes.data(), target.data(), 204, 250, 0,
                                    2000),
                  1000);
        EXPECT_EQ(target, page.bytes);
    }
}

TEST(Underlines, RefuseWhatCannotBe) {
    Bytes page(8, 0xFF);
    Bytes target(8, 0x5A);
    const auto extract = [&](bool source, bool lines, int height, int stride, int x0, int x1) {
        return extract_underline(0, 0, 2, 2, 3, 1, source ? page.data() : nullptr,
                                 lines ? target.data() : nullptr, height, stride, x0, x1);
    };
    for (const auto& [height, stride, x0, x1, result] : {std::array{0, 4, 0, 32, 0},
                                                         {2, 0, 0, 0, 0},
                                                         {-1, 4, 0, 32, -1},
                                                         {2, -4, 0, 32, -1},
                                                         {2, 4, -1, 32, -1},
                                                         {2, 4, 0, 33, -1},
                                                         {2, 1 << 28, 0, 32, -1}})
        EXPECT_EQ(extract(true, true, height, stride, x0, x1), result);
    EXPECT_EQ(extract(false, true, 2, 4, 0, 32), -1);
    EXPECT_EQ(extract(true, false, 2, 4, 0, 32), -1);
    EXPECT_EQ(target, Bytes(8, 0x5A));
    EXPECT_EQ(extract(true, true, 2, 4, 9, 9), 0);
    EXPECT_EQ(target, page) << "no columns to look in: all candidates stay";
}

}  // namespace

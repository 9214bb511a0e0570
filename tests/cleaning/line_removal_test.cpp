// Line removal: what it takes and what it leaves on drawn rules, zones, and refusals.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "support/random_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Handle = std::unique_ptr<lrm_settings, decltype(&lrm_exit)>;

struct Page {
    int height;
    int width;
    int stride;
    Bytes bytes = Bytes(static_cast<std::size_t>(height) * static_cast<std::size_t>(stride));

    void fill(int x0, int x1, int y0, int y1, bool ink = true) {
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                const int bit = 0x80 >> (x % 8);
                std::uint8_t& byte = bytes[static_cast<std::size_t>(y * stride + x / 8)];
                byte = static_cast<std::uint8_t>(ink ? byte | bit : byte & ~bit);
            }
        }
    }
    int ink(int x0, int x1, int y0, int y1) const {
        int count = 0;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                count += bytes[static_cast<std::size_t>(y * stride + x / 8)] >> (7 - x % 8) & 1;
            }
        }
        return count;
    }
    int ink() const { return ink(0, 8 * stride, 0, height); }

    // The same page with rows and columns exchanged.
    Page transposed() const {
        Page result{width, height, (height + 7) / 8};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (ink(x, x + 1, y, y + 1) != 0) result.fill(y, y + 1, x, x + 1);
            }
        }
        return result;
    }
    Handle handle() {
        return {
            lrm_init_mem(bytes.data(), static_cast<unsigned short>(height),
                         static_cast<unsigned short>(width), static_cast<unsigned short>(stride)),
            lrm_exit};
    }
};

// Removes the horizontal lines, directly and as the vertical lines of the transposed page.
Page without_lines(Page page) {
    Page turned = page.transposed();
    EXPECT_EQ(lrm_do_vert(turned.handle().get()), 0);
    EXPECT_EQ(lrm_do_horz(page.handle().get()), 0);
    EXPECT_EQ(turned.transposed().bytes, page.bytes);
    return page;
}

TEST(LineRemoval, TakesLongThinRulesOnly) {
    struct Case {
        const char* name;
        int length, thickness;
        int gap;  // every 20 pixels
        bool removed;
    };
    for (const Case& c : {Case{"long", 200, 3, 0, true}, Case{"shortest", 128, 3, 0, true},
                          Case{"too short", 127, 3, 0, false}, Case{"thickest", 200, 15, 0, true},
                          Case{"too thick", 200, 16, 0, false}, Case{"gaps of 1", 200, 3, 1, true},
                          Case{"gaps of 2", 200, 3, 2, false}}) {
        SCOPED_TRACE(c.name);
        Page page{60, 240, 30};
        page.fill(20, 20 + c.length, 30, 30 + c.thickness);
        if (c.gap > 0) {
            for (int x = 40; x < 200; x += 20) page.fill(x, x + c.gap, 30, 33, false);
        }
        EXPECT_EQ(without_lines(page).ink(), c.removed ? 0 : page.ink());
    }
}

TEST(LineRemoval, KeepsTheStrokesThatCrossALine) {
    Page page{60, 240, 30};
    page.fill(20, 220, 30, 33);
    page.fill(100, 104, 17, 47);
    const Page cleaned = without_lines(page);
    EXPECT_EQ(cleaned.ink(), 4 * 30);
    EXPECT_EQ(cleaned.ink(100, 104, 17, 47), 4 * 30);
}

TEST(LineRemoval, StaysInsideTheZone) {
    Page page{60, 300, 40};
    page.fill(0, 320, 10, 12);
    page.fill(0, 320, 40, 42);
    const Handle handle = page.handle();
    ASSERT_EQ(lrm_set_zone(handle.get(), 50, 251, 35, 41), 0);
    EXPECT_EQ(lrm_set_zone(handle.get(), 0, 301, 0, 60), -1) << "keeps the zone";
    ASSERT_EQ(lrm_do_horz(handle.get()), 0);
    EXPECT_EQ(page.ink(50, 251, 40, 41), 0);
    EXPECT_EQ(page.ink(), 320 * 4 - 201);
}

TEST(LineRemoval, HandlesAreChecked) {
    Page page{2, 33, 5};
    std::uint8_t* const image = page.bytes.data();
    EXPECT_EQ(lrm_init_mem(image, 2, 33, 4), nullptr);
    for (auto [height, width, stride] :
         {std::array{0, 33, 5}, std::array{0, 0, 0}, std::array{2, 0, 0}}) {
        const Handle empty(
            lrm_init_mem(image, static_cast<unsigned short>(height),
                         static_cast<unsigned short>(width), static_cast<unsigned short>(stride)),
            lrm_exit);
        ASSERT_NE(empty, nullptr);
        EXPECT_EQ(lrm_do_horz(empty.get()), -1);
        EXPECT_EQ(lrm_do_vert(empty.get()), -1);
    }
    const Handle handle = page.handle();
    struct Case {
        unsigned short x0, x1, y0, y1;
        int result;
    };
    for (const Case& c : {Case{0, 33, 0, 2, 0}, Case{0, 34, 0, 2, -1}, Case{0, 33, 0, 3, -1},
                          Case{7, 7, 0, 2, -1}, Case{8, 7, 0, 2, -1}, Case{0, 33, 1, 1, -1},
                          Case{0, 33, 2, 1, -1}, Case{32, 33, 1, 2, 0}}) {
        EXPECT_EQ(lrm_set_zone(handle.get(), c.x0, c.x1, c.y0, c.y1), c.result);
        EXPECT_EQ(lrm_set_zone(nullptr, c.x0, c.x1, c.y0, c.y1), -1);
    }
    for (const auto set :
         {lrm_set_horz_min_length, lrm_set_horz_max_thickness, lrm_set_horz_max_gap,
          lrm_set_horz_dilate, lrm_set_horz_clean_x, lrm_set_horz_clean_y, lrm_set_vert_min_length,
          lrm_set_vert_max_thickness, lrm_set_vert_max_gap, lrm_set_vert_dilate,
          lrm_set_vert_clean_x, lrm_set_vert_clean_y}) {
        EXPECT_EQ(set(nullptr, 1), -1);
        EXPECT_EQ(set(handle.get(), 65535), 0);
        EXPECT_EQ(set(handle.get(), 0), 0);
    }
    EXPECT_EQ(lrm_do_horz(nullptr), -1);
    EXPECT_EQ(lrm_do_vert(nullptr), -1);
    EXPECT_EQ(lrm_exit(nullptr), -1);
}

TEST(CarefulLineRemoval, MendsTheStrokesThatALineCrosses) {
    Page page{60, 240, 30};
    page.fill(20, 220, 30, 33);
    page.fill(100, 104, 20, 45);
    ASSERT_EQ(linerm_h(page.bytes.data(), 60, 240, 30, 6, 100, 5, 60, 2, 1), 0);
    EXPECT_EQ(page.ink(), 4 * 25);
    EXPECT_EQ(page.ink(100, 104, 20, 45), 4 * 25);
}

TEST(CarefulLineRemoval, RefusesImagesThatCannotBe) {
    Bytes bytes(8, 0xFF);
    for (const auto call : {linerm_h, linerm_v}) {
        EXPECT_EQ(call(bytes.data(), 0, 32, 4, 3, 8, 2, 8, 2, 1), -1);
        EXPECT_EQ(call(bytes.data(), 2, 0, 0, 3, 8, 2, 8, 2, 1), -1);
        EXPECT_EQ(call(bytes.data(), 2, 33, 4, 3, 8, 2, 8, 2, 1), -1);
        EXPECT_EQ(call(bytes.data(), -2, 32, 4, 3, 8, 2, 8, 2, 1), -1);
        EXPECT_EQ(call(nullptr, 2, 32, 4, 3, 8, 2, 8, 2, 1), -1);
        EXPECT_EQ(call(bytes.data(), 2, 0, 4, 3, 8, 2, 8, 2, 1), 0);
    }
    EXPECT_EQ(bytes, Bytes(8, 0xFF));
}

}  // namespace

// Underline extraction: drawn lines, its limit of lines, and refusals.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

void draw(Bytes& page, int stride, int x0, int x1, int y) {
    for (int x = x0; x < x1; ++x) {
        page[static_cast<std::size_t>(y * stride + x / 8)] |=
            static_cast<std::uint8_t>(0x80 >> (x % 8));
    }
}

TEST(Underlines, CountTheColumnsThatTheyCover) {
    constexpr int kHeight = 40;
    constexpr int kStride = 16;
    Bytes page(kHeight * kStride);
    Bytes target(page.size(), 0xFF);
    const auto extract = [&] {
        return extract_underline(0, 0, 20, 10, 5, 1, page.data(), target.data(), kHeight, kStride,
                                 0, 128);
    };
    EXPECT_EQ(extract(), 0);
    EXPECT_EQ(target, Bytes(page.size()));

    draw(page, kStride, 10, 60, 8);
    draw(page, kStride, 40, 100, 20);
    const Bytes lines = page;
    draw(page, kStride, 100, 120, 30);                              // too short
    for (int y = 33; y < 39; ++y) draw(page, kStride, 10, 120, y);  // too thick
    EXPECT_EQ(extract(), 90);
    EXPECT_EQ(target, lines);
}

// One line more than are counted: the last one's columns are not, and from then on short lines that
// began after it stay.
TEST(Underlines, BeyondTheLimitAreNotCounted) {
    constexpr int kStride = 250;  // 1,000 lines of 1 pixel a row, every other row
    constexpr int kHeight = 204;
    Bytes page(kHeight * kStride);
    for (int y = 0; y < 200; y += 2) {
        for (int i = 0; i < 1000; ++i) draw(page, kStride, 2 * i, 2 * i + 1, y);
    }
    const auto extract = [&](Bytes& target, int min_extent) {
        return extract_underline(0, 0, min_extent, 1, 5, 0, page.data(), target.data(), kHeight,
                                 kStride, 0, kStride * 8);
    };
    Bytes target(page.size());
    EXPECT_EQ(extract(target, 0), 1000);
    draw(page, kStride, 1, 2, 202);
    EXPECT_EQ(extract(target, 0), 1000);
    EXPECT_EQ(target, page);
}

TEST(Underlines, RefuseWhatCannotBe) {
    Bytes page(8, 0xFF);
    Bytes target(8, 0x5A);
    struct Case {
        int height, stride, x0, x1;
        int result;
    };
    for (const Case& c : {Case{0, 4, 0, 32, 0}, Case{2, 0, 0, 0, 0}, Case{-1, 4, 0, 32, -1},
                          Case{2, -4, 0, 32, -1}, Case{2, 4, -1, 32, -1}, Case{2, 4, 0, 33, -1}}) {
        EXPECT_EQ(extract_underline(0, 0, 2, 2, 2, 1, page.data(), target.data(), c.height,
                                    c.stride, c.x0, c.x1),
                  c.result);
        EXPECT_EQ(target, Bytes(8, 0x5A));
    }
    EXPECT_EQ(extract_underline(0, 0, 2, 2, 2, 1, nullptr, target.data(), 2, 4, 0, 32), -1);
    EXPECT_EQ(extract_underline(0, 0, 2, 2, 2, 1, page.data(), nullptr, 2, 4, 0, 32), -1);
    EXPECT_EQ(extract_underline(0, 0, 2, 2, 3, 1, page.data(), target.data(), 2, 4, 9, 9), 0);
    EXPECT_EQ(target, page) << "no columns to look in: all candidates stay";
}

}  // namespace

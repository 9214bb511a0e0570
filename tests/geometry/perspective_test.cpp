#include <gtest/gtest.h>

#include <climits>

#include "models/perspective_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using model::Corners;

struct PhotoCase {
    int height, width;
    int dst_height, dst_width;
    Corners corners;
};

bool agrees(const Bytes& photo, const PhotoCase& c) {
    return model::perspectives_agree(photo, c.width, c.height, c.dst_width, c.dst_height,
                                     c.corners);
}

// Noise, flat patches with a little of it, or few values: where results lie near whole numbers.
Bytes random_photo(support::Random& random, int height, int width) {
    Bytes photo(std::size_t{3} * static_cast<std::size_t>(height) *
                static_cast<std::size_t>(width));
    const int kind = random.between(0, 2);
    for (std::size_t i = 0; i < photo.size(); ++i) {
        if (kind == 0) photo[i] = random.byte();
        if (kind == 1)
            photo[i] = static_cast<std::uint8_t>(240 + random.between(0, 1) +
                                                 static_cast<int>(i / 64 % 3));
        if (kind == 2) photo[i] = random.chance(0.5) ? 0 : 255;
    }
    return photo;
}

// A quadrilateral around the middle of the image, or anything at all.
Corners random_corners(support::Random& random, int height, int width) {
    const auto near = [&](double part, int size) {
        const int place = static_cast<int>(part * size) + random.between(-size / 6, size / 6);
        return std::clamp(place, 0, size - 1);
    };
    if (random.chance(0.2)) {  // an upright rectangle, where many places are whole numbers
        const int left = random.between(0, width - 1);
        const int right = random.between(left, width - 1);
        const int top = random.between(0, height - 1);
        const int bottom = random.between(top, height - 1);
        return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
    }
    return {{{near(0.1, width), near(0.1, height)},
             {near(0.9, width), near(0.1, height)},
             {near(0.9, width), near(0.9, height)},
             {near(0.1, width), near(0.9, height)}}};
}

TEST(Perspective, EqualsTheModelOnEveryTarget) {
    support::on_every_target([] {
        support::Random random(57);
        for (int i = 0; i < 200; ++i) {
            PhotoCase c{};
            const int longest = i % 8 == 0 ? 300 : 60;
            c.height = random.between(1, longest);
            c.width = random.between(1, longest);
            c.corners = random_corners(random, c.height, c.width);
            c.dst_height = random.between(random.chance(0.1) ? -1 : 1, 100);
            c.dst_width = random.between(0, random.chance(0.2) ? 300 : 100);
            if (random.chance(0.2)) {
                c.dst_width = std::max(1, c.corners[1].x - c.corners[0].x);
                c.dst_height = std::max(1, c.corners[3].y - c.corners[0].y);
            }
            const Bytes photo = random_photo(random, c.height, c.width);
            ASSERT_TRUE(agrees(photo, c)) << i << ": " << c.height << " x " << c.width << " to "
                                          << c.dst_height << " x " << c.dst_width;
        }
    });
}

TEST(Perspective, CornersOutsideTakeTheNearestPixels) {
    support::Random random(58);
    for (int i = 0; i < 100; ++i) {
        PhotoCase c{20, 30, 40, 50, {}};
        for (auto& [x, y] : c.corners.at) {
            x = random.between(-40, 70);
            y = random.between(-40, 60);
        }
        // A parallelogram, so that no place is beyond any int.
        c.corners.at[3] = {c.corners[0].x - c.corners[1].x + c.corners[2].x,
                           c.corners[0].y - c.corners[1].y + c.corners[2].y};
        ASSERT_TRUE(agrees(random_photo(random, c.height, c.width), c)) << i;
    }
}

// Nothing is said of the result but that it is there and that nothing else is touched.
TEST(Perspective, CornersThatMakeNoPageDoNoHarm) {
    constexpr Corners kCorners[] = {
        {{{0, 0}, {0, 0}, {0, 0}, {0, 0}}},
        {{{0, 0}, {5, 5}, {9, 9}, {2, 2}}},
        {{{0, 0}, {9, 9}, {9, 0}, {0, 9}}},
        {{{9, 9}, {0, 0}, {3, 4}, {3, 4}}},
        {{{5, 5}, {9, 0}, {6, 5}, {9, 9}}},
        {{{INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MAX}}},
        {{{INT_MIN, INT_MAX}, {INT_MAX, 3}, {0, INT_MIN}, {1, INT_MIN}}},
    };
    support::on_every_target([&] {
        for (const Corners& corners : kCorners) {
            Bytes src(300, 255);
            Bytes dst(33 * 70 * 3 + 64, 0x5C);
            Bytes expected(33 * 70 * 3, 255);  // all pixels of the image are white
            expected.resize(dst.size(), 0x5C);
            const auto& [p0, p1, p2, p3] = corners.at;
            EXPECT_EQ(perspective_transformation_color(src.data(), dst.data(), 10, 10, 70, 33, p0.x,
                                                       p0.y, p1.x, p1.y, p2.x, p2.y, p3.x, p3.y),
                      0);
            EXPECT_EQ(dst, expected);
        }
    });
}

TEST(Perspective, NullPointersAndEmptyImages) {
    Bytes src(12, 200);
    Bytes dst(12, 7);
    const auto call = [](unsigned char* from, unsigned char* to, int width, int dst_width) {
        return perspective_transformation_color(from, to, width, 2, dst_width, 2, 0, 0, 1, 0, 1, 1,
                                                0, 1);
    };
    EXPECT_EQ(call(nullptr, dst.data(), 2, 2), -1);
    EXPECT_EQ(call(src.data(), nullptr, 2, 2), -1);
    EXPECT_EQ(call(nullptr, nullptr, 0, 2), 0);
    EXPECT_EQ(src, Bytes(12, 200));
    EXPECT_EQ(dst, Bytes(12, 7));
    EXPECT_EQ(call(src.data(), nullptr, 2, 0), 0);
    EXPECT_EQ(src, (Bytes{200, 128, 128, 200, 128, 128, 200, 128, 128, 200, 128, 128}));
}

TEST(PageCorners, OrderAndSizeEqualTheModel) {
    support::Random random(59);
    for (int i = 0; i < 20000; ++i) {
        const int longest = i % 2 == 0 ? 3 : 32767;
        Corners corners;
        for (auto& [x, y] : corners.at) {
            x = random.between(0, longest);
            y = random.between(0, longest);
        }
        ASSERT_TRUE(model::corner_orders_agree(corners)) << i;
        ASSERT_TRUE(model::perspective_sizes_agree(corners)) << i;
    }
}

TEST(PageCorners, OrderOfATurnedPage) {
    // The lower left corner is left of the upper left one.
    int x[] = {90, 3, 98, 0};
    int y[] = {4, 60, 70, 5};
    x[3] = 8;
    EXPECT_EQ(check_points_order(&x[0], &y[0], &x[1], &y[1], &x[2], &y[2], &x[3], &y[3]), 0);
    EXPECT_EQ(std::vector(x, x + 4), (std::vector{8, 90, 98, 3}));
    EXPECT_EQ(std::vector(y, y + 4), (std::vector{5, 4, 70, 60}));
}

TEST(PageCorners, NullPointersAndDistancesBeyond32Bits) {
    int x = 1;
    int height = -5;
    int width = -6;
    EXPECT_EQ(check_points_order(&x, &x, &x, &x, &x, &x, &x, nullptr), -1);
    EXPECT_EQ(give_appropriate_height_and_width(0, 0, 9, 0, 9, 9, 0, 9, nullptr, &width), -1);
    EXPECT_EQ(give_appropriate_height_and_width(0, 0, 9, 0, 9, 9, 0, 9, &height, nullptr), -1);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(height, -5);
    EXPECT_EQ(width, -6);
    EXPECT_EQ(give_appropriate_height_and_width(0, 0, 46341, 0, 0, 9, 0, 9, &height, &width), -1);
    EXPECT_EQ(height, -1);
    EXPECT_EQ(width, -1);
    EXPECT_EQ(give_appropriate_height_and_width(INT_MIN, 0, INT_MAX, 0, INT_MAX, 9, INT_MIN, 9,
                                                &height, &width),
              -1);
    EXPECT_EQ(height, 9);
    EXPECT_EQ(width, -1);
}

}  // namespace

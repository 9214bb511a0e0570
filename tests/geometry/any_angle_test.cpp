#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "models/any_angle_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using model::AngleSizes;

struct AngleCase : AngleSizes {
    double angle;

    bool copies() const { return angle == 0; }
    bool quarter_turn() const { return model::quarter_turns(angle) % 2 == 1; }
};

std::ostream& operator<<(std::ostream& out, const AngleCase& c) {
    return out << c.height << " x " << c.width << ", " << c.stride << " to " << c.dst_height
               << " x " << c.dst_width << ", " << c.dst_stride << " by " << c.angle;
}

// Bytes of a page whose last row ends with its pixels, unless all of its bytes are copied.
std::size_t page_bytes(const AngleCase& c, int row_bytes) {
    return static_cast<std::size_t>((c.height - 1) * c.stride +
                                    (c.copies() ? c.stride : row_bytes));
}

bool pixels_agree(int pixel_bytes, const Bytes& src, const AngleCase& c) {
    const std::uint8_t background[] = {1, 2, 3, 4, 5, 6, 7};
    return model::colour_angles_agree(pixel_bytes, background, src, c, c.angle);
}

constexpr double kFirstAngles[] = {0,    90,       -90,  180,    -180,     270,   -270,   -0.0,
                                   1e-9, 90.00001, 89.9, 359.99, -359.999, 179.9, 1e-300, 0.003};

double random_angle(support::Random& random) {
    if (random.chance(0.4)) {
        const auto last = static_cast<int>(std::size(kFirstAngles)) - 1;
        return kFirstAngles[random.between(0, last)];
    }
    if (random.chance(0.3)) return random.between(-3000, 3000) / 300.0;
    return random.between(-359999, 359999) / 1000.0;
}

// Destinations of the turned size, a little off it, or of any size.
AngleCase random_case(support::Random& random, int longest) {
    AngleCase c{};
    c.angle = random_angle(random);
    c.height = random.between(1, random.chance(0.3) ? 4 : longest);
    c.width = random.between(1, random.chance(0.3) ? 4 : longest);
    rotate_image_dim(c.height, c.width, &c.dst_height, &c.dst_width, c.angle);
    if (random.chance(0.2)) c.dst_height += random.between(-3, 3);
    if (random.chance(0.2)) c.dst_width += random.between(-3, 3);
    if (random.chance(0.2)) c.dst_width = random.between(-1, 2 * longest);
    return c;
}

TEST(AnyAngle, BitonalEqualsTheModelOnEveryTarget) {
    support::on_every_target([] {
        support::Random random(53);
        for (std::uint32_t i = 0; i < 150; ++i) {
            AngleCase c = random_case(random, i % 8 == 0 ? 700 : 130);
            const bool wide = random.chance(0.5);
            c.stride = model::word_stride(c.width) + (wide ? 4 * random.between(0, 5) : 0);
            c.dst_stride = c.copies() || !(wide || c.quarter_turn())
                               ? c.stride
                               : model::word_stride(c.dst_width);
            if (c.dst_stride < model::word_stride(c.dst_width) || (wide && random.chance(0.3)))
                c.dst_stride = model::word_stride(c.dst_width) + random.between(0, 9);
            Bytes src = support::random_bitonal(c.height, static_cast<std::size_t>(c.stride),
                                                random.chance(0.5) ? 0.5 : 0.9, i);
            src.resize(page_bytes(c, (c.width + 7) / 8));
            ASSERT_TRUE(model::bitonal_angles_agree(src, c, c.angle)) << i << ": " << c;
        }
    });
}

TEST(AnyAngle, PixelsEqualTheModelOnEveryTarget) {
    support::on_every_target([] {
        support::Random random(54);
        for (std::uint32_t i = 0; i < 200; ++i) {
            AngleCase c = random_case(random, i % 8 == 0 ? 400 : 90);
            const int pixel_bytes = i % 10 == 9 ? random.between(1, 7) : 1 + "\0\2\3"[i % 3];
            c.stride = pixel_bytes * c.width + random.between(0, 9);
            c.dst_stride = c.copies()
                               ? c.stride
                               : pixel_bytes * std::max(c.dst_width, 0) + random.between(0, 9);
            const Bytes src = support::random_bytes(page_bytes(c, pixel_bytes * c.width), i);
            ASSERT_TRUE(pixels_agree(pixel_bytes, src, c))
                << i << ": " << pixel_bytes << " bytes, " << c;
        }
    });
}

TEST(AnyAngle, SizesEqualTheModel) {
    for (const double angle : kFirstAngles)
        EXPECT_TRUE(model::angle_sizes_agree(3508, 2480, angle));
    support::Random random(55);
    for (int i = 0; i < 2000; ++i) {
        const double angle = random_angle(random);
        const int height = random.between(0, 32767);
        const int width = random.between(0, 32767);
        ASSERT_TRUE(model::angle_sizes_agree(height, width, angle))
            << height << " x " << width << " by " << angle;
    }
}

// The longest sides that 32-bit positions hold, one row or column of them at a time.
TEST(AnyAngle, LongSidesEqualTheModel) {
    constexpr int kLong = 32767;
    for (const double angle : {0.02, 45.0, 89.98, 137.0, -300.0}) {
        for (const auto& [height, width] : {std::pair{kLong, 3}, {3, kLong}}) {
            AngleCase c{{height, width, 2 * width, kLong, 2, 9}, angle};
            const Bytes src =
                support::random_bytes(static_cast<std::size_t>(2 * width * height), 3);
            EXPECT_TRUE(pixels_agree(1, src, c)) << angle;
            c = {{height, width, 2 * width, 2, kLong, kLong}, angle};
            EXPECT_TRUE(pixels_agree(1, src, c)) << angle;
            c = {{height, width, model::word_stride(width), 5, kLong, 4096}, angle};
            EXPECT_TRUE(model::bitonal_angles_agree(src, c, c.angle)) << angle;
        }
    }
}

TEST(AnyAngle, RejectionsWriteNothing) {
    const Bytes src(4096, 0xFF);
    support::GuardedBuffer dst(4096);
    const Bytes before = dst.contents();
    const double no_angle = std::nan("");
    const double wide = 1.0 / 0.0;
    const struct {
        const char* what;
        AngleCase c;  // for both functions, one byte per pixel
    } cases[] = {
        {"a whole turn", {{20, 20, 20, 20, 20, 20}, 360}},
        {"a whole turn back", {{20, 20, 20, 20, 20, 20}, -360}},
        {"no number", {{20, 20, 20, 20, 20, 20}, no_angle}},
        {"infinity", {{20, 20, 20, 20, 20, 20}, wide}},
        {"stride below the width", {{8, 300, 8, 20, 20, 20}, 7}},
        {"destination stride below the width", {{20, 20, 20, 9, 300, 8}, 7}},
        {"copy to another height", {{20, 20, 20, 21, 20, 20}, 0}},
        {"copy to another stride", {{20, 20, 20, 20, 20, 24}, 0}},
        {"half turn to another width", {{20, 20, 20, 20, 19, 20}, 180}},
        {"quarter turn to the size of the source", {{10, 20, 20, 10, 20, 20}, -270}},
        {"width beyond any stride", {{4, INT_MAX, 20, 20, 20, 20}, 3}},
    };
    for (const auto& [what, c] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(rotate_bitonal(src.data(), c.height, c.width, c.stride, dst.data(), c.dst_height,
                                 c.dst_width, c.dst_stride, c.angle),
                  -1);
        EXPECT_EQ(rotate_color(1, src.data(), src.data(), c.height, c.width, c.stride, dst.data(),
                               c.dst_height, c.dst_width, c.dst_stride, c.angle),
                  -1);
    }
    int height = -5;
    int width = -6;
    EXPECT_EQ(rotate_image_dim(10, 10, &height, &width, 360), -1);
    EXPECT_EQ(rotate_image_dim(10, 10, &height, &width, no_angle), -1);
    EXPECT_EQ(rotate_image_dim(INT_MAX, INT_MAX, &height, &width, 45), -1);
    EXPECT_EQ(rotate_image_dim(10, 10, nullptr, &width, 45), -1);
    EXPECT_EQ(rotate_image_dim(10, 10, &height, nullptr, 45), -1);
    EXPECT_EQ(height, -5);
    EXPECT_EQ(width, -6);

    // Of the bitonal turns alone: strides that its right angles refuse.
    EXPECT_EQ(rotate_bitonal(src.data(), 10, 20, 4, dst.data(), 20, 10, 8, 90), -1);
    EXPECT_EQ(rotate_bitonal(src.data(), 10, 20, 4, dst.data(), 10, 20, 8, 180), -1);
    EXPECT_EQ(rotate_bitonal(src.data(), 10, 20, 6, dst.data(), 10, 20, 6, 180), -1);
    // Bytes per pixel that blending does not take, even into nothing.
    for (const int pixel_bytes : {0, -1, 2, 5}) {
        EXPECT_EQ(
            rotate_color(pixel_bytes, src.data(), src.data(), 4, 4, 40, dst.data(), 0, 4, 40, 30),
            -1);
    }
    for (const double angle : {0.0, 7.0, 90.0, 180.0}) {
        EXPECT_EQ(rotate_bitonal(nullptr, 8, 8, 4, dst.data(), 8, 8, 4, angle), -1);
        EXPECT_EQ(rotate_bitonal(src.data(), 8, 8, 4, nullptr, 8, 8, 4, angle), -1);
        EXPECT_EQ(rotate_color(1, src.data(), nullptr, 8, 8, 8, dst.data(), 8, 8, 8, angle), -1);
        EXPECT_EQ(rotate_color(1, src.data(), src.data(), 8, 8, 8, nullptr, 8, 8, 8, angle), -1);
    }
    EXPECT_EQ(rotate_color(1, nullptr, src.data(), 8, 8, 8, dst.data(), 8, 8, 8, 7), -1);
    EXPECT_EQ(dst.contents(), before);
}

TEST(AnyAngle, PagesWithoutPixelsAreBackground) {
    Bytes dst(40, 7);
    const std::uint8_t background = 200;
    EXPECT_EQ(rotate_color(1, &background, nullptr, 0, 5, 5, dst.data(), 4, 10, 10, 30), 0);
    EXPECT_EQ(dst, Bytes(40, 200));
    EXPECT_EQ(rotate_color(1, nullptr, nullptr, 5, 5, 5, nullptr, 0, 10, 10, 30), 0);
    EXPECT_EQ(rotate_bitonal(nullptr, -3, 5, 4, dst.data(), 5, 0, 8, 30), 0);
    EXPECT_EQ(dst, Bytes(40, 0));
}

}  // namespace

#include <gtest/gtest.h>

#include <climits>

#include "models/rotation_comparison.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "vemoprepro/geometry.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr unsigned kUntouched = 0xDEADBEEF;

struct Shape {
    int width, height, stride;
};

std::size_t demanded_size(int mode, const Shape& shape) {
    const int size = mode == PREPRO_TURN_HALF
                         ? shape.height * shape.stride
                         : shape.stride / 4 * model::ceil_div(shape.height, 32) * 128;
    return static_cast<std::size_t>(size);
}

auto function_of(int mode) {
    return mode == PREPRO_TURN_HALF        ? kyd_rotate_180
           : mode == PREPRO_TURN_CLOCKWISE ? kyd_rotate_090
                                           : kyd_rotate_270;
}

// The source ends with the last row's pixels, behind which the sanitizer watches.
void expect_as_model(const Shape& shape, std::uint32_t seed) {
    Bytes src =
        support::random_bitonal(shape.height, static_cast<std::size_t>(shape.stride), 0.4, seed);
    src.resize(static_cast<std::size_t>((shape.height - 1) * shape.stride + (shape.width + 7) / 8));
    for (const int mode : {1, 2, 3}) {
        ASSERT_TRUE(model::bitonal_turns_agree(mode, src, shape.height, shape.width, shape.stride,
                                               static_cast<int>(demanded_size(mode, shape))))
            << "code " << mode << ", " << shape.width << " x " << shape.height << ", "
            << shape.stride;
    }
}

// Around every boundary: bytes, words, 64-bit blocks, vectors, tiles of 512; strides with 0 to
// thousands of padding bits.
constexpr Shape kShapes[] = {
    {1, 1, 4},      {1, 1, 400},    {8, 33, 4},     {10, 7, 400},   {31, 32, 4},   {32, 31, 4},
    {32, 32, 4},    {33, 65, 8},    {63, 64, 8},    {64, 63, 12},   {65, 129, 12}, {1, 513, 4},
    {513, 1, 68},   {512, 64, 64},  {511, 512, 64}, {520, 512, 68}, {7, 1030, 64}, {1030, 3, 132},
    {257, 255, 36}, {250, 600, 32}, {600, 250, 80}, {127, 3, 16},   {129, 3, 20},  {1025, 9, 132},
};

TEST(RightAngle, BitonalEqualsTheModelOnEveryTarget) {
    support::on_every_target([] {
        for (const Shape& shape : kShapes) {
            expect_as_model(shape, static_cast<std::uint32_t>(shape.width));
        }
    });
    support::Random random(51);
    for (std::uint32_t i = 0; i < 200; ++i) {
        const int width = random.between(1, random.chance(0.1) ? 1200 : 140);
        const int height = random.between(1, random.chance(0.1) ? 1200 : 140);
        expect_as_model({width, height, model::word_stride(width) + 4 * random.between(0, 4)}, i);
    }
}

TEST(RightAngle, TheUpperLeftCornerGoesWhereItsTurnTakesIt) {
    const Shape shape{40, 30, 8};
    Bytes src(30 * 8);
    src[0] = 0x80;
    const int corners[][2] = {{0, 39}, {39, 29}, {29, 0}};  // x, y by code
    for (const int mode : {1, 2, 3}) {
        const auto& [x, y] = corners[mode - 1];
        Bytes dst(demanded_size(mode, shape));
        unsigned stride = kUntouched;
        EXPECT_EQ(function_of(mode)(src.data(), shape.width, shape.height, shape.stride, dst.data(),
                                    static_cast<int>(dst.size()), &stride),
                  0);
        EXPECT_TRUE(model::get_bit(dst.data(), static_cast<int>(stride), x, y));
    }
}

TEST(RightAngle, BitonalRejections) {
    Bytes src(64 * 8, 0xFF);
    support::GuardedBuffer dst(512);
    const Bytes before = dst.contents();
    unsigned stride = kUntouched;
    const struct {
        const char* what;
        int mode, width, height, stride, dst_size;
    } cases[] = {
        {"half turn into one byte too few", 2, 60, 33, 8, 33 * 8 - 1},
        {"counter-clockwise into one byte too few", 1, 60, 33, 8, 511},
        {"clockwise into one byte too few", 3, 60, 33, 8, 511},
        {"room for the result but not for the work area", 1, 1, 1, 4, 4},
        {"size of nothing", 2, 60, 33, 8, 0},
        {"negative size", 3, 60, 33, 8, -1},
        {"stride not of whole words", 2, 10, 10, 6, 512},
        {"stride not of whole words", 1, 10, 10, 6, 512},
        {"stride below the width", 2, 65, 4, 8, 512},
        {"stride below the width", 3, 65, 4, 8, 512},
        {"no stride", 1, 1, 1, 0, 512},
        {"negative stride", 2, 1, 1, -4, 512},
        {"no width", 2, 0, 4, 8, 512},
        {"negative height", 1, 4, -1, 8, 512},
        {"half turn beyond 32 bits", 2, 32, INT_MAX, 4, 512},
        {"quarter turn beyond 32 bits", 1, 32, INT_MAX, INT_MAX - 3, INT_MAX},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(function_of(c.mode)(src.data(), c.width, c.height, c.stride, dst.data(),
                                      c.dst_size, &stride),
                  -1);
        EXPECT_EQ(kyd_rotate_bitmap(c.mode, src.data(), c.height, c.width, c.stride, dst.data(),
                                    c.dst_size, &stride),
                  -1);
    }
    for (const int mode : {1, 2, 3}) {
        const auto function = function_of(mode);
        EXPECT_EQ(function(nullptr, 8, 8, 4, dst.data(), 512, &stride), -1);
        EXPECT_EQ(function(src.data(), 8, 8, 4, nullptr, 512, &stride), -1);
        EXPECT_EQ(function(src.data(), 8, 8, 4, dst.data(), 512, nullptr), -1);
    }
    // Other codes than those of the turns do nothing; one of them fails.
    for (const int mode : {0, -1, 5, 90, INT_MAX}) {
        EXPECT_EQ(kyd_rotate_bitmap(mode, src.data(), 1, 1, 4, dst.data(), 512, &stride), 0);
        EXPECT_EQ(kyd_rotate_bitmap(mode, nullptr, 0, 0, 3, nullptr, 0, nullptr), 0);
    }
    EXPECT_EQ(kyd_rotate_bitmap(4, src.data(), 1, 1, 4, dst.data(), 512, &stride), -1);
    EXPECT_EQ(dst.contents(), before);
    EXPECT_EQ(stride, kUntouched);
}

TEST(RightAngle, PackedEqualsTheModelOnEveryTarget) {
    constexpr int kSizes[][2] = {{1, 1},   {1, 70},   {70, 1},    {5, 6},    {6, 5},    {16, 16},
                                 {17, 64}, {64, 15},  {65, 66},   {63, 130}, {130, 63}, {18, 300},
                                 {6, 300}, {300, 18}, {129, 257}, {20, 21},  {21, 20}};
    support::on_every_target([&] {
        for (const auto& [height, width] : kSizes) {
            for (const int pixel_bytes : {1, 2, 3, 4, 5, 8, 17}) {
                const auto size = static_cast<std::size_t>(height * width * pixel_bytes);
                const Bytes src = support::random_bytes(size, static_cast<std::uint32_t>(size));
                for (const int mode : {1, 2, 3}) {
                    ASSERT_TRUE(model::packed_turns_agree(mode, pixel_bytes, src, height, width))
                        << "code " << mode << ", " << height << " x " << width << " x "
                        << pixel_bytes;
                }
            }
        }
    });
}

TEST(RightAngle, PackedRejectionsAndEmptyImages) {
    const Bytes src(64, 1);
    Bytes dst(64, 7);
    int height = -5;
    int width = -6;
    for (const int mode : {0, 4, -1, INT_MAX}) {
        EXPECT_EQ(kyd_rotate_color(mode, 1, src.data(), 2, 2, dst.data(), &height, &width), -1);
        EXPECT_EQ(kyd_rotate_color(mode, 1, src.data(), 0, 2, dst.data(), &height, &width), -1);
    }
    EXPECT_EQ(kyd_rotate_color(1, 1, nullptr, 2, 2, dst.data(), &height, &width), -1);
    EXPECT_EQ(kyd_rotate_color(2, 1, src.data(), 2, 2, nullptr, &height, &width), -1);
    EXPECT_EQ(kyd_rotate_color(3, 0, src.data(), 2, 2, dst.data(), &height, &width), -1);
    EXPECT_EQ(kyd_rotate_color(3, 1, src.data(), 2, 2, dst.data(), nullptr, &width), -1);
    EXPECT_EQ(kyd_rotate_color(3, 1, src.data(), 2, 2, dst.data(), &height, nullptr), -1);
    EXPECT_EQ(height, -5);
    EXPECT_EQ(width, -6);

    const int empty[][4] = {{1, 1, 0, 9}, {2, 0, 4, -3}, {3, 3, -2, 7}};
    for (const auto& [mode, pixel_bytes, rows, columns] : empty) {
        EXPECT_EQ(
            kyd_rotate_color(mode, pixel_bytes, nullptr, rows, columns, nullptr, &height, &width),
            0);
        EXPECT_EQ(height, mode == 2 ? rows : columns);
        EXPECT_EQ(width, mode == 2 ? columns : rows);
    }
    EXPECT_EQ(dst, Bytes(64, 7));
}

}  // namespace

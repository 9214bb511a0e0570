#include <gtest/gtest.h>

#include "models/rotation_model.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "vemoprepro/geometry.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using BitonalTurn = decltype(&kyd_rotate_180);

constexpr unsigned kUntouched = 0xDEADBEEF;

std::size_t demanded_size(int mode, int height, int stride) {
    const int size =
        mode == PREPRO_TURN_HALF ? height * stride : stride / 4 * model::ceil_div(height, 32) * 128;
    return static_cast<std::size_t>(size);
}

BitonalTurn function_of(int mode) {
    return mode == PREPRO_TURN_HALF        ? kyd_rotate_180
           : mode == PREPRO_TURN_CLOCKWISE ? kyd_rotate_090
                                           : kyd_rotate_270;
}

struct Turned {
    Bytes rows;  // the result without work area
    unsigned stride;
};

// Turns from a source that ends with the last row's pixels, behind which the sanitizer watches, to
// a destination of exactly the demanded size, and checks what is around it.
Turned turn(int mode, const Bytes& src, int width, int height, int stride) {
    const Bytes exact(src.begin(), src.begin() + (height - 1) * stride + (width + 7) / 8);
    support::GuardedBuffer dst(demanded_size(mode, height, stride));
    unsigned out_stride = kUntouched;
    EXPECT_EQ(function_of(mode)(exact.data(), width, height, stride, dst.data(),
                                static_cast<int>(dst.size()), &out_stride),
              0);
    EXPECT_TRUE(dst.guards_intact());
    Bytes rows = dst.contents();
    const auto out_height = static_cast<std::size_t>(mode == PREPRO_TURN_HALF ? height : width);
    rows.resize(out_height * out_stride);
    return {rows, out_stride};
}

Bytes model_rows(int mode, const Bytes& src, int width, int height, int stride) {
    Bytes dst(demanded_size(mode, height, stride));
    unsigned out_stride = 0;
    model::kyd_rotate_bitmap(mode, src.data(), height, width, stride, dst.data(),
                             static_cast<int>(dst.size()), &out_stride);
    dst.resize(static_cast<std::size_t>(mode == PREPRO_TURN_HALF ? height : width) * out_stride);
    return dst;
}

struct Shape {
    int width, height, stride;
};

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
        for (const auto& [width, height, stride] : kShapes) {
            const Bytes src = support::random_bitonal(height, static_cast<std::size_t>(stride), 0.5,
                                                      static_cast<std::uint32_t>(width));
            for (const int mode : {1, 2, 3}) {
                ASSERT_EQ(turn(mode, src, width, height, stride).rows,
                          model_rows(mode, src, width, height, stride))
                    << "code " << mode << ", " << width << " x " << height << ", " << stride;
            }
        }
    });
}

TEST(RightAngle, BitonalSizesAtRandom) {
    support::Random random(51);
    for (int i = 0; i < 200; ++i) {
        const int width = random.between(1, random.chance(0.1) ? 1200 : 140);
        const int height = random.between(1, random.chance(0.1) ? 1200 : 140);
        const int stride = model::word_stride(width) + 4 * random.between(0, 4);
        const Bytes src = support::random_bitonal(height, static_cast<std::size_t>(stride), 0.3,
                                                  static_cast<std::uint32_t>(i));
        for (const int mode : {1, 2, 3}) {
            ASSERT_EQ(turn(mode, src, width, height, stride).rows,
                      model_rows(mode, src, width, height, stride))
                << "code " << mode << ", " << width << " x " << height << ", " << stride;
        }
    }
}

TEST(RightAngle, FourQuarterTurnsAreTheIdentity) {
    const int width = 203;
    const int height = 77;
    Bytes page = support::random_bitonal(height, 28, 0.5, 9);
    for (int y = 0; y < height; ++y) page[static_cast<std::size_t>(28 * y + 25)] &= 0xE0;
    for (int y = 0; y < height; ++y) {
        for (std::size_t x : {26U, 27U}) page[static_cast<std::size_t>(28 * y) + x] = 0;
    }
    for (const int mode : {1, 3}) {
        Turned turned{page, 28};
        for (int quarter = 0; quarter < 4; ++quarter) {
            const bool upright = quarter % 2 == 0;
            turned = turn(mode, turned.rows, upright ? width : height, upright ? height : width,
                          static_cast<int>(turned.stride));
        }
        EXPECT_EQ(turned.rows, page);
    }
}

TEST(RightAngle, BitonalRejections) {
    Bytes src(64 * 8, 0xFF);
    struct Case {
        const char* what;
        int mode, width, height, stride, dst_size;
    };
    const Case cases[] = {
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
        {"half turn beyond 32 bits", 2, 32, 2147483647, 4, 512},
        {"quarter turn beyond 32 bits", 1, 32, 2147483647, 2147483644, 2147483647},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        support::GuardedBuffer dst(512);
        const Bytes before = dst.contents();
        unsigned stride = kUntouched;
        EXPECT_EQ(function_of(c.mode)(src.data(), c.width, c.height, c.stride, dst.data(),
                                      c.dst_size, &stride),
                  -1);
        EXPECT_EQ(kyd_rotate_bitmap(c.mode, src.data(), c.height, c.width, c.stride, dst.data(),
                                    c.dst_size, &stride),
                  -1);
        EXPECT_EQ(dst.contents(), before);
        EXPECT_EQ(stride, kUntouched);
    }
    unsigned stride = kUntouched;
    Bytes dst(512);
    for (const int mode : {1, 2, 3}) {
        const BitonalTurn function = function_of(mode);
        EXPECT_EQ(function(nullptr, 8, 8, 4, dst.data(), 512, &stride), -1);
        EXPECT_EQ(function(src.data(), 8, 8, 4, nullptr, 512, &stride), -1);
        EXPECT_EQ(function(src.data(), 8, 8, 4, dst.data(), 512, nullptr), -1);
    }
    EXPECT_EQ(stride, kUntouched);
}

TEST(RightAngle, BitmapDispatcher) {
    const Bytes src = support::random_bytes(12 * 40, 3);
    for (const int mode : {1, 2, 3}) {
        Bytes dst(demanded_size(mode, 40, 12));
        unsigned stride = 0;
        ASSERT_EQ(kyd_rotate_bitmap(mode, src.data(), 40, 70, 12, dst.data(),
                                    static_cast<int>(dst.size()), &stride),
                  0);
        const Turned expected = turn(mode, src, 70, 40, 12);
        dst.resize(expected.rows.size());
        EXPECT_EQ(dst, expected.rows);
        EXPECT_EQ(stride, expected.stride);
    }
    unsigned stride = kUntouched;
    Bytes dst(512, 7);
    for (const int mode : {0, -1, 5, 90, 2147483647}) {
        EXPECT_EQ(kyd_rotate_bitmap(mode, src.data(), 1, 1, 4, dst.data(), 512, &stride), 0);
        EXPECT_EQ(kyd_rotate_bitmap(mode, nullptr, 0, 0, 3, nullptr, 0, nullptr), 0);
    }
    EXPECT_EQ(kyd_rotate_bitmap(4, src.data(), 1, 1, 4, dst.data(), 512, &stride), -1);
    EXPECT_EQ(dst, Bytes(512, 7));
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
                    SCOPED_TRACE(::testing::Message() << "code " << mode << ", " << height << " x "
                                                      << width << " x " << pixel_bytes);
                    support::GuardedBuffer dst(size);
                    Bytes expected(size);
                    int out[2] = {-1, -1};
                    int expected_out[2] = {-2, -2};
                    model::kyd_rotate_color(mode, pixel_bytes, src.data(), height, width,
                                            expected.data(), &expected_out[0], &expected_out[1]);
                    ASSERT_EQ(kyd_rotate_color(mode, pixel_bytes, src.data(), height, width,
                                               dst.data(), &out[0], &out[1]),
                              0);
                    ASSERT_EQ(dst.contents(), expected);
                    ASSERT_TRUE(dst.guards_intact());
                    EXPECT_EQ(out[0], expected_out[0]);
                    EXPECT_EQ(out[1], expected_out[1]);
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
    for (const int mode : {0, 4, -1, 2147483647}) {
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

    EXPECT_EQ(kyd_rotate_color(1, 1, nullptr, 0, 9, nullptr, &height, &width), 0);
    EXPECT_EQ(height, 9);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(kyd_rotate_color(2, 0, nullptr, 4, -3, nullptr, &height, &width), 0);
    EXPECT_EQ(height, 4);
    EXPECT_EQ(width, -3);
    EXPECT_EQ(kyd_rotate_color(3, 3, src.data(), -2, 7, dst.data(), &height, &width), 0);
    EXPECT_EQ(height, 7);
    EXPECT_EQ(width, -2);
    EXPECT_EQ(dst, Bytes(64, 7));
}

}  // namespace

// What the bitonal deskew rotations refuse, in which order, and what they leave behind when they
// fail.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "deskew/bitonal_rotation.h"
#include "rotation_support.h"

namespace {

using namespace rotation_test;

using Rotation = int (*)(int, int, unsigned char*, int, int, int, unsigned char*, int, int, int,
                         prepro_progress);

int own(int skew, int scale, unsigned char* src, int h, int w, int stride, unsigned char* dst,
        int oh, int ow, int ostride, prepro_progress progress) {
    return skrotbmp_mem(skew, scale, src, h, w, stride, dst, oh, ow, ostride, progress);
}

int aligned(int skew, int scale, unsigned char* src, int h, int w, int stride, unsigned char* dst,
            int oh, int ow, int ostride, prepro_progress progress) {
    return skew_binary_image_aligned_with_skrotimg_mem(skew, scale, src, h, w, stride, dst, oh, ow,
                                                       ostride, progress);
}

const struct {
    const char* name;
    Rotation rotation;
    int too_small;  // result for a destination that is smaller than the page
} kRotations[] = {
    {"own", own, -2},
    {"own, complement", skrotbmp_b_mem, -2},
    {"aligned", aligned, -1},
    {"aligned, complement", skew_binary_image_aligned_with_skrotimg_mem_black_background, -1}};

TEST(RotationSize, KnownSizesAndRefusals) {
    const struct {
        int skew, scale, height, width, status, out_height, out_width;
    } cases[] = {
        {10, 512, 1000, 2000, 0, 1040, 2019},
        {-10, 512, 1000, 2000, 0, 1040, 2019},
        {20, 512, 1000, 2000, 0, 1080, 2039},
        {96, 512, 100, 31, 0, 112, 49},
        {0, 512, 77, 33, 0, 77, 33},
        {0, 0, 77, 33, 0, 77, 33},
        {97, 512, 10, 10, -1, 5, 6},
        {-97, 512, 10, 10, -1, 5, 6},
        {194, 1024, 10, 10, -1, 5, 6},
        {193, 1024, 512, 10, 0, 536, 106},
        {1, 0, 10, 10, -1, 5, 6},
        {INT_MIN, 1, 10, 10, -1, 5, 6},
        {INT_MAX, -1, 10, 10, -1, 5, 6},
        {96, 512, 10, INT_MAX, -1, 5, 6},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(::testing::Message() << test.skew << '/' << test.scale);
        int height = 5;
        int width = 6;
        EXPECT_EQ(skrotbmp_dim(test.skew, test.scale, test.height, test.width, &height, &width),
                  test.status);
        EXPECT_EQ(height, test.out_height);
        EXPECT_EQ(width, test.out_width);
    }
    int size = 7;
    EXPECT_EQ(skrotbmp_dim(10, 512, 10, 10, nullptr, &size), -1);
    EXPECT_EQ(skrotbmp_dim(10, 512, 10, 10, &size, nullptr), -1);
    EXPECT_EQ(size, 7);
}

// A call on a page of 40 x 60 and a destination of 60 x 90 with one thing or more wrong with it.
struct Wrong {
    const char* what;
    int status;  // -3 stands for the rotation's own too_small
    int skew = 20, scale = 512;
    bool src = true, dst = true;
    int height = 40, width = 60, stride = 8;
    int out_height = 60, out_width = 90, out_stride = 12;
};

TEST(RotationChecks, RefusalsInOrderAndWithoutATrace) {
    const Wrong cases[] = {
        {.what = "source stride", .status = -2, .stride = 7},
        {.what = "source stride of whole bytes only", .status = -2, .width = 65, .stride = 9},
        {.what = "destination stride", .status = -2, .out_stride = 11},
        {.what = "stride before null", .status = -2, .src = false, .dst = false, .stride = 4},
        {.what = "stride before skew", .status = -2, .skew = 97, .out_stride = 8},
        {.what = "stride before size", .status = -2, .stride = 4, .out_height = 1},
        {.what = "zero stride", .status = -2, .stride = 0},
        {.what = "negative stride", .status = -2, .out_stride = -12},
        {.what = "no source", .status = -1, .src = false},
        {.what = "no destination", .status = -1, .dst = false},
        {.what = "no rows", .status = -1, .height = 0},
        {.what = "no columns", .status = -1, .width = 0},
        {.what = "negative rows", .status = -1, .height = -40},
        {.what = "all negative", .status = -1, .height = -4, .width = -6, .stride = 0},
        {.what = "skew above", .status = -1, .skew = 97},
        {.what = "skew below", .status = -1, .skew = -97},
        {.what = "far too steep", .status = -1, .skew = INT_MIN, .scale = 1},
        {.what = "product beyond 32 bits", .status = -1, .skew = 8388609, .scale = 1},
        {.what = "skew over nothing", .status = -1, .scale = 0},
        {.what = "skew before size", .status = -1, .skew = 97, .out_height = 1, .out_width = 1},
        {.what = "too few rows", .status = -3, .out_height = 41},
        {.what = "too few columns", .status = -3, .out_width = 60},
        {.what = "empty destination", .status = -3, .out_height = 0},
        {.what = "negative destination", .status = -3, .out_height = -60, .out_width = -90},
        {.what = "no skew, too few rows", .status = -3, .skew = 0, .out_height = 39},
        {.what = "no skew, too few columns", .status = -3, .skew = 0, .out_width = 59},
    };
    for (const auto& [name, rotation, too_small] : kRotations) {
        for (const Wrong& wrong : cases) {
            SCOPED_TRACE(std::string(name) + ": " + wrong.what);
            std::vector<std::uint8_t> source = support::random_bytes(40 * 12, 1);
            const std::vector<std::uint8_t> before = source;
            support::GuardedBuffer result(60 * 12);
            reports().clear();
            const int status =
                rotation(wrong.skew, wrong.scale, wrong.src ? source.data() : nullptr, wrong.height,
                         wrong.width, wrong.stride, wrong.dst ? result.data() : nullptr,
                         wrong.out_height, wrong.out_width, wrong.out_stride, record);
            EXPECT_EQ(status, wrong.status == -3 ? too_small : wrong.status);
            EXPECT_EQ(source, before);
            EXPECT_EQ(result.contents(), std::vector<std::uint8_t>(60 * 12, 0x5C));
            EXPECT_EQ(reports(), Reports{});
        }
    }
}

TEST(RotationChecks, SidesAreSixteenBitNumbers) {
    // One row of 65,535 pixels is rotated; a pixel, a byte of stride or a row more is refused.
    std::vector<std::uint8_t> source(65536, 0);
    std::vector<std::uint8_t> result(65536 * 8, 0);
    const auto refused = [&](int h, int w, int stride, int oh, int ow, int ostride) {
        return skrotbmp_mem(0, 512, source.data(), h, w, stride, result.data(), oh, ow, ostride,
                            nullptr);
    };
    EXPECT_EQ(refused(1, 65535, 8192, 2, 65535, 8192), 0);
    EXPECT_EQ(refused(1, 65536, 8192, 2, 65536, 8192), -1);
    EXPECT_EQ(refused(1, 65536, 8192, 1, 65536, 8192), -1);
    EXPECT_EQ(refused(1, 32, 65535, 2, 32, 4), 0);
    EXPECT_EQ(refused(1, 32, 65536, 2, 32, 4), -1);
    EXPECT_EQ(refused(1, 32, 4, 2, 32, 65536), -1);
    EXPECT_EQ(refused(1, 32, 4, 65535, 32, 4), 0);
    EXPECT_EQ(refused(1, 32, 4, 65536, 32, 4), -1);
    EXPECT_EQ(skrotbmp_mem(1, 512, source.data(), 1, 65535, 8192, result.data(), 65, 65535, 8192,
                           nullptr),
              -2);  // 129 rows
}

// Fails the n-th allocation of a call and counts the blocks that stay.
int allocations_left = -1;
int blocks = 0;
bool counting = false;

void* failing_malloc(std::uint64_t size, void* (*c_malloc)(std::size_t)) {
    if (counting && allocations_left-- == 0) return nullptr;
    void* block = c_malloc(size);
    if (counting && block != nullptr) ++blocks;
    return block;
}

void counting_free(void* block, void (*c_free)(void*)) {
    if (counting) --blocks;
    c_free(block);
}

class FailingMemory : public ::testing::Test {
  protected:
    void SetUp() override {
        prepro_redefine_malloc(failing_malloc);
        prepro_redefine_free(counting_free);
    }
    void TearDown() override {
        counting = false;
        prepro_redefine_malloc(nullptr);
        prepro_redefine_free(nullptr);
    }
};

TEST_F(FailingMemory, EveryFailureGivesMinusOneAndNothingLeaks) {
    const Page page = make_page(300, 200, 0, Ink::kText, 1);
    for (const auto& [name, rotation, too_small] : kRotations) {
        for (const int yskew : {-20, 25, 40}) {
            SCOPED_TRACE(::testing::Message() << name << " skew " << yskew);
            std::vector<std::uint8_t> source = page.bytes;
            support::GuardedBuffer result(400 * 40);
            int status = -1;
            int failed = 0;
            for (; failed < 100; ++failed) {
                allocations_left = failed;
                blocks = 0;
                counting = true;
                status = rotation(yskew, 512, source.data(), page.height, page.width, page.stride,
                                  result.data(), 400, 320, 40, nullptr);
                counting = false;
#ifndef __SANITIZE_ADDRESS__  // brings its own sized delete, past the hook, and its own leak check
                EXPECT_EQ(blocks, 0);
#endif
                EXPECT_EQ(source, page.bytes);
                if (status != -1) break;
            }
            EXPECT_EQ(status, 0);
            EXPECT_GE(failed, 3);
            EXPECT_TRUE(result.guards_intact());
        }
    }
}

class RecordingLogger : public diag::Logger {
  public:
    std::int32_t log(std::uint32_t, std::int32_t, std::uint32_t code, const char*) override {
        codes[count++ % 4] = code;
        return 0;
    }
    std::uint32_t codes[4] = {};
    std::size_t count = 0;
};

TEST_F(FailingMemory, TheComponentShearLogsWhyItGivesUp) {
    const Page page = make_page(64, 64, 0, Ink::kText, 1);
    std::vector<std::uint8_t> result(128 * 16, 0);
    RecordingLogger logger;
    diag::Logger* slot = &logger;
    bool thrown = false;
    allocations_left = 1;
    counting = true;
    try {
        deskew::straighten({page.bytes.data(), 64, 64, page.stride}, 10,
                           {result.data(), 128, 128, 16}, {}, &slot);
    } catch (const std::bad_alloc&) {
        thrown = true;
    }
    counting = false;
    EXPECT_TRUE(thrown);
    ASSERT_EQ(logger.count, 2U);
    EXPECT_EQ(logger.codes[0], diag::kNoMemoryCode);
    EXPECT_EQ(logger.codes[1], diag::kGaveUpCode);
}

void throwing_report(unsigned, unsigned) {
    throw std::runtime_error("stop");
}

TEST(RotationChecks, AThrowingCallbackEndsTheCallAndTheSourceComesBack) {
    const Page page = make_page(40, 60, 0, Ink::kText, 1);
    for (const auto& [name, rotation, too_small] : kRotations) {
        for (const int yskew : {0, 20, 40}) {
            SCOPED_TRACE(name);
            std::vector<std::uint8_t> source = page.bytes;
            std::vector<std::uint8_t> result(60 * 12);
            EXPECT_EQ(rotation(yskew, 512, source.data(), 40, 60, page.stride, result.data(), 60,
                               90, 12, throwing_report),
                      -1);
            EXPECT_EQ(source, page.bytes);
        }
    }
}

}  // namespace

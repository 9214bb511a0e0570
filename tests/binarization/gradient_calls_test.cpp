// The exported functions around the gradient method: what each prepares, refuses and leaves behind.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "api/binarization_handle.h"
#include "support/random_page.h"
#include "support/row_reader.h"
#include "vemoprepro/binarization.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::RecordingReader;

constexpr int kWidth = 75;
constexpr int kHeight = 120;
constexpr int kX0 = 3, kX1 = 70, kY0 = 5, kY1 = 115;
constexpr int kRegionWidth = kX1 - kX0, kRegionHeight = kY1 - kY0;
constexpr std::size_t kOutSize = std::size_t{kRegionHeight} * 12;

Bytes page_of(int type) {
    return support::random_bytes(std::size_t{kWidth} * kHeight * (type == 1 ? 1 : 3), 3);
}

RecordingReader reader_of(int type) {
    return {page_of(type), std::size_t{kWidth} * (type == 1 ? 1 : 3)};
}

struct Handle {
    bi_settings* settings = bi_setup(RecordingReader::read);

    Handle() {
        bi_set_black1(settings, 128);
        bi_set_black2(settings, 96);
    }
    ~Handle() { bi_upset(settings); }
    int smooth() const {
        unsigned char value = 0;
        bi_get_smooth(settings, &value);
        return value;
    }
};

int run(const Handle& handle, int type, Bytes& out) {
    RecordingReader source = reader_of(type);
    return bi_gradl_do(handle.settings, &source, type, kWidth, kX0, kX1, kY0, kY1, out.data());
}

// The region as a grey image that went through the preparation.
Bytes grey_of(int type, unsigned char smooth, int resolution, unsigned char undithering) {
    RecordingReader source = reader_of(type);
    Bytes grey(std::size_t{kRegionWidth} * kRegionHeight);
    EXPECT_EQ(bi_color2greybuf(smooth, RecordingReader::read, &source, nullptr, type, kWidth,
                               resolution, kX0, kX1, kY0, kY1, grey.data(),
                               static_cast<int>(grey.size()), 1, undithering),
              0);
    return grey;
}

Bytes page_from(const Handle& handle, Bytes grey) {
    Bytes out(kOutSize, 0x5C);
    EXPECT_EQ(
        bi_grey_gradl_do(handle.settings, grey.data(), kRegionHeight, kRegionWidth, out.data()), 0);
    return out;
}

TEST(GradientCalls, OneShotModesPrepareTheGreyImage) {
    for (const int type : {1, 2, 3}) {
        for (const int mode : {0, 1, 2, -7}) {
            const unsigned char smooth = mode == 0 ? 0 : 250;
            const unsigned char undithering = mode == 0 || mode == 1 ? 0 : 1;
            const Bytes expected = page_from(Handle(), grey_of(type, smooth, 300, undithering));
            Bytes out(kOutSize, 0x5C);
            RecordingReader source = reader_of(type);
            ASSERT_EQ(bi_gradl(mode, RecordingReader::read, &source, type, kWidth, kX0, kX1, kY0,
                               kY1, out.data()),
                      0);
            EXPECT_EQ(out, expected) << "type " << type << ", mode " << mode;
        }
    }
}

TEST(GradientCalls, SmoothingIsRaisedByEveryCallButTheStatistics) {
    Handle handle;
    Bytes out(kOutSize);
    bi_set_smooth(handle.settings, 200);
    const Bytes expected = page_from(Handle(), grey_of(3, 202, 300, 0));
    ASSERT_EQ(run(handle, 3, out), 0);
    EXPECT_EQ(out, expected);
    EXPECT_EQ(handle.smooth(), 202);
    page_from(handle, grey_of(1, 0, 300, 0));
    EXPECT_EQ(handle.smooth(), 204);
    RecordingReader source = reader_of(1);
    ASSERT_EQ(
        bi_gradl_do_sobel(handle.settings, &source, 1, kWidth, kX0, kX1, kY0, kY1, out.data()), 0);
    EXPECT_EQ(handle.smooth(), 204);
}

// Statistics of the image as it is prepared with the stored smoothing; the resolution counts for
// nothing.
TEST(GradientCalls, MethodSwitchRunsTheStatistics) {
    Handle handle;
    bi_set_smooth(handle.settings, 200);
    bi_set_undithering(handle.settings, 1);
    bi_set_sigma(handle.settings, -40);
    Bytes expected(kOutSize, 0x5C);
    RecordingReader source = reader_of(2);
    ASSERT_EQ(
        bi_gradl_do_sobel(handle.settings, &source, 2, kWidth, kX0, kX1, kY0, kY1, expected.data()),
        0);
    ASSERT_TRUE(set_method(handle.settings->values, 1));
    Bytes out(kOutSize, 0xA3);
    ASSERT_EQ(run(handle, 2, out), 0);
    EXPECT_EQ(out, expected);
    out.assign(kOutSize, 0xA3);
    ASSERT_EQ(bi_gradl_do_with_resolution(handle.settings, &source, 2, kWidth, 100, kX0, kX1, kY0,
                                          kY1, out.data()),
              0);
    EXPECT_EQ(out, expected);
    EXPECT_EQ(page_from(handle, grey_of(2, 200, 300, 1)), expected);
    EXPECT_EQ(handle.smooth(), 200);
}

TEST(GradientCalls, ResolutionAndFolderReachTheCall) {
    Handle handle;
    Bytes out(kOutSize), expected(kOutSize);
    RecordingReader source = reader_of(3);
    ASSERT_EQ(run(handle, 3, expected), 0);
    ASSERT_EQ(bi_gradl_do_with_resolution(handle.settings, &source, 3, kWidth, 100, kX0, kX1, kY0,
                                          kY1, out.data()),
              0);
    EXPECT_EQ(out, expected);
    out.assign(kOutSize, 0);
    ASSERT_EQ(bi_gradl_do_debug(handle.settings, &source, 3, kWidth, kX0, kX1, kY0, kY1, out.data(),
                                "/a/folder"),
              0);
    EXPECT_EQ(out, expected);
    EXPECT_EQ(handle.settings->values.debug_folder, "/a/folder");
}

int count_and_drop(void* calls, const unsigned char*) {
    ++*static_cast<int*>(calls);
    return 1;
}

TEST(GradientCalls, DropoutSeesTheBlackPixelsOfColourPages) {
    for (const int type : {1, 2, 3}) {
        Handle handle;
        Bytes plain(kOutSize), dropped(kOutSize);
        ASSERT_EQ(run(handle, type, plain), 0);
        int black = 0;
        for (const std::uint8_t byte : plain) black += __builtin_popcount(byte);
        for (const bool one_shot : {false, true}) {
            int calls = 0;
            bi_set_dropout(handle.settings, count_and_drop, &calls);
            RecordingReader source = reader_of(type);
            ASSERT_EQ(one_shot ? bi_gradl_dropout(0, RecordingReader::read, &source, count_and_drop,
                                                  &calls, type, kWidth, kX0, kX1, kY0, kY1,
                                                  dropped.data())
                               : run(handle, type, dropped),
                      0);
            EXPECT_EQ(calls, type == 1 ? 0 : black);
            EXPECT_EQ(dropped, type == 1 ? plain : Bytes(kOutSize));
        }
    }
}

TEST(GradientCalls, RefusalsLeaveThePageAlone) {
    Handle handle;
    Bytes out(kOutSize, 0x5C), grey(100);
    RecordingReader source = reader_of(1);
    struct Region {
        int type, width, x0, x1, y0, y1;
    };
    const Region refused[] = {{0, 75, 0, 9, 0, 9},  {4, 75, 0, 9, 0, 9}, {1, 0, 0, 9, 0, 9},
                              {1, 75, -1, 9, 0, 9}, {1, 75, 9, 9, 0, 9}, {1, 75, 0, 76, 0, 9},
                              {1, 75, 0, 9, -1, 9}, {1, 75, 0, 9, 9, 9}, {1, 75, 9, 0, 0, 9}};
    for (const auto& [type, width, x0, x1, y0, y1] : refused) {
        bi_settings* const settings = handle.settings;
        unsigned char* const page = out.data();
        EXPECT_EQ(bi_gradl_do(settings, &source, type, width, x0, x1, y0, y1, page), -1);
        EXPECT_EQ(bi_gradl_do_sobel(settings, &source, type, width, x0, x1, y0, y1, page), -1);
        EXPECT_EQ(bi_gradl(0, RecordingReader::read, &source, type, width, x0, x1, y0, y1, page),
                  -1);
    }
    EXPECT_EQ(bi_grey_gradl_do(handle.settings, nullptr, 10, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle.settings, grey.data(), 0, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle.settings, grey.data(), 10, -1, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle.settings, grey.data(), 10, 10, nullptr), -1);
    EXPECT_EQ(bi_grey_gradl_do(nullptr, grey.data(), 10, 10, out.data()), -1);
    EXPECT_EQ(bi_gradl_do_debug(handle.settings, &source, 1, kWidth, kX0, kX1, kY0, kY1, out.data(),
                                nullptr),
              -1);
    EXPECT_EQ(bi_gradl(0, nullptr, &source, 1, kWidth, kX0, kX1, kY0, kY1, out.data()), -1);
    // Several threads want the colour page in memory.
    bi_set_nb_threads(handle.settings, 2);
    EXPECT_EQ(run(handle, 3, out), -1);
    EXPECT_TRUE(source.modes.empty());
    EXPECT_EQ(out, Bytes(kOutSize, 0x5C));
}

}  // namespace

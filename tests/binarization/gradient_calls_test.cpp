// The exported functions around the gradient method: what each prepares and leaves behind. What
// they refuse stands with the other calls that work on a region.
#include <gtest/gtest.h>

#include <vector>

#include "api/binarization_handle.h"
#include "binarization/settings_handle.h"
#include "support/random_page.h"
#include "support/row_reader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::RecordingReader;

constexpr int kWidth = 75;
constexpr int kHeight = 120;
constexpr int kX0 = 3, kX1 = 70, kY0 = 5, kY1 = 115;
constexpr int kRegionWidth = kX1 - kX0, kRegionHeight = kY1 - kY0;
constexpr std::size_t kOutSize = std::size_t{kRegionHeight} * 12;
constexpr prepro_row_reader kRead = RecordingReader::read;

RecordingReader reader_of(int type) {
    const std::size_t row = std::size_t{kWidth} * (type == 1 ? 1 : 3);
    return {support::random_bytes(row * kHeight, 3), row};
}

// With the dark levels of the one-shot calls.
struct Handle : support::SettingsHandle {
    Handle() : SettingsHandle(kRead) {
        bi_set_black1(*this, 128);
        bi_set_black2(*this, 96);
    }
};

// Calls with the page of the type and its region, and with what stands behind the output.
template <class Call, class... More>
Bytes run(Call call, bi_settings* settings, int type, More... more) {
    RecordingReader source = reader_of(type);
    Bytes out(kOutSize, 0x5C);
    EXPECT_EQ(call(settings, &source, type, kWidth, kX0, kX1, kY0, kY1, out.data(), more...), 0);
    return out;
}

Bytes run_at(int resolution, bi_settings* settings, int type) {
    RecordingReader source = reader_of(type);
    Bytes out(kOutSize, 0x5C);
    EXPECT_EQ(bi_gradl_do_with_resolution(settings, &source, type, kWidth, resolution, kX0, kX1,
                                          kY0, kY1, out.data()),
              0);
    return out;
}

// The page from the region as a grey image that went through the preparation.
Bytes page_from(bi_settings* settings, int type, int smooth, int undithering) {
    RecordingReader source = reader_of(type);
    Bytes grey(std::size_t{kRegionWidth} * kRegionHeight);
    EXPECT_EQ(
        bi_color2greybuf(static_cast<unsigned char>(smooth), kRead, &source, nullptr, type, kWidth,
                         300, kX0, kX1, kY0, kY1, grey.data(), static_cast<int>(grey.size()), 1,
                         static_cast<unsigned char>(undithering)),
        0);
    Bytes out(kOutSize, 0x5C);
    EXPECT_EQ(bi_grey_gradl_do(settings, grey.data(), kRegionHeight, kRegionWidth, out.data()), 0);
    return out;
}

TEST(GradientCalls, OneShotModesPrepareTheGreyImage) {
    for (const int type : {1, 2, 3}) {
        for (const int mode : {0, 1, 2, -7}) {
            const int undithering = mode == 0 || mode == 1 ? 0 : 1;
            Bytes out(kOutSize, 0x5C);
            RecordingReader source = reader_of(type);
            ASSERT_EQ(bi_gradl(mode, kRead, &source, type, kWidth, kX0, kX1, kY0, kY1, out.data()),
                      0);
            EXPECT_EQ(out, page_from(Handle(), type, mode == 0 ? 0 : 250, undithering))
                << "type " << type << ", mode " << mode;
        }
    }
}

TEST(GradientCalls, SmoothingIsRaisedByEveryCallButTheStatistics) {
    const Handle handle;
    bi_set_smooth(handle, 200);
    EXPECT_EQ(run(bi_gradl_do, handle, 3), page_from(Handle(), 3, 202, 0));
    EXPECT_EQ(handle.smooth(), 202);
    page_from(handle, 1, 0, 0);
    EXPECT_EQ(handle.smooth(), 204);
    run(bi_gradl_do_sobel, handle, 1);
    EXPECT_EQ(handle.smooth(), 204);
}

// Statistics of the image as it is prepared with the stored smoothing; the resolution counts for
// nothing.
TEST(GradientCalls, MethodSwitchRunsTheStatistics) {
    const Handle handle;
    bi_set_smooth(handle, 200);
    bi_set_undithering(handle, 1);
    bi_set_sigma(handle, -40);
    const Bytes expected = run(bi_gradl_do_sobel, handle, 2);
    bi_settings* const settings = handle;
    ASSERT_TRUE(set_method(settings->values, 1));
    EXPECT_EQ(run(bi_gradl_do, handle, 2), expected);
    EXPECT_EQ(run_at(100, handle, 2), expected);
    EXPECT_EQ(page_from(handle, 2, 200, 1), expected);
    EXPECT_EQ(handle.smooth(), 200);
}

TEST(GradientCalls, ResolutionAndFolderReachTheCall) {
    const Handle handle;
    const Bytes expected = run(bi_gradl_do, handle, 3);
    EXPECT_EQ(run_at(100, handle, 3), expected);
    EXPECT_EQ(run(bi_gradl_do_debug, handle, 3, "/a/folder"), expected);
    bi_settings* const settings = handle;
    EXPECT_EQ(settings->values.debug_folder, "/a/folder");
}

int count_and_drop(void* calls, const unsigned char*) {
    ++*static_cast<int*>(calls);
    return 1;
}

TEST(GradientCalls, DropoutSeesTheBlackPixelsOfColourPages) {
    for (const int type : {1, 2, 3}) {
        const Handle handle;
        const Bytes plain = run(bi_gradl_do, handle, type);
        const Bytes expected = type == 1 ? plain : Bytes(kOutSize);
        int black = 0;
        for (const std::uint8_t byte : plain) black += __builtin_popcount(byte);
        int calls = 0;
        bi_set_dropout(handle, count_and_drop, &calls);
        EXPECT_EQ(run(bi_gradl_do, handle, type), expected);
        EXPECT_EQ(calls, type == 1 ? 0 : black);
        RecordingReader source = reader_of(type);
        Bytes dropped(kOutSize);
        calls = 0;
        ASSERT_EQ(bi_gradl_dropout(0, kRead, &source, count_and_drop, &calls, type, kWidth, kX0,
                                   kX1, kY0, kY1, dropped.data()),
                  0);
        EXPECT_EQ(dropped, expected);
        EXPECT_EQ(calls, type == 1 ? 0 : black);
    }
}

TEST(GradientCalls, RefusalsOfTheirOwnLeaveThePageAlone) {
    const Handle handle;
    Bytes out(kOutSize, 0x5C);
    Bytes grey(100);
    EXPECT_EQ(bi_grey_gradl_do(handle, nullptr, 10, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 0, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 10, -1, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 10, 10, nullptr), -1);
    EXPECT_EQ(bi_grey_gradl_do(nullptr, grey.data(), 10, 10, out.data()), -1);
    RecordingReader source = reader_of(1);
    EXPECT_EQ(
        bi_gradl_do_debug(handle, &source, 1, kWidth, kX0, kX1, kY0, kY1, out.data(), nullptr), -1);
    EXPECT_TRUE(source.modes.empty());
    EXPECT_EQ(out, Bytes(kOutSize, 0x5C));
}

}  // namespace

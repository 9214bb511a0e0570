// The exported calls on a region, all in one table: what they refuse, prepare and leave behind,
// whatever the method does with the pixels.
#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <vector>

#include "api/binarization_handle.h"
#include "binarization/settings_handle.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "support/row_reader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::RecordingReader;
using support::SettingsHandle;

constexpr prepro_row_reader kRead = RecordingReader::read;

using RegionCall = int (*)(bi_settings*, void*, int, int, int, int, int, int, unsigned char*);

template <int kResolution>
int at_resolution(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                  int y1, unsigned char* out) {
    return bi_gradl_do_with_resolution(settings, ctx, type, width, kResolution, x0, x1, y0, y1,
                                       out);
}

int with_folder(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                int y1, unsigned char* out) {
    return bi_gradl_do_debug(settings, ctx, type, width, x0, x1, y0, y1, out, "/a/folder");
}

constexpr RegionCall kRegionCalls[] = {bi_thresh_do, bi_gradl_do, at_resolution<100>, with_folder,
                                       bi_gradl_do_sobel};
constexpr RegionCall kMethods[] = {bi_thresh_do, bi_gradl_do, bi_gradl_do_sobel};

// A region in the middle of a page.
constexpr int kWidth = 75;
constexpr int kHeight = 120;
constexpr int kX0 = 3, kX1 = 70, kY0 = 5, kY1 = 115;
constexpr std::size_t kGreySize = std::size_t{kX1 - kX0} * (kY1 - kY0);
constexpr std::size_t kOutSize = std::size_t{kY1 - kY0} * 12;
const Bytes kUntouched(kOutSize, 0x5C);

RecordingReader reader_of(int type) {
    const std::size_t row = std::size_t{kWidth} * (type == 1 ? 1 : 3);
    RecordingReader reader{support::random_bytes(row * kHeight, 3), row};
    reader.modes.reserve(100000);  // nothing is allocated while it is called
    return reader;
}

// With the dark levels of the one-shot calls.
struct Handle : SettingsHandle {
    explicit Handle(prepro_row_reader reader = kRead) : SettingsHandle(reader) {
        bi_set_black1(*this, 128);
        bi_set_black2(*this, 96);
    }
};

template <class Call>
Bytes run(Call call, bi_settings* settings, int type) {
    RecordingReader source = reader_of(type);
    Bytes out = kUntouched;
    EXPECT_EQ(call(settings, &source, type, kWidth, kX0, kX1, kY0, kY1, out.data()), 0);
    return out;
}

// The page from the region as a grey image that went through the preparation.
Bytes page_from(bi_settings* settings, int type, int smooth, int undithering) {
    RecordingReader source = reader_of(type);
    Bytes grey(kGreySize);
    EXPECT_EQ(
        bi_color2greybuf(static_cast<unsigned char>(smooth), kRead, &source, nullptr, type, kWidth,
                         300, kX0, kX1, kY0, kY1, grey.data(), static_cast<int>(grey.size()), 1,
                         static_cast<unsigned char>(undithering)),
        0);
    Bytes out = kUntouched;
    EXPECT_EQ(bi_grey_gradl_do(settings, grey.data(), kY1 - kY0, kX1 - kX0, out.data()), 0);
    return out;
}

int ink_of(const Bytes& page) {
    int count = 0;
    for (const std::uint8_t byte : page) count += std::popcount(byte);
    return count;
}

int drop_some(void*, const unsigned char* colour) {
    return colour[0] % 3;
}

int count_and_drop(void* calls, const unsigned char*) {
    ++*static_cast<int*>(calls);
    return 1;
}

// Everything that is refused leaves the output alone and calls nobody.
TEST(RegionCalls, RefuseWhatCannotBeWorkedOn) {
    RecordingReader source(support::random_bytes(30 * 120, 3), 30);
    int asked = 0;
    Bytes out = kUntouched;
    const unsigned char* no_image[4] = {source.page.data(), nullptr, nullptr, nullptr};
    const struct {
        const char* what;
        int type, width, x0, x1, y0, y1, threads;
        bool reader = true;
    } regions[] = {
        {"no reader", 1, 30, 0, 10, 0, 10, 1, false},
        {"no reader, colour", 2, 10, 0, 10, 0, 120, 4, false},
        {"type 0", 0, 30, 0, 10, 0, 10, 1},
        {"type 4", 4, 30, 0, 10, 0, 10, 1},
        {"width 0", 1, 0, 0, 10, 0, 10, 1},
        {"negative width", 1, -30, 0, 10, 0, 10, 1},
        {"negative x0", 1, 30, -1, 10, 0, 10, 1},
        {"negative y0", 1, 30, 0, 10, -1, 10, 1},
        {"no columns", 1, 30, 10, 10, 0, 10, 1},
        {"columns the wrong way round", 1, 30, 10, 9, 0, 10, 1},
        {"no rows", 1, 30, 0, 10, 10, 10, 1},
        {"rows the wrong way round", 1, 30, 0, 10, 10, 9, 1},
        {"extremes", 1, 30, 0, INT_MIN, 0, INT_MIN, 1},
        {"beyond the row", 1, 30, 0, 31, 0, 10, 1},
        {"threads without an image", 3, 10, 0, 10, 0, 100, 2},
    };
    for (const auto& [what, type, width, x0, x1, y0, y1, threads, reader] : regions) {
        SCOPED_TRACE(what);
        const prepro_row_reader read = reader ? kRead : nullptr;
        const Handle handle(read);
        bi_set_nb_threads(handle, threads);
        bi_set_dropout(handle, count_and_drop, &asked);
        for (const RegionCall call : kRegionCalls) {
            bi_set_smooth(handle, 100);
            EXPECT_EQ(call(handle, &source, type, width, x0, x1, y0, y1, out.data()), -1);
            EXPECT_EQ(handle.smooth(), call == bi_gradl_do_sobel ? 100 : 102) << "raised at once";
        }
        for (const void* record :
             {static_cast<const void*>(no_image), static_cast<const void*>(nullptr)}) {
            EXPECT_EQ(bi_color2greybuf(0, read, &source, record, type, width, 300, x0, x1, y0, y1,
                                       out.data(), 0, threads, 0),
                      -1);
        }
        if (threads > 1) continue;
        EXPECT_EQ(bi_thresh_dropout(0, 9, read, &source, count_and_drop, &asked, type, width, x0,
                                    x1, y0, y1, out.data()),
                  -1);
        EXPECT_EQ(bi_gradl_dropout(0, read, &source, count_and_drop, &asked, type, width, x0, x1,
                                   y0, y1, out.data()),
                  -1);
    }
    const Handle handle;
    for (const RegionCall call : kRegionCalls) {
        EXPECT_EQ(call(nullptr, &source, 1, 30, 0, 10, 0, 10, out.data()), -1);
        EXPECT_EQ(call(handle, &source, 1, 30, 0, 10, 0, 10, nullptr), -1);
    }
    bi_set_smooth(handle, 100);
    EXPECT_EQ(bi_gradl_do_debug(handle, &source, 1, 30, 0, 10, 0, 10, out.data(), nullptr), -1);
    EXPECT_EQ(handle.smooth(), 100) << "not even begun";
    Bytes grey(100);
    EXPECT_EQ(bi_grey_gradl_do(handle, nullptr, 10, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 0, 10, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 10, -1, out.data()), -1);
    EXPECT_EQ(bi_grey_gradl_do(handle, grey.data(), 10, 10, nullptr), -1);
    EXPECT_EQ(bi_grey_gradl_do(nullptr, grey.data(), 10, 10, out.data()), -1);
    const auto copy_grey = [&](unsigned char* to, int size) {
        return bi_color2greybuf(0, kRead, &source, nullptr, 1, 30, 300, 0, 10, 0, 10, to, size, 1,
                                0);
    };
    EXPECT_EQ(copy_grey(out.data(), -1), -1);
    EXPECT_EQ(copy_grey(out.data(), 101), -1);
    EXPECT_EQ(copy_grey(nullptr, 100), -1);
    EXPECT_EQ(out, kUntouched);
    EXPECT_TRUE(source.modes.empty());
    EXPECT_EQ(asked, 0);
}

TEST(RegionCalls, SmoothingIsRaisedByAllButTheStatistics) {
    const Handle handle;
    bi_set_smooth(handle, 200);
    EXPECT_EQ(run(bi_gradl_do, handle, 3), page_from(Handle(), 3, 202, 0));
    EXPECT_EQ(handle.smooth(), 202);
    page_from(handle, 1, 0, 0);
    EXPECT_EQ(handle.smooth(), 204);
    run(bi_gradl_do_sobel, handle, 1);
    EXPECT_EQ(handle.smooth(), 204);
}

// Every mode does what an object with its settings does; of a threshold the low byte counts.
TEST(RegionCalls, OneShotsAreCallsWithTheSettingsOfTheirMode) {
    for (const int type : {1, 2, 3}) {
        for (const int mode : {0, 1, 2, -7}) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", mode " << mode);
            const Handle handle;
            int asked = 0;
            const auto expected = [&](RegionCall call) {
                bi_set_smooth(handle, mode == 0 ? 0 : 248);
                return run(call, handle, type);
            };
            const auto once = [&](auto call, auto... leading) {
                return run([=](bi_settings*, auto... more) { return call(leading..., more...); },
                           nullptr, type);
            };
            bi_set_undithering(handle, mode == 0 || mode == 1 ? 0 : 1);
            bi_set_thresh(handle, 44);
            EXPECT_EQ(once(bi_gradl, mode, kRead), expected(bi_gradl_do));
            EXPECT_EQ(once(bi_thresh, mode, 300, kRead), expected(bi_thresh_do));
            EXPECT_EQ(expected(bi_gradl_do),
                      page_from(handle, type, mode == 0 ? 0 : 250, mode != 0 && mode != 1));
            bi_set_dropout(handle, drop_some, &asked);
            const auto dropping = [&](auto call, auto... leading) {
                return run(
                    [&, leading...](bi_settings*, void* source, auto... more) {
                        return call(leading..., kRead, source, drop_some, &asked, more...);
                    },
                    nullptr, type);
            };
            EXPECT_EQ(dropping(bi_gradl_dropout, mode), expected(bi_gradl_do));
            EXPECT_EQ(dropping(bi_thresh_dropout, mode, 300), expected(bi_thresh_do));
        }
    }
}

// Statistics of the image as it is prepared with the stored smoothing; the resolution counts for
// nothing.
TEST(RegionCalls, MethodSwitchRunsTheStatistics) {
    const Handle handle;
    bi_set_smooth(handle, 200);
    bi_set_undithering(handle, 1);
    bi_set_sigma(handle, -40);
    const Bytes expected = run(bi_gradl_do_sobel, handle, 2);
    bi_settings* const settings = handle;
    ASSERT_TRUE(set_method(settings->values, 1));
    EXPECT_EQ(run(bi_gradl_do, handle, 2), expected);
    EXPECT_EQ(run(at_resolution<100>, handle, 2), expected);
    EXPECT_EQ(page_from(handle, 2, 200, 1), expected);
    EXPECT_EQ(handle.smooth(), 200);
}

TEST(RegionCalls, ResolutionAndFolderReachTheCall) {
    const Handle handle;
    const Bytes expected = run(bi_gradl_do, handle, 3);
    EXPECT_EQ(run(at_resolution<100>, handle, 3), expected);
    EXPECT_EQ(run(with_folder, handle, 3), expected);
    bi_settings* const settings = handle;
    EXPECT_EQ(settings->values.debug_folder, "/a/folder");
}

TEST(RegionCalls, DropoutSeesTheBlackPixelsOfColourPages) {
    for (const int type : {1, 2, 3}) {
        for (const RegionCall call : kMethods) {
            const Handle handle;
            const Bytes plain = run(call, handle, type);
            int asked = 0;
            bi_set_dropout(handle, count_and_drop, &asked);
            EXPECT_EQ(run(call, handle, type), type == 1 ? plain : Bytes(kOutSize));
            EXPECT_EQ(asked, type == 1 ? 0 : ink_of(plain));
        }
    }
}

TEST(RegionCalls, NeedAReaderForADropoutFromMemory) {
    const RecordingReader source = reader_of(3);
    const Handle handle(nullptr);
    bi_set_nb_threads(handle, 2);
    bi_set_image_pointer(handle, source.page.data());
    for (const RegionCall call : kMethods) {
        bi_set_dropout(handle, nullptr, nullptr);
        const Bytes page = run(call, handle, 3);
        int asked = 0;
        bi_set_dropout(handle, count_and_drop, &asked);
        Bytes out = kUntouched;
        EXPECT_EQ(call(handle, nullptr, 3, kWidth, kX0, kX1, kY0, kY1, out.data()), -1);
        EXPECT_EQ(out, page) << "binarized all the same";
        EXPECT_EQ(asked, 0);
    }
}

// A failed allocation leaves the output untouched, or binarized where only the dropout could not be
// run any more; the statistics clear it before they allocate.
TEST(RegionCalls, SurviveEveryFailedAllocation) {
    for (const int type : {1, 2, 3}) {
        for (const int threads : {1, 2}) {
            for (const RegionCall call : kMethods) {
                RecordingReader source = reader_of(type);
                int asked = 0;
                const auto binarize = [&](Bytes& out) {
                    const Handle handle;
                    bi_set_smooth(handle, 248);
                    bi_set_thresh(handle, 0);
                    bi_set_nb_threads(handle, threads);
                    bi_set_image_pointer(handle, source.page.data());
                    bi_set_dropout(
                        handle, [](void*, const unsigned char*) { return 0; }, &asked);
                    return call(handle, &source, type, kWidth, kX0, kX1, kY0, kY1, out.data());
                };
                Bytes page = kUntouched;
                ASSERT_EQ(binarize(page), 0);
                const Bytes white(kOutSize);
                Bytes out = kUntouched;
                EXPECT_GE(
                    support::fail_each_allocation([&] {
                        out.assign(kOutSize, 0x5C);
                        const int result = binarize(out);
                        EXPECT_TRUE(out == page || (result == -1 && out == kUntouched) ||
                                    (result == -1 && call == bi_gradl_do_sobel && out == white));
                        return result;
                    }),
                    3);
            }
        }
    }
}

}  // namespace

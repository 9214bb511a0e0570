// What a grey preparation that fails leaves behind.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>

#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "support/row_reader.h"
#include "vemoprepro/binarization.h"

namespace {

using support::GuardedBuffer;
using support::RecordingReader;

// Each allocation refused in turn, on every path: nothing is copied, not even rows that were
// already final.
TEST(GreyPreparation, ARefusedAllocationLeavesTheBufferUntouched) {
    constexpr int kWidth = 34;
    constexpr int kHeight = 100;
    constexpr int kSize = kWidth * kHeight;
    for (int paths = 0; paths < 3 * 2 * 2 * 2 * 2; ++paths) {
        const int type = paths % 3 + 1;
        const int threads = paths / 3 % 2 + 1;
        const int left = paths / 6 % 2 * 3;
        const auto smooth = static_cast<unsigned char>(paths / 12 % 2 * 248);
        const int cut = paths / 24;  // bytes that are not asked for
        const int width = left + kWidth;
        SCOPED_TRACE(testing::Message() << "type " << type << ", threads " << threads << ", left "
                                        << left << ", smooth " << int{smooth} << ", cut " << cut);
        const auto row_bytes = static_cast<std::size_t>(width) * (type == 1 ? 1 : 3);
        RecordingReader source(support::random_bytes(row_bytes * kHeight, 7), row_bytes);
        for (std::size_t i = 0; i < source.page.size(); ++i) {
            // An ordered dither of 2 x 2, with noise.
            const std::size_t x = i % row_bytes / (row_bytes / static_cast<std::size_t>(width)),
                              y = i / row_bytes;
            const int cell = x % 2 == 0 ? 10 : y % 2 == 0 ? 60 : 250;
            source.page[i] = static_cast<std::uint8_t>(cell + source.page[i] % 6);
        }
        source.modes.reserve(100000);
        const unsigned char* record[4] = {nullptr, nullptr, nullptr, source.page.data()};
        GuardedBuffer out(kSize);
        const auto untouched = out.contents();
        const int allocations = support::fail_each_allocation([&] {
            const int result = bi_color2greybuf(smooth, RecordingReader::read, &source, record,
                                                type, width, 72, left, left + kWidth, 0, kHeight,
                                                out.data(), kSize - cut, threads, 1);
            EXPECT_EQ(result != 0, std::equal(untouched.begin(), untouched.end(), out.data()));
            EXPECT_TRUE(out.guards_intact());
            return result;
        });
        EXPECT_GE(allocations, smooth == 0 ? 0 : 10) << "it is undithered";
    }
}

// Threads whose stack is larger than the address space cannot be started.
TEST(GreyPreparation, AThreadThatCannotBeStartedLeavesTheBufferUntouched) {
    constexpr int kWidth = 10;
    constexpr int kHeight = 100;
    const auto page = support::random_bytes(3 * kWidth * kHeight, 7);
    const unsigned char* record[4] = {nullptr, nullptr, nullptr, page.data()};
    GuardedBuffer out(kWidth * kHeight);
    const auto untouched = out.contents();
    const auto convert = [&] {
        return bi_color2greybuf(0, nullptr, nullptr, record, 3, kWidth, 300, 0, kWidth, 0, kHeight,
                                out.data(), kWidth * kHeight, 2, 0);
    };
    pthread_attr_t usual;
    pthread_attr_t too_large;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_attr_init(&too_large), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&too_large, std::size_t{1} << 60), 0);
    ASSERT_EQ(pthread_setattr_default_np(&too_large), 0);
    EXPECT_EQ(convert(), -1);
    EXPECT_EQ(out.contents(), untouched);
    ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
    EXPECT_EQ(convert(), 0);
}

}  // namespace

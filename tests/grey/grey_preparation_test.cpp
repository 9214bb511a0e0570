// What a grey preparation that fails leaves behind.
#include <gtest/gtest.h>

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
    constexpr int kHeight = 100;
    constexpr int kSize = 33 * kHeight;
    for (int paths = 0; paths < 3 * 2 * 2 * 2 * 2; ++paths) {
        const int type = paths % 3 + 1;
        const int threads = paths / 3 % 2 + 1;
        const int left = paths / 6 % 2 * 3;
        const auto smooth = static_cast<unsigned char>(paths / 12 % 2 * 248);
        const int cut = paths / 24;  // bytes that are not asked for
        const int width = left + 33;
        SCOPED_TRACE(testing::Message() << "type " << type << ", threads " << threads << ", left "
                                        << left << ", smooth " << int{smooth} << ", cut " << cut);
        const auto row_bytes = static_cast<std::size_t>(width) * (type == 1 ? 1 : 3);
        RecordingReader source(support::random_bytes(row_bytes * kHeight, 7), row_bytes);
        source.modes.reserve(100000);
        const unsigned char* record[4] = {nullptr, nullptr, nullptr, source.page.data()};
        GuardedBuffer out(kSize);
        const auto untouched = out.contents();
        support::fail_each_allocation([&] {
            const int result =
                bi_color2greybuf(smooth, RecordingReader::read, &source, record, type, width, 300,
                                 left, left + 33, 0, kHeight, out.data(), kSize - cut, threads, 1);
            EXPECT_EQ(result != 0, std::equal(untouched.begin(), untouched.end(), out.data()));
            EXPECT_TRUE(out.guards_intact());
            return result;
        });
    }
}

}  // namespace

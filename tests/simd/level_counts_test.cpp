#include "simd/level_counts.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

// Lengths around one and several blocks of 512 bytes, at odd addresses; a span of levels that the
// count by upper halves must not mix up.
TEST(LevelCounts, AreThoseOfThePlainForm) {
    for (const int span : {1, 2, 15, 16, 17, 256}) {
        for (const std::size_t count : {0U, 1U, 3U, 63U, 511U, 512U, 513U, 1023U, 1024U, 5000U}) {
            auto bytes = support::random_bytes(count + 3, static_cast<std::uint32_t>(span));
            for (auto& value : bytes) value = static_cast<std::uint8_t>(230 + value % span);
            for (const std::size_t offset : {0U, 3U}) {
                simd::LevelCounts expected{};
                expected[7] = 5;  // counts are added to
                simd::plain::count_levels(bytes.data() + offset, count, expected);
                support::on_every_target([&] {
                    simd::LevelCounts counts{};
                    counts[7] = 5;
                    simd::count_levels(bytes.data() + offset, count, counts);
                    EXPECT_EQ(counts, expected) << span << " levels, " << count << " bytes";
                });
            }
        }
    }
}

}  // namespace

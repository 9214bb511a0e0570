// The counts of colour changes against counts taken pixel by pixel.
#include "simd/colour_changes.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

// The counts of four kinds, each with a guard behind the last byte.
struct Counts {
    explicit Counts(std::size_t bytes) : pitch(bytes + 1), values(4 * pitch, 0xEE) {}
    simd::ChangeCounts targets() {
        std::uint8_t* const first = values.data();
        return {first, first + pitch, first + 2 * pitch, first + 3 * pitch};
    }
    std::size_t pitch;
    std::vector<std::uint8_t> values;
};

TEST(ColourChanges, MatchThePlainCounts) {
    support::on_every_target([] {
        for (int width = 1; width <= 3 * 512 + 64; width += width % 61 == 0 ? 29 : 1) {
            const int rows = width % simd::kMaxChangeRows + 1;
            const bool row_below = width % 3 == 0;
            const auto bytes = static_cast<std::size_t>(width + 7) / 8;
            const std::size_t stride = bytes + static_cast<std::size_t>(width) % 5;
            const auto read_rows = static_cast<std::size_t>(rows + (row_below ? 1 : 0));
            std::vector<std::uint8_t> page =
                support::random_bytes(read_rows * stride, static_cast<std::uint32_t>(width));
            page.resize((read_rows - 1) * stride + bytes);
            page.shrink_to_fit();
            Counts found(bytes);
            Counts expected(bytes);
            simd::count_changes(page.data(), static_cast<std::ptrdiff_t>(stride), rows, row_below,
                                width, found.targets());
            simd::plain::count_changes(page.data(), static_cast<std::ptrdiff_t>(stride), rows,
                                       row_below, width, expected.targets());
            ASSERT_EQ(found.values, expected.values) << "width " << width;
        }
    });
}

}  // namespace

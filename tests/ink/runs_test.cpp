// Buffer operations and run morphology against the pixel model. The runs of a row are those of the
// kernel's test.
#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <vector>

#include "ink/buffer_logic.h"
#include "ink/extract_runs.h"
#include "ink/run_morphology.h"
#include "models/runs_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "support/record_counter.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(BufferLogic, CombinesAndCounts) {
    const Bytes src = support::random_bytes(5 * 37, 1);
    const Bytes before = support::random_bytes(5 * 37, 2);
    std::int64_t bits = 0;
    for (const std::uint8_t byte : src) bits += std::popcount(byte);
    EXPECT_EQ(ink::count_black_pixels(src.data(), 5, 37), bits);
    EXPECT_EQ(ink::count_black_pixels(nullptr, -1, 10), 0);
    Bytes all[4] = {before, before, before, before};
    EXPECT_EQ(ink::and_buffers(all[0].data(), src.data(), 5, 37), 0);
    EXPECT_EQ(ink::and_not_buffers(all[1].data(), src.data(), 5, 37), 0);
    EXPECT_EQ(ink::or_buffers(all[2].data(), src.data(), 5, 37), 0);
    EXPECT_EQ(ink::xor_buffers(all[3].data(), src.data(), 5, 37), 0);
    for (std::size_t i = 0; i < src.size(); ++i) {
        ASSERT_EQ(all[0][i], before[i] & src[i]);
        ASSERT_EQ(all[1][i], before[i] & ~src[i]);
        ASSERT_EQ(all[2][i], before[i] | src[i]);
        ASSERT_EQ(all[3][i], before[i] ^ src[i]);
    }
}

TEST(BufferLogic, PaintsEverySpanAndNothingBeside) {
    for (int x = 0; x < 24; ++x) {
        for (int length = -1; x + length <= 40; ++length) {
            for (const int value : {0, 1, 2}) {
                // The exact size: a touch of the byte behind the span shows under the sanitizer.
                Bytes bytes = support::random_bytes(5, static_cast<unsigned>(x * 64 + length + 1));
                Bytes expected = bytes;
                for (int i = x; i < x + length; ++i)
                    model::set_bit(expected.data(), 0, i, 0, value == 1);
                ASSERT_EQ(ink::paint_span(bytes.data(), x, length, value), 0);
                ASSERT_EQ(bytes, expected) << "x " << x << " length " << length;
            }
        }
    }
}

TEST(ExtractRuns, TakesEitherColourForInk) {
    const std::uint8_t row[] = {0x3C, 0x01};
    std::int32_t out[17];
    const auto runs = [&](int ink_value, std::int32_t x_start, std::int32_t width) {
        const std::int32_t count = ink::extract_runs(ink_value, row, x_start, width, out);
        return std::vector<std::int32_t>(out, out + count);
    };
    using Runs = std::vector<std::int32_t>;
    EXPECT_EQ(runs(0, 0, 16), (Runs{2, 6, 15, 16}));
    EXPECT_EQ(runs(0, 3, 2), (Runs{3, 5}));
    for (const int ink_value : {1, -1}) EXPECT_EQ(runs(ink_value, 1, 14), (Runs{1, 2, 6, 15}));
    EXPECT_EQ(runs(0, 3, 0), Runs{});
    EXPECT_EQ(runs(0, 3, -1), Runs{});
}

struct Operation {
    const char* name;
    ink::LoggedRunOperation* call;
    decltype(model::h_erode) expected;
};

class RunMorphology : public testing::TestWithParam<Operation> {};

INSTANTIATE_TEST_SUITE_P(
    Operations, RunMorphology,
    testing::Values(Operation{"h_fill_gaps", ink::h_fill_gaps, model::h_fill_gaps},
                    Operation{"h_remove_short", ink::h_remove_short, model::h_remove_short},
                    Operation{"h_dilate", ink::h_dilate, model::h_dilate},
                    Operation{"h_erode", ink::h_erode, model::h_erode},
                    Operation{"v_fill_gaps", ink::v_fill_gaps, model::v_fill_gaps},
                    Operation{"v_remove_short", ink::v_remove_short, model::v_remove_short},
                    Operation{"v_dilate", ink::v_dilate, model::v_dilate},
                    Operation{"v_erode", ink::v_erode, model::v_erode}),
    [](const auto& test) { return std::string(test.param.name); });

// Also of lengths and zones that leave nothing to do, and of lengths far beyond the zone. Strips of
// columns are 64 bytes wide.
TEST_P(RunMorphology, MatchesTheModelOnRandomZones) {
    constexpr int kOddLengths[] = {INT32_MIN, -3, INT32_MAX / 2 + 1, INT32_MAX - 1, INT32_MAX};
    support::Random random(11);
    for (std::uint32_t round = 0; round < 400; ++round) {
        const int stride = random.between(1, round % 16 == 0 ? 150 : 30);
        const int height = random.between(1, 40);
        const auto bytes = static_cast<std::size_t>(stride);
        Bytes image = round % 4 == 0 ? support::random_text(height, stride * 8, bytes, round)
                                     : support::random_bitonal(height, bytes,
                                                               random.between(1, 19) / 20.0, round);
        const int x0 = random.between(0, stride * 8);
        const int x1 = random.between(x0 == 0 ? 0 : x0 - 1, stride * 8);
        const int y0 = random.chance(0.5) ? 0 : random.between(0, height);
        const int y1 = random.chance(0.5) ? height : random.between(y0 == 0 ? 0 : y0 - 1, height);
        const int n = random.chance(0.1)   ? kOddLengths[random.between(0, 4)]
                      : random.chance(0.8) ? random.between(0, 9)
                                           : random.between(0, 300);
        Bytes expected = image;
        GetParam().expected(std::clamp(n, 0, 2000), expected.data(), stride, x0, x1, y0, y1);
        ASSERT_EQ(GetParam().call(nullptr, n, image.data(), stride, x0, x1, y0, y1), 0);
        ASSERT_EQ(image, expected) << "n " << n << " stride " << stride << " columns " << x0 << ".."
                                   << x1 << " rows " << y0 << ".." << y1;
    }
}

TEST_P(RunMorphology, LogsAndLeavesTheImageWhenThereIsNoMemory) {
    const Bytes image = support::random_bitonal(12, 6, 0.5, 7);
    Bytes expected = image;
    GetParam().expected(3, expected.data(), 6, 1, 47, 0, 12);
    Bytes changed(image.size());
    support::RecordCounter counter(145);
    diag::Logger* slot = &counter;
    const int allocations = support::fail_each_allocation([&] {
        std::copy(image.begin(), image.end(), changed.begin());
        const int result = GetParam().call(&slot, 3, changed.data(), 6, 1, 47, 0, 12);
        EXPECT_EQ(changed, result == 0 ? expected : image);
        return result;
    });
    EXPECT_EQ(counter.matching, allocations);
    EXPECT_EQ(counter.others, 0);
}

}  // namespace

// Runs, buffer operations and run morphology against the pixel model.
#include <gtest/gtest.h>

#include <bit>
#include <memory>
#include <string>
#include <vector>

#include "ink/buffer_logic.h"
#include "ink/extract_runs.h"
#include "ink/run_morphology.h"
#include "models/runs_model.h"
#include "support/allocation_limit.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "support/record_counter.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(BufferLogic, CombinesAndCountsLikeTheModel) {
    const struct {
        decltype(&ink::and_buffers) call;
        decltype(model::and_buffers) expected;
    } operations[] = {
        {ink::and_buffers, model::and_buffers},
        {ink::and_not_buffers, model::and_not_buffers},
        {ink::or_buffers, model::or_buffers},
        {ink::xor_buffers, model::xor_buffers},
    };
    for (int stride = 0; stride <= 300; ++stride) {
        const auto size = static_cast<std::size_t>(5 * stride);
        const Bytes src = support::random_bytes(size, static_cast<unsigned>(stride));
        std::int64_t bits = 0;
        for (const std::uint8_t byte : src) bits += std::popcount(byte);
        ASSERT_EQ(ink::count_black_pixels(src.data(), 5, stride), bits);
        for (const auto& operation : operations) {
            Bytes dst = support::random_bytes(size, 1000);
            Bytes expected = dst;
            operation.expected(expected.data(), src.data(), 5, stride);
            ASSERT_EQ(operation.call(dst.data(), src.data(), 5, stride), 0);
            ASSERT_EQ(dst, expected) << "operation " << &operation - operations;
        }
    }
    EXPECT_EQ(ink::count_black_pixels(nullptr, -1, 10), 0);
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

void expect_runs_of_the_model(const Bytes& bytes, int ink_value, int x_start, int width) {
    const auto first = static_cast<std::size_t>(x_start / 8);
    const auto end = static_cast<std::size_t>((x_start + width + 7) / 8);
    // Exactly the bytes of the scan, behind which the sanitizer watches; the pointer handed over
    // is where pixel 0 would be.
    const std::size_t held = width == 0 ? 1 : end - first;
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[held]);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(first), held, exact.get());
    const auto room = static_cast<std::size_t>(width) + 1;
    const std::unique_ptr<std::int32_t[]> out(new std::int32_t[room]);
    std::vector<int> expected(room);
    const int count = model::extract_runs(ink_value, bytes.data(), x_start, width, expected.data());
    expected.resize(static_cast<std::size_t>(count));

    const std::int32_t shifted = x_start % 8;
    const std::int32_t values =
        ink::extract_runs(ink_value, exact.get(), shifted, width, out.get());
    std::vector<int> found(out.get(), out.get() + values);
    for (int& position : found) position += x_start - shifted;
    ASSERT_EQ(found, expected) << "x_start " << x_start << " width " << width;
}

// Alternating pixels fill the room to its end.
TEST(ExtractRuns, MatchesTheModelAtEveryAlignmentAndLength) {
    support::on_every_target([] {
        for (const Bytes& bytes :
             {support::random_bitonal(1, 42, 0.03, 1), support::random_bitonal(1, 42, 0.5, 2),
              support::random_bitonal(1, 42, 0.97, 3), Bytes(42, 0xAA), Bytes(42, 0xFF)}) {
            for (int x_start = 0; x_start <= 9; ++x_start) {
                for (int width = 0; width <= 320; width += width < 205 ? 1 : 23) {
                    expect_runs_of_the_model(bytes, width % 3 - 1, x_start, width);
                }
            }
        }
    });
}

struct Operation {
    const char* name;
    decltype(&ink::h_erode) call;
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

// Also of lengths and zones that leave nothing to do, and of lengths far beyond the zone.
TEST_P(RunMorphology, MatchesTheModelOnRandomZones) {
    constexpr int kOddLengths[] = {INT32_MIN, -3, INT32_MAX / 2 + 1, INT32_MAX - 1, INT32_MAX};
    support::Random random(11);
    for (std::uint32_t round = 0; round < 400; ++round) {
        const int stride = random.between(1, 30);
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
        GetParam().expected(std::clamp(n, 0, 1000), expected.data(), stride, x0, x1, y0, y1);
        support::on_every_target([&] {
            Bytes changed = image;
            ASSERT_EQ(GetParam().call(nullptr, n, changed.data(), stride, x0, x1, y0, y1), 0);
            ASSERT_EQ(changed, expected) << "n " << n << " stride " << stride << " columns " << x0
                                         << ".." << x1 << " rows " << y0 << ".." << y1;
        });
        if (HasFatalFailure()) return;
    }
}

TEST_P(RunMorphology, LogsAndLeavesTheImageWhenThereIsNoMemory) {
    const Bytes image = support::random_bitonal(12, 6, 0.5, 7);
    Bytes whole = image;
    GetParam().call(nullptr, 3, whole.data(), 6, 1, 47, 0, 12);
    Bytes changed(image.size());
    support::RecordCounter counter(145);
    diag::Logger* slot = &counter;
    const int allocations = support::fail_each_allocation([&] {
        std::copy(image.begin(), image.end(), changed.begin());
        const int result = GetParam().call(&slot, 3, changed.data(), 6, 1, 47, 0, 12);
        EXPECT_EQ(changed, result == 0 ? whole : image);
        return result;
    });
    EXPECT_EQ(counter.matching, allocations);
    EXPECT_EQ(counter.others, 0);
}

TEST(RunMorphologyExamples, HoldForOneRow) {
    struct Case {
        const char* name;
        decltype(&ink::h_erode) call;
        std::int32_t n;
        std::uint8_t before;
        std::uint8_t after;
    };
    for (const Case& c : {Case{"gap of n stays", ink::h_fill_gaps, 3, 0xC7, 0xC7},
                          Case{"gap below n closes", ink::h_fill_gaps, 3, 0xCF, 0xFF},
                          Case{"margins are no gaps", ink::h_fill_gaps, 3, 0x18, 0x18},
                          Case{"run of 4 vanishes", ink::h_erode, 2, 0x78, 0x00},
                          Case{"run of 5 keeps its middle", ink::h_erode, 2, 0x7C, 0x10}}) {
        std::uint8_t row = c.before;
        EXPECT_EQ(c.call(nullptr, c.n, &row, 1, 0, 8, 0, 1), 0);
        EXPECT_EQ(row, c.after) << c.name;
    }
}

}  // namespace

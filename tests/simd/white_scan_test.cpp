#include "simd/white_scan.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongest = 3 * 64 + 7;  // three of the widest vectors, and a rest

// White but for `others` bytes.
Bytes white_row(std::size_t size, int others, support::Random& random) {
    Bytes row(size, 255);
    for (int i = 0; i < others && size > 0; ++i)
        row[static_cast<std::size_t>(random.between(0, static_cast<int>(size) - 1))] =
            random.byte();
    return row;
}

template <class Check>
void for_all_rows(Check&& check) {
    support::on_every_target([&] {
        for (std::size_t width = 0; width <= kLongest; ++width) {
            for (const int others : {0, 1, 2, 40}) {
                support::Random random(static_cast<std::uint32_t>(width));
                check(width, others, random);
            }
        }
    });
}

TEST(WhiteScan, FindsTheFirstAndTheLast) {
    for_all_rows([](std::size_t width, int others, support::Random& random) {
        const Bytes row = white_row(width, others, random);
        ASSERT_EQ(simd::first_not_white(row.data(), width),
                  simd::plain::first_not_white(row.data(), width));
        ASSERT_EQ(simd::last_not_white(row.data(), width),
                  simd::plain::last_not_white(row.data(), width));
    });
}

TEST(WhiteScan, TakesWhatIsPending) {
    for_all_rows([](std::size_t width, int others, support::Random& random) {
        for (const std::size_t bytes : {1U, 3U}) {
            const Bytes row = white_row(bytes * width, others, random);
            std::vector<std::uint64_t> pending(width / 64 + 1);
            for (std::size_t x = 0; x < width; ++x)
                if (random.chance(0.6)) pending[x / 64] |= std::uint64_t{1} << (x % 64);
            auto expected = pending;
            simd::PixelSums sums, expected_sums;
            ASSERT_EQ(simd::take_not_white(row.data(), width, bytes, pending.data(), sums),
                      simd::plain::take_not_white(row.data(), width, bytes, expected.data(),
                                                  expected_sums));
            ASSERT_EQ(pending, expected);
            ASSERT_EQ(sums.count, expected_sums.count);
            for (int i = 0; i < 3; ++i) ASSERT_EQ(sums.bytes[i], expected_sums.bytes[i]);
        }
    });
}

TEST(WhiteScan, Repaints) {
    for_all_rows([](std::size_t width, int others, support::Random& random) {
        Bytes row = white_row(3 * width, others, random);
        Bytes expected = row;
        const std::uint8_t from = others == 40 ? row.empty() ? 0 : row[0] : 255;
        simd::replace_bytes(row.data(), width, from, 9);
        simd::plain::replace_bytes(expected.data(), width, from, 9);
        ASSERT_EQ(row, expected);
        const Bytes wanted = white_row(3 * width, others / 2, random);
        const Bytes painted = white_row(3 * width, 300, random);
        simd::replace_triples(row.data(), width, wanted.data(), painted.data());
        simd::plain::replace_triples(expected.data(), width, wanted.data(), painted.data());
        ASSERT_EQ(row, expected);
    });
}

}  // namespace

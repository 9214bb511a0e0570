// Run extraction against the pixel model, on buffers of exactly the bytes that may be read and
// written.
#include "cleaning/extract_runs.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "models/runs_model.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

void expect_matches_model(const std::vector<std::uint8_t>& bytes, int ink_value, int x_start,
                          int width) {
    const auto first = static_cast<std::size_t>(x_start / 8);
    const auto end = static_cast<std::size_t>((x_start + width + 7) / 8);
    // Exactly the bytes of the scan, behind which the sanitizer watches; the pointer handed over
    // is where pixel 0 would be.
    const std::size_t held = width == 0 ? 1 : end - first;
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[held]);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(first), held, exact.get());
    const std::unique_ptr<std::int32_t[]> out(
        new std::int32_t[static_cast<std::size_t>(width) + 1]);
    std::vector<int> expected(static_cast<std::size_t>(width) + 1);
    expected.resize(static_cast<std::size_t>(
        model::extract_runs(ink_value, bytes.data(), x_start, width, expected.data())));

    const std::int32_t shifted = x_start % 8;
    const std::int32_t values =
        cleaning::extract_runs(ink_value, exact.get(), shifted, width, out.get());
    std::vector<int> found(out.get(), out.get() + values);
    for (int& position : found) position += x_start - shifted;
    ASSERT_EQ(found, expected) << "x_start " << x_start << " width " << width;
}

TEST(ExtractRuns, MatchesTheModelAtEveryAlignmentAndLength) {
    support::on_every_target([] {
        std::uint32_t seed = 1;
        for (const double density : {0.03, 0.5, 0.97}) {
            const auto bytes = support::random_bitonal(1, 40, density, ++seed);
            for (int x_start = 0; x_start <= 9; ++x_start) {
                for (int width = 0; width <= 205; ++width) {
                    expect_matches_model(bytes, width % 2, x_start, width);
                }
            }
        }
    });
}

TEST(ExtractRuns, MatchesTheModelOnEveryByte) {
    support::on_every_target([] {
        for (int value = 0; value < 256; ++value) {
            const std::vector<std::uint8_t> bytes{static_cast<std::uint8_t>(value), 0xFF};
            for (int x_start = 0; x_start < 8; ++x_start) {
                for (int width = 0; width <= 8; ++width) {
                    expect_matches_model(bytes, 0, x_start, width);
                }
            }
        }
    });
}

TEST(ExtractRuns, AlternatingPixelsFillTheRoomToTheEnd) {
    support::on_every_target([] {
        for (const int pattern : {0xAA, 0x55}) {
            const std::vector<std::uint8_t> bytes(40, static_cast<std::uint8_t>(pattern));
            for (const int width : {63, 64, 65, 127, 128, 129, 255, 256, 320}) {
                expect_matches_model(bytes, 0, 0, width);
                expect_matches_model(bytes, 1, 0, width);
            }
        }
    });
}

TEST(ExtractRuns, WholeRowsAreOneRunOrNone) {
    const std::vector<std::uint8_t> white(16, 0x00);
    const std::vector<std::uint8_t> black(16, 0xFF);
    std::int32_t out[129];
    EXPECT_EQ(cleaning::extract_runs(0, white.data(), 3, 100, out), 0);
    ASSERT_EQ(cleaning::extract_runs(0, black.data(), 3, 100, out), 2);
    EXPECT_EQ(out[0], 3);
    EXPECT_EQ(out[1], 103);
    ASSERT_EQ(cleaning::extract_runs(-1, white.data(), 3, 100, out), 2);
    EXPECT_EQ(out[1], 103);
}

}  // namespace

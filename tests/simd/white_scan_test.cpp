#include "simd/pixels/plain/white_scan.h"

#include "support/kernel_frame.h"

namespace simd {

// White with few other pixels, or with one, or with none.
TEST(WhiteScan, OfEveryLength) {
    on_every_width(0, [](std::size_t width, Random& random) {
        for (const double density : {0.0, 0.01, 0.3}) {
            Row row(3 * width, random, 255, 255), wanted = row, painted(3 * width, random);
            for (std::size_t i = 0; i < 3 * width; ++i) {
                if (random.chance(density)) row[i] = static_cast<std::uint8_t>(250 + i % 6);
                if (random.chance(density)) wanted[i] = row[i];
            }
            if (density == 0 && width > 0) row[random.between(0, static_cast<int>(width) - 1)] = 0;
            ASSERT_EQ(first_not_white(row, width), plain::first_not_white(row, width));
            ASSERT_EQ(last_not_white(row, width), plain::last_not_white(row, width));
            expect_twins(2, 3 * width, random, [&](bool fast, const auto& out) {
                std::copy_n(row.data(), 3 * width, out[0]);
                std::copy_n(row.data(), 3 * width, out[1]);
                TWIN(replace_bytes)(out[0], width, 255, 7);
                TWIN(replace_triples)(out[1], width, wanted, painted);
            });
            const auto pending = random_marks(width, 0.7, random);
            for (const std::size_t bytes : {1U, 3U}) {
                const auto call = [&](bool fast, const auto& out) {
                    PixelSums sums;
                    std::copy(pending.begin(), pending.end(), out[0]);
                    const bool left = TWIN(take_not_white)(row, width, bytes, out[0], sums);
                    std::copy_n(sums.bytes, 3, out[1]);
                    return 2 * sums.count + (left ? 1 : 0);
                };
                expect_twins<std::uint64_t>(2, pending.size() + 3, random, call);
            }
        }
    });
}

}  // namespace simd

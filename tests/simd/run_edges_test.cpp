#include "simd/bits/plain/run_edges.h"

#include "support/kernel_frame.h"

namespace simd {

// Rows of one colour, of long runs and of noise; a row of alternating pixels fills the room. They
// are as long as several vectors of pixels, and end where their memory ends.
TEST(RunEdges, OfEveryLength) {
    on_every_width(1, 8 * 3 * 64 + 71, [](std::size_t width, Random& random) {
        if (width > 300 && width % 41 > 2) return;
        constexpr std::int32_t kRows = 3;
        const bool invert = random.chance(0.5);
        const auto start = static_cast<std::int32_t>(width % 8);
        const auto pixels = static_cast<std::int32_t>(width);
        const std::size_t stride = (width + 14) / 8;
        Row page(kRows * stride, random);
        const double density = random.chance(0.2) ? 0 : random.between(0, 10) / 10.0;
        for (std::size_t i = 0; i < kRows * stride; ++i) {
            if (!random.chance(density)) page[i] = width % 2 == 0 ? 0 : 0xFF;
            if (width % 16 == 5) page[i] = 0xAA;
        }
        std::size_t offsets[kRows + 1];
        const auto size = static_cast<std::ptrdiff_t>(stride);
        const auto call = [&](bool fast, const auto& out) {
            TWIN(count_runs)(page, size, kRows, pixels, invert, offsets);
            TWIN(extract_rows)(page, size, kRows, pixels, invert, out[0]);
            std::fill_n(out[0] + 2 * offsets[kRows], kRunSlack, 0);
            const std::int32_t count = TWIN(extract_runs)(page, start, pixels, invert, out[1]);
            std::fill(out[1] + count, out[1] + width + 1, 0);
            return static_cast<std::size_t>(count) + 10'000 * offsets[kRows] + offsets[1];
        };
        const std::size_t room = kRows * (width + 1) + kRunSlack;
        expect_twins<std::int32_t>(2, room, random, call);
    });
}

}  // namespace simd

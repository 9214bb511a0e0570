#include "simd/pixels/plain/turn_pixels.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(TurnPixels, ReversalOfEveryLength) {
    on_every_width(0, 70, [](std::size_t count, Random& random) {
        for (std::size_t bytes = 1; bytes <= 5; ++bytes) {
            Row src(count * bytes, random);
            expect_twins(1, count * bytes, random, [&](bool fast, const auto& out) {
                TWIN(reverse_pixels)(src, count, bytes, out[0]);
            });
        }
    });
}

// Blocks that overlap the ones before, pixels loaded from before the block, stores cut at the end:
// all of it depends on the size alone.
TEST(TurnPixels, ExchangeOfEverySmallSize) {
    on_every_width(1, 24, [](std::size_t columns, Random& random) {
        for (std::size_t bytes = 1; bytes <= 5; ++bytes) {
            for (std::size_t rows = 1; rows <= 70; rows += rows < 24 ? 1 : 9) {
                Row src(rows * columns * bytes, random);
                const auto call = [&](bool fast, const auto& out) {
                    TWIN(transpose_pixels)
                    (src, static_cast<std::ptrdiff_t>(columns * bytes), rows, columns, bytes,
                     out[0], static_cast<std::ptrdiff_t>(rows * bytes));
                };
                expect_twins(1, rows * columns * bytes, random, call);
            }
        }
    });
}

}  // namespace simd

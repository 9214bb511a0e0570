#include "simd/pixels/plain/gradient_rows.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(GradientRows, OfEveryWidth) {
    on_every_width(1, [](std::size_t width, Random& random) {
        PaddedRows grey(3, width, random, random.chance(0.5) ? 255 : 20);
        const Words wanted = random_marks(width, random.chance(0.5) ? 0.01 : 0.5, random);
        const auto call = [&](bool fast, const auto& out) {
            TWIN(gradient_row)(grey.three(), width, wanted.data(), {out[0], out[1], out[2]});
        };
        expect_twins(3, width, random, call, kRoom);
    });
}

TEST(GradientRows, SteepPixels) {
    on_every_width(1, [](std::size_t width, Random& random) {
        PaddedRows grey(3, width, random, random.chance(0.5) ? 255 : 20);
        const auto limit =
            static_cast<std::uint8_t>(random.between(0, random.chance(0.5) ? 20 : 255));
        const std::size_t words = (width + 63) / 64;
        const auto call = [&](bool fast, const auto& out) {
            TWIN(steep_pixels)(grey.three(), words, limit, out[0]);
        };
        expect_twins<std::uint64_t>(1, words, random, call);
    });
}

// A step of gx to the right and of gy downwards gives these components: all pairs that there are.
TEST(GradientRows, MagnitudesAreRoundedRoots) {
    on_every_target([] {
        Random random(1);
        PaddedRows grey(3, 128, random), out(3, 128, random);
        const std::uint64_t wanted[2] = {1, 1};
        for (int i = 0; i < 128 * 128; ++i) {
            const int gx = i / 128;
            const int gy = i % 128;
            for (int x = 0; x < 128; ++x) {
                grey[0][x] = grey[1][x] = static_cast<std::uint8_t>(x == 0 ? 0 : gx);
                grey[2][x] = static_cast<std::uint8_t>(grey[0][x] + gy);
            }
            gradient_row(grey.three(), 128, wanted, {out[0], out[1], out[2]});
            const int magnitude = out[0][1];
            const int square = gx * gx + gy * gy;
            ASSERT_EQ(out[1][1] & 0x7F, gx);
            ASSERT_EQ(out[2][1], gy);
            // Nearest integer: its distance to the root is below a half.
            ASSERT_LE(magnitude * magnitude - magnitude, square) << gx << " " << gy;
            ASSERT_LE(square, magnitude * magnitude + magnitude) << gx << " " << gy;
        }
    });
}

TEST(GradientRows, LocalMaxima) {
    on_every_width(2, [](std::size_t width, Random& random) {
        PaddedRows magnitudes(3, width, random, random.chance(0.5) ? 181 : 4);
        PaddedRows gradient(2, width, random, 127);
        for (std::size_t x = 0; x < width; ++x) {
            if (random.chance(0.5)) gradient[0][x] |= 0x80;
            if (random.chance(0.2)) gradient[1][x] = gradient[0][x] & 0x7F;
        }
        const EdgeThresholds thresholds{static_cast<std::uint8_t>(random.between(0, 60)),
                                        static_cast<std::uint8_t>(random.between(0, 100)),
                                        static_cast<std::uint8_t>(random.between(0, 60))};
        const Words steep = random_marks(width, random.chance(0.5) ? 0.01 : 0.5, random);
        const auto call = [&](bool fast, const auto& out) {
            return TWIN(local_maxima_row)(magnitudes.three(),
                                          {magnitudes[1], gradient[0], gradient[1]}, width,
                                          thresholds, steep.data(), out[0], out[1]);
        };
        expect_twins<std::uint64_t>(2, (width + 63) / 64, random, call);
    });
}

}  // namespace simd

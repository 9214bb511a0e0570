#include "simd/blocks/plain/block_threshold_bits.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(BlockThresholdBits, OfEveryWidth) {
    on_every_width(1, [](std::size_t width, Random& random) {
        PaddedRows grey(3, width, random), thresholds(1, width, random);
        const std::uint8_t level = random.byte();
        const std::size_t words = (width + 63) / 64;
        expect_twins<std::uint64_t>(2, words, random, [&](bool fast, const auto& out) {
            TWIN(set_below_blocks)(grey[1], thresholds[0], words, out[0]);
            TWIN(set_dark_areas)(grey.three(), width, level, out[1]);
        });
        const auto marks = random_marks(64 * words, 0.4, random);
        expect_twins(1, (width + 7) / 8, random, [&](bool fast, const auto& out) {
            auto bits = marks;
            if (fast) return set_pixels(bits.data(), width, out[0]);
            plain::set_pixels(bits.data(), width, out[0]);
        });
    });
}

}  // namespace simd

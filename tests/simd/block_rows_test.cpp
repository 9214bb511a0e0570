#include "simd/blocks/plain/block_rows.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(BlockRows, MeansOfBlocks) {
    on_every_width(1, [](std::size_t width, Random& random) {
        const std::size_t words = (width + 63) / 64;
        PaddedRows midpoints(4, 64 * words, random), contrasts(4, 64 * words, random, 255, 0.8);
        Words any(words);
        for (std::size_t i = 0; i < words; ++i) {
            any[i] = random.chance(0.8) ? 1 : 0;
            for (std::size_t k = 0; k < 4 && any[i] == 0; ++k)
                std::fill_n(contrasts[k] + 64 * i, 64, std::uint8_t{0});
        }
        const auto call = [&](bool fast, const auto& out) {
            TWIN(edge_means)(midpoints.four(), contrasts.four(), any.data(), words, out[0], out[1]);
            TWIN(grey_means)(midpoints.four(), words, out[2]);
        };
        expect_twins(3, 16 * words, random, call, kRoom);
    });
}

TEST(BlockRows, OfEveryWidth) {
    on_every_width(2, [](std::size_t width, Random& random) {
        PaddedRows map(3, width, random, random.chance(0.5) ? 255 : 9,
                       random.chance(0.5) ? 0.5 : 0.9);
        const std::uint8_t limit = random.byte();
        const auto call = [&](bool fast, const auto& out) {
            TWIN(fill_empty_row)(map.three(), width, out[0]);
            TWIN(average_filled_row)(map.three(), width, out[1]);
            TWIN(midrange_row)(map.three(), width, limit, out[2]);
        };
        expect_twins(3, width, random, call, kRoom);
    });
}

}  // namespace simd

#include "simd/blocks/plain/block_fill.h"

#include "support/kernel_frame.h"

namespace simd {

// The row below the last one is the last one itself.
TEST(BlockFill, OfEveryWidth) {
    on_every_width(0, [](std::size_t width, Random& random) {
        for (int round = 0; round < 3; ++round) {
            std::vector<Row> rows;
            for (int i = 0; i < 3; ++i)
                rows.emplace_back(width, random, 0, 255, random.between(0, 10) / 10.0);
            const auto call = [&](bool fast, const auto& out) {
                const std::uint8_t* const below = round == 2 ? out[2] : rows[2].data();
                TWIN(dilate_into_empty)(rows[0], rows[1], rows[2], width, out[0]);
                TWIN(propagate_forward)(rows[1], rows[0], width, out[1]);
                std::copy_n(out[1], width, out[2]);
                TWIN(propagate_backward)(rows[1], below, width, out[2]);
            };
            expect_twins(3, width, random, call);
        }
    });
}

}  // namespace simd

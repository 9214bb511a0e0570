#include "simd/pixels/plain/cell_sums.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(CellSums, OfEveryWidth) {
    on_every_width(0, [](std::size_t cells, Random& random) {
        Row row(16 * cells, random);
        expect_twins<std::uint16_t>(3, cells, random, [&](bool fast, const auto& out) {
            TWIN(add_sixteens)(row, cells, out[0]);
            TWIN(add_pairs)(row, cells, out[1]);
            TWIN(absolute_differences)(out[0], out[1], cells, out[2]);
        });
    });
}

}  // namespace simd

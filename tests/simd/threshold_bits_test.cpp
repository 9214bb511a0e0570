#include "simd/pixels/plain/threshold_bits.h"

#include "support/kernel_frame.h"

namespace simd {

// The thresholds end where their memory ends: one behind the last is not there to be read.
TEST(ThresholdBits, OfRowsAndOfBlocks) {
    on_every_width(0, [](std::size_t width, Random& random) {
        for (const int most : {9, 255}) {
            Row grey(width, random, 0, most), blocks((width + 3) / 4, random, 0, most);
            const auto threshold = static_cast<std::uint8_t>(random.between(0, most));
            const auto call = [&](bool fast, const auto& out) {
                TWIN(pack_below)(grey, width, threshold, out[0]);
                TWIN(pack_below_blocks)(grey, width, blocks, out[1]);
            };
            expect_twins(2, (width + 7) / 8, random, call);
        }
    });
}

}  // namespace simd

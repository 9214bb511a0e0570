#include "simd/bits/plain/shift_bits.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(ShiftBits, OfEveryLengthIntoRowsOfAnyLength) {
    on_every_width(0, [](std::size_t length, Random& random) {
        Row src(length, random);
        for (const std::size_t dst_bytes : {length, length + 1, 71UL, length / 2, 2 * length}) {
            for (const unsigned pixels : {0U, 1U, 7U, 13U, 64U, 571U, 4'294'967'295U}) {
                const unsigned moved =
                    pixels < 64 ? pixels + static_cast<unsigned>(length % 8) : pixels;
                expect_twins(1, dst_bytes, random, [&](bool fast, const auto& out) {
                    TWIN(shift_right)(src, length, moved, out[0], dst_bytes);
                });
            }
        }
    });
}

}  // namespace simd

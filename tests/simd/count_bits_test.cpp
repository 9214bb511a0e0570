#include "simd/bits/plain/count_bits.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(CountBits, OfEveryLength) {
    on_every_width(0, 300, [](std::size_t size, Random& random) {
        Row bytes(size, random);
        ASSERT_EQ(count_bits(bytes, size), plain::count_bits(bytes, size));
    });
}

}  // namespace simd

#include "simd/pixels/plain/histogram.h"

#include "support/kernel_frame.h"

namespace simd {

// Spans of levels that a count by the halves of a level must not mix up.
TEST(Histogram, AddsEveryLevel) {
    for (const int span : {0, 1, 14, 15, 16, 255}) {
        for (const std::size_t count : {0U, 1U, 3U, 63U, 511U, 512U, 513U, 1023U, 1024U, 5000U}) {
            on_every_width(count, count, [&](std::size_t, Random& random) {
                Row bytes(count, random, 0, span);
                for (std::size_t i = 0; i < count; ++i)
                    bytes[i] = static_cast<std::uint8_t>(bytes[i] + 230);
                expect_twins<std::uint64_t>(1, 256, random, [&](bool fast, auto& out) {
                    Histogram histogram;
                    std::copy_n(out[0], 256, histogram.begin());
                    TWIN(add_to_histogram)(bytes, count, histogram);
                    std::copy_n(histogram.begin(), 256, out[0]);
                });
            });
        }
    }
}

}  // namespace simd

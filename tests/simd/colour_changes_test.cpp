#include "simd/bits/plain/colour_changes.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(ColourChanges, OfEveryWidth) {
    on_every_width(1, 3 * 512 + 64, [](std::size_t width, Random& random) {
        if (width > 700 && width % 64 > 2) return;
        const int rows = static_cast<int>(width) % kMaxChangeRows + 1;
        const bool row_below = width % 3 == 0;
        const std::size_t bytes = (width + 7) / 8;
        const std::size_t stride = bytes + width % 5;
        const auto rows_read = static_cast<std::size_t>(rows + (row_below ? 1 : 0));
        Row page((rows_read - 1) * stride + bytes, random);
        expect_twins(4, bytes, random, [&](bool fast, const auto& out) {
            TWIN(count_changes)
            (page, static_cast<std::ptrdiff_t>(stride), rows, row_below,
             static_cast<std::int32_t>(width), {out[0], out[1], out[2], out[3]});
        });
    });
}

}  // namespace simd

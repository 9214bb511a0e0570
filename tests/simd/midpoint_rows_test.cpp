#include "simd/pixels/plain/midpoint_rows.h"

#include "support/kernel_frame.h"

namespace simd {

// Edges are none at the ends of a row; the midpoints of three rows give the marks of one.
TEST(MidpointRows, OfEveryWidth) {
    on_every_width(2, [](std::size_t width, Random& random) {
        PaddedRows grey(5, width, random, random.chance(0.2) ? 1 : 255);
        PaddedRows midpoints(3, width, random), contrast(1, width, random);
        std::vector<Words> edges;
        const std::size_t words = (width + 63) / 64;
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back(random_marks(width, random.chance(0.2) ? 0 : 0.1, random));
            edges[i][0] &= ~std::uint64_t{1};
            edges[i].back() &= ~(std::uint64_t{1} << ((width - 1) % 64));
            const auto call = [&](bool fast, const auto& out) {
                return TWIN(midpoint_row)(grey.three(i), edges[i].data(), words, out[0], out[1]);
            };
            expect_twins(2, width, random, call, kRoom);
            plain::midpoint_row(grey.three(i), edges[i].data(), words, midpoints[i], contrast[0]);
        }
        const ThreeBitRows bits{edges[0].data(), edges[1].data(), edges[2].data()};
        expect_twins<std::uint64_t>(1, words, random, [&](bool fast, const auto& out) {
            TWIN(mark_below_midpoints)(midpoints.three(), bits, grey[2], width, out[0]);
        });
    });
}

}  // namespace simd

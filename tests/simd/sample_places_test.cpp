#include "simd/pixels/plain/sample_places.h"

#include <limits>

#include "support/kernel_frame.h"

namespace simd {

// Inside, outside, on whole pixels, just beside them, and no numbers.
TEST(SamplePlaces, AnywhereInAndAroundAnImage) {
    on_every_width(0, 100, [](std::size_t count, Random& random) {
        const int height = random.between(1, 30);
        const int width = random.between(1, 30);
        Row image(static_cast<std::size_t>(3 * height * width), random);
        std::vector<double> x(count), y(count), w(count);
        const bool all_inside = random.chance(0.5);
        const auto place = [&](int size) {
            const double whole = all_inside ? 1 : random.between(-2, size + 1);
            if (!all_inside && random.chance(0.1)) return std::numeric_limits<double>::quiet_NaN();
            if (!all_inside && random.chance(0.1)) return 1e300;
            if (random.chance(0.2)) return whole;
            if (random.chance(0.2)) return whole + 1e-15;
            return whole + random.between(0, 65535) / 65536.0;
        };
        for (std::size_t i = 0; i < count; ++i) {
            w[i] = random.between(1, 1000) / 500.0;
            x[i] = place(width) * w[i];
            y[i] = place(height) * w[i];
        }
        expect_twins(3, count, random, [&](bool fast, const auto& out) {
            TWIN(sample_places)
            ({image, 3 * width, height, width}, {x.data(), y.data(), w.data()}, count,
             {out[0], out[1], out[2]});
        });
    });
}

}  // namespace simd

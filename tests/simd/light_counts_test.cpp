#include "simd/pixels/plain/light_counts.h"

#include "support/kernel_frame.h"

namespace simd {

// Also of more rows than a byte can count.
TEST(LightCounts, AddTheRowsOfAPage) {
    on_every_width(0, [](std::size_t width, Random& random) {
        const std::int32_t height = width % 64 == 1 ? 300 : 7;
        Row page(static_cast<std::size_t>(height) * (width + 3), random);
        const common::GreyView grey{page, height, static_cast<std::int32_t>(width),
                                    static_cast<std::ptrdiff_t>(width) + 3};
        for (const int level : {1, 100, 248}) {
            const auto call = [&](bool fast, const auto& out) {
                LightCounts counts;
                std::copy_n(out[0], kLightLevels, counts.at_least.begin());
                TWIN(count_light)(grey, static_cast<std::uint8_t>(level), counts);
                std::copy_n(counts.at_least.begin(), kLightLevels, out[0]);
                return counts.least;
            };
            expect_twins<std::uint64_t>(1, kLightLevels, random, call);
        }
    });
}

}  // namespace simd

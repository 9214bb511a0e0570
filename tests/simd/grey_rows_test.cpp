#include "simd/pixels/plain/grey_rows.h"

#include "support/kernel_frame.h"

namespace simd {

TEST(GreyRows, LuminanceOfEveryColour) {
    on_colours(1, [](const Bytes& colours) {
        Bytes grey(65536), expected(65536);
        const auto order = ChannelOrder::kRedFirst;
        luminance_row(colours.data(), grey.size(), order, grey.data());
        plain::luminance_row(colours.data(), grey.size(), order, expected.data());
        ASSERT_EQ(grey, expected) << "red " << int{colours[0]};
        Bytes in_place = colours;
        luminance_in_place(in_place.data(), grey.size(), order);
        plain::luminance_in_thousandths(colours.data(), grey.size(), order, expected.data());
        in_place.resize(grey.size());
        ASSERT_EQ(in_place, expected) << "red " << int{colours[0]};
    });
}

TEST(GreyRows, OfEveryWidth) {
    on_every_width(0, [](std::size_t width, Random& random) {
        Row noise(3 * width, random);
        // Channels near each other's limit of chroma, greys near the value they are clamped to.
        Row light(3 * width, random, 160), start(width, random, 190);
        // Differences at the limit, and one above it at any place.
        Row first(width, random, 130, 130), second(width, random, 18, 18);
        const bool differs = width > 0 && random.chance(0.8);
        if (differs) second[random.between(0, static_cast<int>(width) - 1)] = 17;
        const int smooth[] = {1, random.between(2, 254), 255};
        const auto call = [&](bool fast, const auto& out) {
            const auto luminance = TWIN(luminance_row);
            luminance(noise, width, ChannelOrder::kRedFirst, out[0]);
            luminance(noise, width, ChannelOrder::kBlueFirst, out[1]);
            std::copy_n(start.data(), width, out[2]);
            TWIN(clamp_saturated)(light, width, out[2]);
            TWIN(gaussian_row)(noise, noise + width, noise + 2 * width, width, out[3]);
            for (std::size_t i = 0; i < 3; ++i) {
                const auto weight = static_cast<NeighbourWeight>(1024 / (smooth[i] + 8));
                TWIN(smooth_row)
                (noise, noise + width, noise + 2 * width, width, weight, out[4 + i]);
            }
            return TWIN(differs_above)(first, second, width, 112) +
                   2 * TWIN(differs_above)(second, first, width, 112);
        };
        expect_twins(7, width, random, call);
    });
}

}  // namespace simd

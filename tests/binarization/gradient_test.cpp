#include "binarization/gradient.h"

#include <gtest/gtest.h>

#include <vector>

#include "models/gradient_model.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::GuardedBuffer;
using support::Random;

std::uint8_t clamped(int value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// Kinds of pages: noise, noise of little range, text on paper that darkens, slopes with steps,
// nearly flat dark greys.
Bytes page_of(int kind, int height, int width, std::uint32_t seed) {
    Random random(seed);
    const auto size = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
    if (kind == 0) return support::random_bytes(size, seed);
    Bytes page(size);
    const auto stride = static_cast<std::size_t>((width + 7) / 8);
    const Bytes ink = support::random_text(height, width, stride, seed);
    const int paper = random.between(60, 250);
    const int depth = random.between(5, 200);
    const int slope = random.between(-3, 3);
    const int noise = random.between(1, 12);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                            static_cast<std::size_t>(x);
            const auto byte =
                static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x / 8);
            const bool black = (ink[byte] >> (7 - x % 8) & 1) != 0;
            int value = 0;
            if (kind == 1) value = random.between(100, 100 + 2 * noise);
            if (kind == 2) value = paper - (black ? depth : 0) + slope * x / 8 - noise / 2;
            if (kind == 3) value = (x * slope * 2 + y * 5) / (1 + y / 16) % 256 + (black ? 40 : 0);
            if (kind == 4) value = random.chance(0.05) ? 8 : 0;
            page[at] = clamped(value + (kind == 2 ? random.between(0, noise) : 0));
        }
    }
    return page;
}

int one_of(Random& random, const std::vector<int>& values) {
    return values[static_cast<std::size_t>(random.between(0, static_cast<int>(values.size()) - 1))];
}

binarization::GradientParameters random_parameters(Random& random) {
    binarization::GradientParameters made;
    if (random.chance(0.4)) return made;
    const auto byte = [&](const std::vector<int>& values) {
        const int value = random.chance(0.3) ? random.between(0, 255) : one_of(random, values);
        return static_cast<std::uint8_t>(value);
    };
    made.fill_mean = random.chance(0.4);
    made.internal_gaussian_smoothing = static_cast<std::uint8_t>(random.between(0, 2));
    made.delta1 = byte({0, 1, 8, 20, 40, 60, 239, 245, 246, 247, 255});
    made.delta2 = byte({0, 1, 2, 16, 32, 40, 255});
    made.black1 = byte({0, 1, 2, 100, 128, 255});
    made.black2 = byte({0, 1, 96, 128, 255});
    made.normalize_magnitude = static_cast<std::uint8_t>(random.between(0, 3));
    return made;
}

TEST(Gradient, GivesTheModelsBytes) {
    Random random(1);
    for (int i = 0; i < 1500; ++i) {
        const bool small = random.chance(0.5);
        const bool tall = !small && random.chance(0.15);
        const int height = tall ? random.between(99, 235) : random.between(1, small ? 9 : 70);
        const int width = random.between(1, small ? 9 : (tall ? 70 : 150));
        const int threads = random.between(1, 8);
        const int kind = random.between(0, 4);
        const binarization::GradientParameters p = random_parameters(random);
        Bytes grey = page_of(kind, height, width, static_cast<std::uint32_t>(i));

        const auto stride = static_cast<std::size_t>(common::bitonal_stride(width));
        Bytes expected(stride * static_cast<std::size_t>(height));
        model::bi_grey_gradl(grey.data(), height, width,
                             {p.fill_mean ? 1 : 0, p.internal_gaussian_smoothing, p.delta1,
                              p.delta2, p.black1, p.black2, p.normalize_magnitude},
                             threads, expected.data());
        GuardedBuffer out(expected.size());
        binarization::binarize_by_gradient(
            {grey.data(), height, width, width}, p, threads,
            {out.data(), height, width, static_cast<std::ptrdiff_t>(stride)});
        ASSERT_TRUE(out.contents() == expected)
            << "case " << i << ": kind " << kind << ", " << height << " x " << width << ", threads "
            << threads << ", fill mean " << p.fill_mean << ", smoothing "
            << int{p.internal_gaussian_smoothing} << ", deltas " << int{p.delta1} << " "
            << int{p.delta2} << ", black " << int{p.black1} << " " << int{p.black2}
            << ", normalize " << int{p.normalize_magnitude};
        ASSERT_TRUE(out.guards_intact()) << "case " << i;
    }
}

}  // namespace

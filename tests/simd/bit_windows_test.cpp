#include "simd/bits/plain/bit_windows.h"

#include "support/kernel_frame.h"

namespace simd {

// Every distance to beyond two words, within margins like the words: noise, one bit or none.
TEST(BitWindows, MovedByEveryDistance) {
    on_every_width(1, 150, [](std::size_t pixels, Random& random) {
        const std::size_t count = kWindowWords * (1 + pixels % 3);
        const std::size_t margin = margin_words(pixels);
        const double density = pixels % 4 < 2 ? 0.5 : pixels % 4 == 2 ? 0.001 : 0.0;
        const auto marks = random_marks(64 * (count + 2 * margin), density, random);
        expect_twins<std::uint64_t>(5, count, random, [&](bool fast, const auto& out) {
            const auto run = [&](std::size_t i, const auto& kernel) {
                auto words = marks;
                const bool any = kernel(words.data() + margin);
                std::copy_n(words.data() + margin, count, out[i]);
                return any ? 1 << i : 0;
            };
            const auto moved = [&](std::size_t i, auto* kernel) {
                return run(i, [&](auto* words) { return kernel(words, count, pixels); });
            };
            return moved(0, TWIN(and_following)) + moved(1, TWIN(and_preceding)) +
                   moved(2, TWIN(or_following)) + moved(3, TWIN(or_preceding)) +
                   run(4, [&](auto* words) { return TWIN(swap_word_bytes)(words, count); });
        });
    });
}

}  // namespace simd

#include "simd/bit_windows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Words = std::vector<std::uint64_t>;
using Bytes = std::vector<std::uint8_t>;

Words random_words(std::size_t count, double density, std::uint32_t seed) {
    const Bytes bytes = support::random_bitonal(1, 8 * count, density, seed);
    Words words(count);
    if (count != 0) std::memcpy(words.data(), bytes.data(), bytes.size());
    return words;
}

bool pixel(const Words& words, std::size_t index) {
    return (words[index / 64] >> (63 - index % 64) & 1) != 0;
}

struct Case {
    bool (*combine)(std::uint64_t*, std::size_t, std::size_t);
    bool conjunction;
    bool following;
};

TEST(BitWindows, CombineWithThePixelsThatFollowOrPrecede) {
    constexpr std::size_t kPixels[] = {1, 2, 31, 63, 64, 65, 127, 128, 300};
    support::on_every_target([&] {
        for (const Case& c :
             {Case{simd::and_following, true, true}, Case{simd::and_preceding, true, false},
              Case{simd::or_following, false, true}, Case{simd::or_preceding, false, false}}) {
            for (std::size_t count = 0; count <= 4 * simd::kWindowWords;
                 count += simd::kWindowWords) {
                for (const std::size_t pixels : kPixels) {
                    const std::size_t margin = simd::margin_words(pixels);
                    const Words before = random_words(count + 2 * margin, c.conjunction ? 0.8 : 0.2,
                                                      static_cast<std::uint32_t>(count + pixels));
                    Words after = before;
                    const bool any = c.combine(after.data() + margin, count, pixels);
                    Words expected = before;
                    bool any_expected = false;
                    for (std::size_t i = 64 * margin; i < 64 * (margin + count); ++i) {
                        const bool own = pixel(before, i);
                        const bool other = pixel(before, c.following ? i + pixels : i - pixels);
                        const bool result = c.conjunction ? own && other : own || other;
                        any_expected = any_expected || result;
                        const std::uint64_t bit = std::uint64_t{1} << (63 - i % 64);
                        if (result != own) expected[i / 64] ^= bit;
                    }
                    ASSERT_EQ(after, expected) << count << " words, " << pixels << " pixels";
                    ASSERT_EQ(any, any_expected);
                }
            }
        }
    });
}

TEST(BitWindows, SwapTheBytesOfWords) {
    support::on_every_target([] {
        for (const std::size_t count : {0U, 8U, 24U}) {
            Words words = random_words(count, 0.5, 3);
            Bytes expected(8 * count);
            if (count != 0) std::memcpy(expected.data(), words.data(), expected.size());
            for (std::size_t i = 0; i < expected.size(); i += 8) {
                std::reverse(expected.data() + i, expected.data() + i + 8);
            }
            EXPECT_EQ(simd::swap_word_bytes(words.data(), count), count != 0);
            EXPECT_TRUE(count == 0 ||
                        std::memcmp(words.data(), expected.data(), expected.size()) == 0);
            std::fill(words.begin(), words.end(), 0);
            EXPECT_FALSE(simd::swap_word_bytes(words.data(), count));
        }
    });
}

}  // namespace

// Vector forms of block_threshold_bits.h, a word of 64 pixels at a time.
#include "simd/block_threshold_bits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/block_threshold_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/word_vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {

// Each of the thresholds of Lanes / 4 blocks four times. Widened by zeros, a threshold has the
// lowest byte of a lane of 32 bits, and shifts copy it to the others.
HWY_INLINE ByteVector four_times(const std::uint8_t* thresholds) {
    const hn::Repartition<std::uint32_t, Bytes> quads;
    const hn::Rebind<std::uint8_t, decltype(quads)> quarter;
    const auto wide = hn::PromoteTo(quads, hn::LoadU(quarter, thresholds));
    const auto pairs = hn::Or(wide, hn::ShiftLeft<8>(wide));
    return hn::BitCast(kBytes, hn::Or(pairs, hn::ShiftLeft<16>(pairs)));
}

void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits) {
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kBytes)) {
            const std::size_t x = 64 * i + at;
            const ByteVector limits = four_times(thresholds + x / 4);
            word |= bits_of(hn::Lt(hn::LoadU(kBytes, grey + x), limits)) << at;
        }
        bits[i] |= word;
    }
}

// All ones where the sum of the nine pixels is below the limit.
HWY_INLINE ByteVector sum_below(const ThreeRows& grey, std::size_t x, WordVector limit) {
    WordVector column[4];
    for (int side = 0; side < 2; ++side) {
        const auto from = static_cast<std::ptrdiff_t>(x) + 2 * side - 1;
        const ByteVector above = hn::LoadU(kBytes, grey.above + from);
        const ByteVector row = hn::LoadU(kBytes, grey.row + from);
        const ByteVector below = hn::LoadU(kBytes, grey.below + from);
        column[2 * side] = hn::Add(hn::Add(even_bytes(above), even_bytes(row)), even_bytes(below));
        column[2 * side + 1] = hn::Add(hn::Add(odd_bytes(above), odd_bytes(row)), odd_bytes(below));
    }
    const WordVector shared = hn::Add(column[1], column[2]);
    const auto even = hn::VecFromMask(kWords, hn::Lt(hn::Add(shared, column[0]), limit));
    const auto odd = hn::VecFromMask(kWords, hn::Lt(hn::Add(shared, column[3]), limit));
    return hn::BitCast(kBytes, hn::Or(hn::ShiftRight<8>(even), hn::ShiftLeft<8>(odd)));
}

// Where all dark pixels are black already, which is nearly everywhere, nothing is left to find out.
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits) {
    const ByteVector levels = hn::Set(kBytes, level);
    const WordVector limit = hn::Set(kWords, static_cast<std::uint16_t>(9 * level));
    const std::size_t words = (width + 63) / 64;
    for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t inner = inner_pixels(i, width);
        std::uint64_t dark = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kBytes)) {
            dark |= bits_of(hn::Lt(hn::LoadU(kBytes, grey.row + 64 * i + at), levels)) << at;
        }
        dark &= inner & ~bits[i];
        if (dark == 0) continue;
        std::uint64_t surrounded = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kBytes)) {
            surrounded |= bits_of(hn::MaskFromVec(sum_below(grey, 64 * i + at, limit))) << at;
        }
        bits[i] |= dark & surrounded;
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(set_below_blocks);
HWY_EXPORT(set_dark_areas);

void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(set_below_blocks)(grey, thresholds, words, bits);
}

void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(set_dark_areas)(grey, width, level, bits);
}

}  // namespace simd
#endif  // HWY_ONCE

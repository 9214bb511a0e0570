// What vector kernels share that work on words of 64 pixels, or on pixels as halves of 16-bit
// lanes. Included by their sources only, once per instruction set.
#if defined(VEMOPREPRO_SIMD_WORD_VECTORS_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef VEMOPREPRO_SIMD_WORD_VECTORS_H_
#undef VEMOPREPRO_SIMD_WORD_VECTORS_H_
#else
#define VEMOPREPRO_SIMD_WORD_VECTORS_H_
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// At most a word of pixels; every vector is a whole number of times in a word.
using Bytes = hn::CappedTag<std::uint8_t, 64>;
using Words = hn::Repartition<std::uint16_t, Bytes>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;

constexpr Bytes kBytes;
constexpr Words kWords;

// Bytes as numbers of 16 bits, without anything to widen or to pack: those at even places and those
// at odd ones.
HWY_INLINE WordVector even_bytes(ByteVector bytes) {
    return hn::And(hn::BitCast(kWords, bytes), hn::Set(kWords, std::uint16_t{0xFF}));
}

HWY_INLINE WordVector odd_bytes(ByteVector bytes) {
    return hn::ShiftRight<8>(hn::BitCast(kWords, bytes));
}

// The reverse, for numbers below 256.
HWY_INLINE ByteVector interleave(WordVector even, WordVector odd) {
    return hn::BitCast(kBytes, hn::Or(even, hn::ShiftLeft<8>(odd)));
}

HWY_INLINE WordVector one_two_one(WordVector first, WordVector middle, WordVector last) {
    return hn::Add(hn::Add(first, last), hn::Add(middle, middle));
}

// A bit per lane, lane 0 in the least significant one.
template <class Mask>
HWY_INLINE std::uint64_t bits_of(Mask mask) {
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(kBytes, mask, bytes);
    std::uint64_t bits;
    std::memcpy(&bits, bytes, sizeof bits);
    return bits;
}

// Lanes of a word from pixel `at` of the word on.
HWY_INLINE hn::Mask<Bytes> mask_of(std::uint64_t word, std::size_t at) {
    const std::uint64_t bits = word >> at;
    std::uint8_t bytes[8];
    std::memcpy(bytes, &bits, sizeof bits);
    return hn::LoadMaskBits(kBytes, bytes);
}

// The pixels of word i that are neither the first nor the last of a row, nor behind it.
HWY_INLINE std::uint64_t inner_pixels(std::size_t i, std::size_t width) {
    std::uint64_t inner = ~std::uint64_t{0};
    if (i == 0) inner &= ~std::uint64_t{1};
    if (width - 1 < 64 * i + 64) {
        inner &= width - 1 <= 64 * i ? 0 : (std::uint64_t{1} << (width - 1 - 64 * i)) - 1;
    }
    return inner;
}

// Calls visit(at) for each vector of a word, `at` its first pixel.
template <class Visit>
HWY_INLINE void by_vectors(const Visit& visit) {
    for (std::size_t at = 0; at < 64; at += hn::Lanes(kBytes)) visit(at);
}

// For every place the bytes of the 3 x 3 around it that are not 0: their sum in the low 12 bits,
// which nine bytes do not fill, and how many they are in the high 4.
struct SumsAndCounts {
    WordVector even;
    WordVector odd;
};

HWY_INLINE SumsAndCounts counted(ByteVector bytes) {
    const ByteVector ones = hn::Min(bytes, hn::Set(kBytes, std::uint8_t{1}));
    return {hn::Or(even_bytes(bytes), hn::ShiftLeft<12>(even_bytes(ones))),
            hn::Or(odd_bytes(bytes), hn::ShiftLeft<12>(odd_bytes(ones)))};
}

// With the rows from one byte to the left on and from one to the right on, the four columns that
// the bytes x and x + 1 of a lane need, x even, are x - 1 and x in the first and x + 1 and x + 2 in
// the second.
HWY_INLINE SumsAndCounts sums_around(const std::uint8_t* above, const std::uint8_t* row,
                                     const std::uint8_t* below) {
    const auto column_sums = [&](std::ptrdiff_t from) HWY_ATTR {
        const SumsAndCounts a = counted(hn::LoadU(kBytes, above + from));
        const SumsAndCounts b = counted(hn::LoadU(kBytes, row + from));
        const SumsAndCounts c = counted(hn::LoadU(kBytes, below + from));
        return SumsAndCounts{hn::Add(hn::Add(a.even, b.even), c.even),
                             hn::Add(hn::Add(a.odd, b.odd), c.odd)};
    };
    const SumsAndCounts left = column_sums(-1);
    const SumsAndCounts right = column_sums(1);
    const WordVector shared = hn::Add(left.odd, right.even);
    return {hn::Add(left.even, shared), hn::Add(shared, right.odd)};
}

HWY_INLINE WordVector sums_of(WordVector sums_and_counts) {
    return hn::And(sums_and_counts, hn::Set(kWords, std::uint16_t{0xFFF}));
}

HWY_INLINE WordVector counts_of(WordVector sums_and_counts) {
    return hn::ShiftRight<12>(sums_and_counts);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#endif  // VEMOPREPRO_SIMD_WORD_VECTORS_H_

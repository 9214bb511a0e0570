// What vector kernels share: names for vectors by the type of their lanes, pixels as bytes in lanes
// of 16 bits, and masks of 64 pixels. Included only by the sources of kernels, once per instruction
// set.
#if defined(VEMOPREPRO_SIMD_VECTORS_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef VEMOPREPRO_SIMD_VECTORS_H_
#undef VEMOPREPRO_SIMD_VECTORS_H_
#else
#define VEMOPREPRO_SIMD_VECTORS_H_
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// At most 64 bytes, so that the 64 pixels of a mask are always a number of full vectors.
using U8 = hn::CappedTag<std::uint8_t, 64>;
using U16 = hn::Repartition<std::uint16_t, U8>;
using VecU8 = hn::Vec<U8>;
using VecU16 = hn::Vec<U16>;

constexpr U8 kU8;
constexpr U16 kU16;

// Bytes as numbers of 16 bits: those at even places and those at odd ones. Nothing has to be
// widened or packed that way.
HWY_INLINE VecU16 even_bytes(VecU8 bytes) {
    return hn::And(hn::BitCast(kU16, bytes), hn::Set(kU16, std::uint16_t{0xFF}));
}

HWY_INLINE VecU16 odd_bytes(VecU8 bytes) {
    return hn::ShiftRight<8>(hn::BitCast(kU16, bytes));
}

// The bytes of even and odd numbers, which are below 256.
HWY_INLINE VecU8 interleave(VecU16 even, VecU16 odd) {
    return hn::BitCast(kU8, hn::Or(even, hn::ShiftLeft<8>(odd)));
}

HWY_INLINE VecU16 one_two_one(VecU16 first, VecU16 middle, VecU16 last) {
    return hn::Add(hn::Add(first, last), hn::Add(middle, middle));
}

// Blocks of 16 bytes that start `step` bytes apart, the first in the lowest lanes.
template <class D>
HWY_INLINE hn::Vec<D> load_blocks_apart(D d, const std::uint8_t* from, std::size_t step) {
    if constexpr (hn::MaxLanes(d) == 16) {
        return hn::LoadU(d, from);
    } else {
        const hn::Half<D> half;
        return hn::Combine(d, load_blocks_apart(half, from + hn::MaxLanes(half) / 16 * step, step),
                           load_blocks_apart(half, from, step));
    }
}

// A bit per lane, lane 0 in the least significant one.
template <class Mask>
HWY_INLINE std::uint64_t bits_of(Mask mask) {
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(kU8, mask, bytes);
    std::uint64_t bits;
    std::memcpy(&bits, bytes, sizeof bits);
    return bits;
}

// A mask of the lanes whose bits are set in a word, from bit `at` on.
HWY_INLINE hn::Mask<U8> mask_of(std::uint64_t word, std::size_t at) {
    const std::uint64_t bits = word >> at;
    std::uint8_t bytes[8];
    std::memcpy(bytes, &bits, sizeof bits);
    return hn::LoadMaskBits(kU8, bytes);
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
    for (std::size_t at = 0; at < 64; at += hn::Lanes(kU8)) visit(at);
}

// Exchanges the bits of `a` that lie kBits above those of `low` with the bits of `b` in `low`: a
// step of the exchange of rows and columns (Warren, Hacker's Delight, 7-3), which leaves squares of
// kBits where they belong. With low bits to the left:
//
//     a  A B       A C
//     b  C D  ->   B D
template <int kBits, class V>
HWY_INLINE void exchange_bits(V& a, V& b, std::uint64_t low) {
    const V changed = hn::And(hn::Xor(hn::ShiftRight<kBits>(a), b), hn::Set(hn::DFromV<V>(), low));
    b = hn::Xor(b, changed);
    a = hn::Xor(a, hn::ShiftLeft<kBits>(changed));
}

// Of the 3 x 3 bytes around and at each place: their sum in the low 12 bits, which nine bytes do
// not fill, and in the high 4 bits the number of those that are not 0.
struct SumsAndCounts {
    VecU16 even;
    VecU16 odd;
};

HWY_INLINE SumsAndCounts counted(VecU8 bytes) {
    const VecU8 ones = hn::Min(bytes, hn::Set(kU8, std::uint8_t{1}));
    return {hn::Or(even_bytes(bytes), hn::ShiftLeft<12>(even_bytes(ones))),
            hn::Or(odd_bytes(bytes), hn::ShiftLeft<12>(odd_bytes(ones)))};
}

// The rows are loaded from one byte to the left on and from one to the right on. For the bytes x
// and x + 1 of a lane, x even, the former have the columns x - 1 and x, the latter x + 1 and x + 2.
HWY_INLINE SumsAndCounts sums_around(const std::uint8_t* above, const std::uint8_t* row,
                                     const std::uint8_t* below) {
    const auto column_sums = [&](std::ptrdiff_t from) HWY_ATTR {
        const SumsAndCounts a = counted(hn::LoadU(kU8, above + from));
        const SumsAndCounts b = counted(hn::LoadU(kU8, row + from));
        const SumsAndCounts c = counted(hn::LoadU(kU8, below + from));
        return SumsAndCounts{hn::Add(hn::Add(a.even, b.even), c.even),
                             hn::Add(hn::Add(a.odd, b.odd), c.odd)};
    };
    const SumsAndCounts left = column_sums(-1);
    const SumsAndCounts right = column_sums(1);
    const VecU16 shared = hn::Add(left.odd, right.even);
    return {hn::Add(left.even, shared), hn::Add(shared, right.odd)};
}

HWY_INLINE VecU16 sums_of(VecU16 sums_and_counts) {
    return hn::And(sums_and_counts, hn::Set(kU16, std::uint16_t{0xFFF}));
}

HWY_INLINE VecU16 counts_of(VecU16 sums_and_counts) {
    return hn::ShiftRight<12>(sums_and_counts);
}

}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // VEMOPREPRO_SIMD_VECTORS_H_

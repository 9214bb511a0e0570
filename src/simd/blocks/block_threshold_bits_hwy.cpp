// Vector forms of block_threshold_bits.h, a word of 64 pixels at a time.
#include "simd/blocks/block_threshold_bits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/block_threshold_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/bits/word_vectors.h"

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

// Each byte with its bits in the reverse order.
HWY_INLINE ByteVector reversed_bits(ByteVector bytes) {
    alignas(16) static constexpr std::uint8_t kReversed[16] = {
        0x0, 0x8, 0x4, 0xC, 0x2, 0xA, 0x6, 0xE, 0x1, 0x9, 0x5, 0xD, 0x3, 0xB, 0x7, 0xF};
    const ByteVector table = hn::LoadDup128(kBytes, kReversed);
    const ByteVector low = hn::And(bytes, hn::Set(kBytes, std::uint8_t{0xF}));
    const ByteVector high = hn::BitCast(
        kBytes, hn::ShiftRight<4>(hn::BitCast(kWords, hn::AndNot(hn::Set(kBytes, 0xF), bytes))));
    const auto moved = hn::ShiftLeft<4>(hn::BitCast(kWords, hn::TableLookupBytes(table, low)));
    return hn::Or(hn::BitCast(kBytes, moved), hn::TableLookupBytes(table, high));
}

// The bytes of a word are in the order of the machines that the library is for, the least
// significant one first. The last vector overlaps the one before it: setting a pixel again changes
// nothing.
void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    const std::size_t lanes = hn::Lanes(kBytes);
    const std::size_t count = (width + 7) / 8;
    if (count < lanes) return plain::set_pixels(bits, width, row);
    plain::clear_behind(bits, width);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(bits);
    const auto set = [=](std::size_t i) HWY_ATTR {
        const ByteVector pixels = reversed_bits(hn::LoadU(kBytes, bytes + i));
        hn::StoreU(hn::Or(hn::LoadU(kBytes, row + i), pixels), kBytes, row + i);
    };
    for (std::size_t i = 0; i + lanes < count; i += lanes) set(i);
    set(count - lanes);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(set_below_blocks);
HWY_EXPORT(set_dark_areas);
HWY_EXPORT(set_pixels);

void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(set_below_blocks)(grey, thresholds, words, bits);
}

void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(set_dark_areas)(grey, width, level, bits);
}

void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    HWY_DYNAMIC_DISPATCH(set_pixels)(bits, width, row);
}

}  // namespace simd
#endif  // HWY_ONCE

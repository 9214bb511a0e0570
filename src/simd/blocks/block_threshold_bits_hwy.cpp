// Vector forms of block_threshold_bits.h, a word of 64 pixels at a time.
#include "simd/blocks/block_threshold_bits.h"

#include "simd/blocks/plain/block_threshold_bits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/block_threshold_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

// The thresholds of as many blocks as a vector has pixels of, each four times. When a threshold is
// widened to 32 bits, it stands in the lowest byte of its lane; shifts copy it to the others.
HWY_INLINE VecU8 four_times(const std::uint8_t* thresholds) {
    const hn::Repartition<std::uint32_t, U8> quads;
    const hn::Rebind<std::uint8_t, decltype(quads)> quarter;
    const auto wide = hn::PromoteTo(quads, hn::LoadU(quarter, thresholds));
    const auto pairs = hn::Or(wide, hn::ShiftLeft<8>(wide));
    return hn::BitCast(kU8, hn::Or(pairs, hn::ShiftLeft<16>(pairs)));
}

void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits) {
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kU8)) {
            const std::size_t x = 64 * i + at;
            const VecU8 limits = four_times(thresholds + x / 4);
            word |= bits_of(hn::Lt(hn::LoadU(kU8, grey + x), limits)) << at;
        }
        bits[i] |= word;
    }
}

// All ones where the sum of the nine pixels around and at a pixel is below the limit.
HWY_INLINE VecU8 sum_below(const ThreeRows& grey, std::size_t x, VecU16 limit) {
    VecU16 column[4];
    for (int side = 0; side < 2; ++side) {
        const auto from = static_cast<std::ptrdiff_t>(x) + 2 * side - 1;
        const VecU8 above = hn::LoadU(kU8, grey.above + from);
        const VecU8 row = hn::LoadU(kU8, grey.row + from);
        const VecU8 below = hn::LoadU(kU8, grey.below + from);
        column[2 * side] = hn::Add(hn::Add(even_bytes(above), even_bytes(row)), even_bytes(below));
        column[2 * side + 1] = hn::Add(hn::Add(odd_bytes(above), odd_bytes(row)), odd_bytes(below));
    }
    const VecU16 shared = hn::Add(column[1], column[2]);
    const auto even = hn::VecFromMask(kU16, hn::Lt(hn::Add(shared, column[0]), limit));
    const auto odd = hn::VecFromMask(kU16, hn::Lt(hn::Add(shared, column[3]), limit));
    return hn::BitCast(kU8, hn::Or(hn::ShiftRight<8>(even), hn::ShiftLeft<8>(odd)));
}

// In nearly all words every dark pixel is black already; their surroundings need not be looked at.
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits) {
    const VecU8 levels = hn::Set(kU8, level);
    const VecU16 limit = hn::Set(kU16, static_cast<std::uint16_t>(9 * level));
    const std::size_t words = (width + 63) / 64;
    for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t inner = inner_pixels(i, width);
        std::uint64_t dark = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kU8)) {
            dark |= bits_of(hn::Lt(hn::LoadU(kU8, grey.row + 64 * i + at), levels)) << at;
        }
        dark &= inner & ~bits[i];
        if (dark == 0) continue;
        std::uint64_t surrounded = 0;
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kU8)) {
            surrounded |= bits_of(hn::MaskFromVec(sum_below(grey, 64 * i + at, limit))) << at;
        }
        bits[i] |= dark & surrounded;
    }
}

// Each byte with its bits in the reverse order.
HWY_INLINE VecU8 reversed_bits(VecU8 bytes) {
    alignas(16) static constexpr std::uint8_t kReversed[16] = {
        0x0, 0x8, 0x4, 0xC, 0x2, 0xA, 0x6, 0xE, 0x1, 0x9, 0x5, 0xD, 0x3, 0xB, 0x7, 0xF};
    const VecU8 table = hn::LoadDup128(kU8, kReversed);
    const VecU8 low = hn::And(bytes, hn::Set(kU8, std::uint8_t{0xF}));
    const VecU8 high = hn::BitCast(
        kU8, hn::ShiftRight<4>(hn::BitCast(kU16, hn::AndNot(hn::Set(kU8, 0xF), bytes))));
    const auto moved = hn::ShiftLeft<4>(hn::BitCast(kU16, hn::TableLookupBytes(table, low)));
    return hn::Or(hn::BitCast(kU8, moved), hn::TableLookupBytes(table, high));
}

// Words have their least significant byte first (see common/byte_order.h), so that byte i of the
// words belongs to byte i of the row. The last vector overlaps the one before it: setting a pixel
// again changes nothing.
void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    const std::size_t lanes = hn::Lanes(kU8);
    const std::size_t count = (width + 7) / 8;
    if (count < lanes) return plain::set_pixels(bits, width, row);
    if (width % 64 != 0) bits[width / 64] &= (std::uint64_t{1} << (width % 64)) - 1;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(bits);
    const auto set = [=](std::size_t i) HWY_ATTR {
        const VecU8 pixels = reversed_bits(hn::LoadU(kU8, bytes + i));
        hn::StoreU(hn::Or(hn::LoadU(kU8, row + i), pixels), kU8, row + i);
    };
    for (std::size_t i = 0; i + lanes < count; i += lanes) set(i);
    set(count - lanes);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
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

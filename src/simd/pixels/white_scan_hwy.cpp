// Vector forms of white_scan.h. Scans read full vectors as long as there are any, and finish byte
// by byte. A vector without a match is not written.
#include "simd/pixels/white_scan.h"

#include <bit>

#include "simd/pixels/plain/white_scan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/white_scan_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

HWY_INLINE VecU8 white() {
    return hn::Set(kU8, std::uint8_t{255});
}

HWY_INLINE bool all_white(const std::uint8_t* bytes) {
    return hn::AllTrue(kU8, hn::Eq(hn::LoadU(kU8, bytes), white()));
}

std::size_t first_not_white(const std::uint8_t* bytes, std::size_t count) {
    const std::size_t lanes = hn::Lanes(kU8);
    std::size_t i = 0;
    while (i + lanes <= count && all_white(bytes + i)) i += lanes;
    return i + plain::first_not_white(bytes + i, count - i);
}

std::size_t last_not_white(const std::uint8_t* bytes, std::size_t count) {
    const std::size_t lanes = hn::Lanes(kU8);
    std::size_t end = count;
    while (end >= lanes && all_white(bytes + end - lanes)) end -= lanes;
    const std::size_t found = plain::last_not_white(bytes, end);
    return found == end ? count : found;
}

// A bit for each of 64 pixels that is not white.
HWY_INLINE std::uint64_t not_white_bits(const std::uint8_t* pixels, std::size_t pixel_bytes) {
    std::uint8_t stored[8 + 8] = {};  // StoreMaskBits may write a whole vector's worth
    for (std::size_t i = 0; i < 64; i += hn::Lanes(kU8)) {
        VecU8 least;
        if (pixel_bytes == 1) {
            least = hn::LoadU(kU8, pixels + i);
        } else {
            VecU8 second, third;
            hn::LoadInterleaved3(kU8, pixels + 3 * i, least, second, third);
            least = hn::And(hn::And(least, second), third);
        }
        hn::StoreMaskBits(kU8, hn::Eq(least, white()), stored + i / 8);
    }
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < 8; ++i) bits |= std::uint64_t{stored[i]} << (8 * i);
    return ~bits;
}

bool take_not_white(const std::uint8_t* row, std::size_t width, std::size_t pixel_bytes,
                    std::uint64_t* pending, PixelSums& sums) {
    std::uint64_t left = 0;
    std::size_t x = 0;
    for (; x + 64 <= width; x += 64) {
        std::uint64_t& wanted = pending[x / 64];
        if (wanted == 0) continue;
        const std::uint64_t found = wanted & not_white_bits(row + x * pixel_bytes, pixel_bytes);
        wanted ^= found;
        left |= wanted;
        for (std::uint64_t rest = found; rest != 0; rest &= rest - 1) {
            const std::size_t at = x + static_cast<std::size_t>(std::countr_zero(rest));
            sums.add(row + at * pixel_bytes, pixel_bytes);
        }
    }
    const bool in_rest = plain::take_not_white(row + x * pixel_bytes, width - x, pixel_bytes,
                                               pending + x / 64, sums);
    return left != 0 || in_rest;
}

void replace_bytes(std::uint8_t* bytes, std::size_t count, std::uint8_t from, std::uint8_t to) {
    const std::size_t lanes = hn::Lanes(kU8);
    const VecU8 wanted = hn::Set(kU8, from);
    const VecU8 painted = hn::Set(kU8, to);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const VecU8 values = hn::LoadU(kU8, bytes + i);
        const auto equal = hn::Eq(values, wanted);
        if (hn::AllFalse(kU8, equal)) continue;
        hn::StoreU(hn::IfThenElse(equal, painted, values), kU8, bytes + i);
    }
    plain::replace_bytes(bytes + i, count - i, from, to);
}

void replace_triples(std::uint8_t* triples, std::size_t count, const std::uint8_t* from,
                     const std::uint8_t* to) {
    const std::size_t lanes = hn::Lanes(kU8);
    std::size_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        const std::size_t i = 3 * x;
        VecU8 a, b, c, from_a, from_b, from_c;
        hn::LoadInterleaved3(kU8, triples + i, a, b, c);
        hn::LoadInterleaved3(kU8, from + i, from_a, from_b, from_c);
        const auto equal =
            hn::And(hn::And(hn::Eq(a, from_a), hn::Eq(b, from_b)), hn::Eq(c, from_c));
        if (hn::AllFalse(kU8, equal)) continue;
        VecU8 to_a, to_b, to_c;
        hn::LoadInterleaved3(kU8, to + i, to_a, to_b, to_c);
        hn::StoreInterleaved3(hn::IfThenElse(equal, to_a, a), hn::IfThenElse(equal, to_b, b),
                              hn::IfThenElse(equal, to_c, c), kU8, triples + i);
    }
    plain::replace_triples(triples + 3 * x, count - x, from + 3 * x, to + 3 * x);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(first_not_white);
HWY_EXPORT(last_not_white);
HWY_EXPORT(take_not_white);
HWY_EXPORT(replace_bytes);
HWY_EXPORT(replace_triples);

std::size_t first_not_white(const std::uint8_t* bytes, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(first_not_white)(bytes, count);
}

std::size_t last_not_white(const std::uint8_t* bytes, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(last_not_white)(bytes, count);
}

bool take_not_white(const std::uint8_t* row, std::size_t width, std::size_t pixel_bytes,
                    std::uint64_t* pending, PixelSums& sums) {
    return HWY_DYNAMIC_DISPATCH(take_not_white)(row, width, pixel_bytes, pending, sums);
}

void replace_bytes(std::uint8_t* bytes, std::size_t count, std::uint8_t from, std::uint8_t to) {
    HWY_DYNAMIC_DISPATCH(replace_bytes)(bytes, count, from, to);
}

void replace_triples(std::uint8_t* triples, std::size_t count, const std::uint8_t* from,
                     const std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(replace_triples)(triples, count, from, to);
}

}  // namespace simd
#endif  // HWY_ONCE

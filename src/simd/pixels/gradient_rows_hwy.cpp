// Vector forms of gradient_rows.h, a word of 64 pixels at a time.
//
// The even and the odd pixels of a vector of bytes are worked on apart, in lanes of 16 bits, so
// that nothing has to be widened or packed. Magnitudes start from an approximate root in single
// precision, which is then corrected in integers.
#include "simd/pixels/gradient_rows.h"

#include "simd/fetch_ahead.h"
#include "simd/pixels/plain/gradient_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/gradient_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using I16 = hn::Repartition<std::int16_t, U8>;
using I32 = hn::Repartition<std::int32_t, U8>;
using F32 = hn::Repartition<float, U8>;
using VecI16 = hn::Vec<I16>;

constexpr I16 kI16;
constexpr I32 kI32;
constexpr F32 kF32;

HWY_INLINE VecI16 as_i16(VecU16 words) {
    return hn::BitCast(kI16, words);
}

HWY_INLINE VecU16 as_u16(VecI16 words) {
    return hn::BitCast(kU16, words);
}

// The numbers at even and at odd places, in lanes of 32 bits.
HWY_INLINE hn::Vec<I32> low_halves(VecU16 words) {
    return hn::And(hn::BitCast(kI32, words), hn::Set(kI32, 0xFFFF));
}

HWY_INLINE hn::Vec<I32> high_halves(VecU16 words) {
    return hn::ShiftRight<16>(hn::BitCast(kI32, words));
}

// The root of a square above 0 in the low 16 bits of each lane, at most 1 away from the nearest
// integer root on any machine: for that a relative error of 1 / 256 would do. A number that is
// added to 2^23 is rounded to an integer, which stands in the lowest bits of the sum.
HWY_INLINE VecU16 approximate_root(hn::Vec<I32> squares) {
    const auto x = hn::ConvertTo(kF32, squares);
    const auto root = hn::Mul(x, hn::ApproximateReciprocalSqrt(x));
    return hn::BitCast(kU16, hn::Add(root, hn::Set(kF32, 8388608.0F)));
}

// The low halves of `low` and, above them, those of `high`.
HWY_INLINE VecU16 halves(VecU16 low, VecU16 high) {
    const auto low_half = hn::And(hn::BitCast(kI32, low), hn::Set(kI32, 0xFFFF));
    return hn::BitCast(kU16, hn::Or(low_half, hn::ShiftLeft<16>(hn::BitCast(kI32, high))));
}

// The nearest integer roots of squares below 2^15. A root r is the nearest one of the squares from
// r * r - r + 1 to r * r + r.
HWY_INLINE VecU16 rounded_roots(VecU16 squares) {
    const VecU16 one = hn::Set(kU16, std::uint16_t{1});
    const VecU16 positive = hn::Max(squares, one);
    const VecU16 root =
        halves(approximate_root(low_halves(positive)), approximate_root(high_halves(positive)));
    const VecU16 product = hn::Mul(root, root);
    const VecU16 too_small = hn::SaturatedSub(squares, hn::Add(product, root));
    const VecU16 too_large = hn::SaturatedSub(hn::Add(product, one), hn::Add(squares, root));
    return hn::Sub(hn::Add(root, hn::Min(too_small, one)), hn::Min(too_large, one));
}

// A quarter of a response, at most 127.
HWY_INLINE VecU16 component(VecI16 response) {
    const VecU16 size = as_u16(hn::Abs(response));
    return hn::Min(hn::ShiftRight<2>(size), hn::Set(kU16, std::uint16_t{127}));
}

// The nearest roots of squares up to 15, from a table.
HWY_INLINE VecU8 small_roots(VecU16 even, VecU16 odd) {
    alignas(16) constexpr std::uint8_t kRoots[16] = {0, 1, 1, 2, 2, 2, 2, 3,
                                                     3, 3, 3, 3, 3, 4, 4, 4};
    return hn::TableLookupBytes(hn::LoadDup128(kU8, kRoots), interleave(even, odd));
}

// On most of the paper of a page, all gradients of a vector are so small that the table will do.
HWY_INLINE VecU8 magnitudes(VecU16 even, VecU16 odd) {
    const VecU16 small = hn::Set(kU16, std::uint16_t{15});
    if (hn::AllTrue(kU16, hn::Eq(hn::Max(hn::Max(even, odd), small), small))) {
        return small_roots(even, odd);
    }
    return interleave(rounded_roots(even), rounded_roots(odd));
}

// What the two responses of a pixel become.
struct Gradient {
    VecU16 squares;  // of the magnitude
    VecU16 across;
    VecU16 down;
};

// From the sums of three pixels, weighted 1 2 1, of the columns beside a pixel and of the rows
// above and below it.
HWY_INLINE Gradient gradient(VecU16 left, VecU16 right, VecU16 upper, VecU16 lower) {
    const VecI16 gx = as_i16(hn::Sub(right, left));
    const VecI16 gy = as_i16(hn::Sub(lower, upper));
    const VecU16 across = component(gx);
    const VecU16 down = component(gy);
    const VecU16 squares = hn::Add(hn::Mul(across, across), hn::Mul(down, down));
    // The sign of a zero counts for nothing: its component has no weight.
    const VecU16 opposite =
        hn::And(hn::ShiftRight<8>(as_u16(hn::Xor(gx, gy))), hn::Set(kU16, std::uint16_t{0x80}));
    return {squares, hn::Or(across, opposite), down};
}

// The rows are loaded from one pixel to the left on (`before`) and from one to the right on
// (`behind`). For the pixels x and x + 1 of a lane, x even, its bytes are x - 1 and x in the
// former, x + 1 and x + 2 in the latter: the four columns that the two pixels need.
HWY_INLINE void gradient_vector(const std::uint8_t* above, const std::uint8_t* row,
                                const std::uint8_t* below, const GradientRow& out, std::size_t x) {
    const VecU8 above_before = hn::LoadU(kU8, above - 1);
    const VecU8 above_behind = hn::LoadU(kU8, above + 1);
    const VecU8 before = hn::LoadU(kU8, row - 1);
    const VecU8 behind = hn::LoadU(kU8, row + 1);
    const VecU8 below_before = hn::LoadU(kU8, below - 1);
    const VecU8 below_behind = hn::LoadU(kU8, below + 1);
    const VecU16 a0 = even_bytes(above_before), a1 = odd_bytes(above_before);
    const VecU16 a2 = even_bytes(above_behind), a3 = odd_bytes(above_behind);
    const VecU16 b0 = even_bytes(below_before), b1 = odd_bytes(below_before);
    const VecU16 b2 = even_bytes(below_behind), b3 = odd_bytes(below_behind);
    const VecU16 column0 = one_two_one(a0, even_bytes(before), b0);
    const VecU16 column1 = one_two_one(a1, odd_bytes(before), b1);
    const VecU16 column2 = one_two_one(a2, even_bytes(behind), b2);
    const VecU16 column3 = one_two_one(a3, odd_bytes(behind), b3);
    const Gradient even =
        gradient(column0, column2, one_two_one(a0, a1, a2), one_two_one(b0, b1, b2));
    const Gradient odd =
        gradient(column1, column3, one_two_one(a1, a2, a3), one_two_one(b1, b2, b3));
    hn::StoreU(magnitudes(even.squares, odd.squares), kU8, out.magnitude + x);
    hn::StoreU(interleave(even.across, odd.across), kU8, out.across + x);
    hn::StoreU(interleave(even.down, odd.down), kU8, out.down + x);
}

void gradient_row(const ThreeRows& grey, std::size_t width, const std::uint64_t* wanted,
                  const GradientRow& out) {
    for (std::size_t i = 0; i < (width + 63) / 64; ++i) {
        if (wanted[i] == 0) continue;
        by_vectors([&](std::size_t at) HWY_ATTR {
            const std::size_t x = 64 * i + at;
            gradient_vector(grey.above + x, grey.row + x, grey.below + x, out, x);
        });
    }
    if (width == 0) return;
    const std::size_t last = width - 1;
    const std::size_t second = std::min<std::size_t>(1, last);
    plain::gradient_at(grey.above, grey.row, grey.below, 0, 0, second, out);
    plain::gradient_at(grey.above, grey.row, grey.below, last - second, last, last, out);
}

HWY_INLINE VecU8 difference(VecU8 a, VecU8 b) {
    return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
}

// The largest of the six differences at each pixel of a vector.
HWY_INLINE VecU8 largest_difference(const ThreeRows& grey, std::size_t x) {
    const VecU8 above_before = hn::LoadU(kU8, grey.above + x - 1);
    const VecU8 above_behind = hn::LoadU(kU8, grey.above + x + 1);
    const VecU8 below_before = hn::LoadU(kU8, grey.below + x - 1);
    const VecU8 below_behind = hn::LoadU(kU8, grey.below + x + 1);
    const VecU8 across =
        difference(hn::LoadU(kU8, grey.row + x - 1), hn::LoadU(kU8, grey.row + x + 1));
    const VecU8 down = difference(hn::LoadU(kU8, grey.above + x), hn::LoadU(kU8, grey.below + x));
    const VecU8 sides =
        hn::Max(difference(above_before, below_before), difference(above_behind, below_behind));
    const VecU8 rows =
        hn::Max(difference(above_before, above_behind), difference(below_before, below_behind));
    return hn::Max(hn::Max(across, down), hn::Max(sides, rows));
}

void steep_pixels(const ThreeRows& grey, std::size_t words, std::uint8_t limit,
                  std::uint64_t* steep) {
    const VecU8 limits = hn::Set(kU8, limit);
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word = 0;
        by_vectors([&](std::size_t at) HWY_ATTR {
            const std::size_t x = 64 * i + at;
            // The row after `below` most often follows it in memory.
            fetch_ahead(grey.below + x);
            word |= bits_of(hn::Gt(largest_difference(grey, x), limits)) << at;
        });
        steep[i] = word;
    }
}

// (longer - shorter) * straight + shorter * diagonal: at most 127 * 181.
struct Weights {
    VecU16 straight;
    VecU16 diagonal;

    HWY_INLINE VecU16 mean(VecU16 at_straight, VecU16 at_diagonal) const {
        return hn::Add(hn::Mul(straight, at_straight), hn::Mul(diagonal, at_diagonal));
    }
};

// Neighbours on the two sides of a pixel along its gradient.
struct Sides {
    VecU8 straight_ahead;
    VecU8 diagonal_ahead;
    VecU8 straight_behind;
    VecU8 diagonal_behind;
};

// All ones where the pixel is not below the means on either side.
HWY_INLINE VecU16 not_below(VecU16 magnitude, VecU16 longer, const Weights& weights,
                            VecU16 straight_ahead, VecU16 diagonal_ahead, VecU16 straight_behind,
                            VecU16 diagonal_behind) {
    const VecU16 here = hn::Mul(magnitude, longer);
    const VecU16 most = hn::Max(weights.mean(straight_ahead, diagonal_ahead),
                                weights.mean(straight_behind, diagonal_behind));
    return hn::VecFromMask(kU16, hn::Eq(hn::Max(here, most), here));
}

HWY_INLINE Sides sides_of(const ThreeRows& m, VecU8 level, VecU8 opposite, std::size_t x) {
    const auto is_level = hn::MaskFromVec(level);
    const auto is_opposite = hn::MaskFromVec(opposite);
    const VecU8 above_right = hn::LoadU(kU8, m.above + x + 1);
    const VecU8 below_left = hn::LoadU(kU8, m.below + x - 1);
    const VecU8 above_left = hn::LoadU(kU8, m.above + x - 1);
    const VecU8 below_right = hn::LoadU(kU8, m.below + x + 1);
    return {
        hn::IfThenElse(is_level, hn::LoadU(kU8, m.row + x + 1), hn::LoadU(kU8, m.below + x)),
        hn::IfThenElse(is_opposite, hn::IfThenElse(is_level, above_right, below_left), below_right),
        hn::IfThenElse(is_level, hn::LoadU(kU8, m.row + x - 1), hn::LoadU(kU8, m.above + x)),
        hn::IfThenElse(is_opposite, hn::IfThenElse(is_level, below_left, above_right), above_left)};
}

// All ones where the pixel is a local maximum.
HWY_INLINE VecU8 local_maxima(const ThreeRows& m, const GradientRow& gradient, VecU8 magnitude,
                              std::size_t x) {
    const VecU8 packed = hn::LoadU(kU8, gradient.across + x);
    const VecU8 sign = hn::Set(kU8, std::uint8_t{0x80});
    const VecU8 across = hn::AndNot(sign, packed);
    const VecU8 down = hn::LoadU(kU8, gradient.down + x);
    const VecU8 longer = hn::Max(across, down);
    const VecU8 shorter = hn::Min(across, down);
    const VecU8 rest = hn::Sub(longer, shorter);
    const VecU8 level = hn::VecFromMask(kU8, hn::Eq(longer, across));
    const VecU8 opposite = hn::VecFromMask(kU8, hn::Eq(hn::And(packed, sign), sign));
    const Sides sides = sides_of(m, level, opposite, x);
    const VecU16 even = not_below(
        even_bytes(magnitude), even_bytes(longer), {even_bytes(rest), even_bytes(shorter)},
        even_bytes(sides.straight_ahead), even_bytes(sides.diagonal_ahead),
        even_bytes(sides.straight_behind), even_bytes(sides.diagonal_behind));
    const VecU16 odd =
        not_below(odd_bytes(magnitude), odd_bytes(longer), {odd_bytes(rest), odd_bytes(shorter)},
                  odd_bytes(sides.straight_ahead), odd_bytes(sides.diagonal_ahead),
                  odd_bytes(sides.straight_behind), odd_bytes(sides.diagonal_behind));
    return interleave(hn::And(even, hn::Set(kU16, std::uint16_t{0xFF})), odd);
}

HWY_INLINE VecU8 at_least(VecU8 values, VecU8 limit) {
    return hn::VecFromMask(kU8, hn::Eq(hn::Max(values, limit), values));
}

bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, const std::uint64_t* steep,
                      std::uint64_t* start, std::uint64_t* follow) {
    const VecU8 candidate = hn::Set(kU8, thresholds.candidate);
    const VecU8 starts = hn::Set(kU8, thresholds.start);
    const VecU8 follows = hn::Set(kU8, thresholds.follow);
    const std::size_t words = (width + 63) / 64;
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < words; ++i) {
        start[i] = follow[i] = 0;
        if (steep[i] == 0) continue;
        std::uint64_t word[3] = {};
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kU8)) {
            const std::size_t x = 64 * i + at;
            const VecU8 magnitude = hn::LoadU(kU8, magnitudes.row + x);
            const VecU8 strong = at_least(magnitude, candidate);
            if (hn::AllTrue(kU8, hn::Eq(strong, hn::Zero(kU8)))) continue;
            const VecU8 kept = hn::And(strong, local_maxima(magnitudes, gradient, magnitude, x));
            word[0] |= bits_of(hn::MaskFromVec(kept)) << at;
            word[1] |= bits_of(hn::MaskFromVec(hn::And(kept, at_least(magnitude, starts)))) << at;
            word[2] |= bits_of(hn::MaskFromVec(hn::AndNot(at_least(follows, magnitude), kept)))
                       << at;
        }
        const std::uint64_t inner = inner_pixels(i, width);
        found |= word[0] & inner;
        start[i] = word[1] & inner;
        follow[i] = word[2] & inner;
    }
    return found != 0;
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(gradient_row);
HWY_EXPORT(steep_pixels);
HWY_EXPORT(local_maxima_row);

void gradient_row(const ThreeRows& grey, std::size_t width, const std::uint64_t* wanted,
                  const GradientRow& out) {
    HWY_DYNAMIC_DISPATCH(gradient_row)(grey, width, wanted, out);
}

void steep_pixels(const ThreeRows& grey, std::size_t words, std::uint8_t limit,
                  std::uint64_t* steep) {
    HWY_DYNAMIC_DISPATCH(steep_pixels)(grey, words, limit, steep);
}

bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, const std::uint64_t* steep,
                      std::uint64_t* start, std::uint64_t* follow) {
    return HWY_DYNAMIC_DISPATCH(local_maxima_row)(magnitudes, gradient, width, thresholds, steep,
                                                  start, follow);
}

}  // namespace simd
#endif  // HWY_ONCE

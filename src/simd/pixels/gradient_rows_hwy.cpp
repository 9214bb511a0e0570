// Vector forms of gradient_rows.h, a word of 64 pixels at a time.
//
// Pixels are worked on in 16 bits, two to a lane of 16 bits where that is possible: the even
// pixels of a vector of bytes and the odd ones apart, so that nothing has to be widened or packed.
//
// Magnitudes start from an approximate root, which whole numbers then put right.
#include "simd/pixels/gradient_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/gradient_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/bits/word_vectors.h"
#include "simd/fetch_ahead.h"

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {

using SignedWords = hn::Repartition<std::int16_t, Bytes>;
using Integers = hn::Repartition<std::int32_t, Bytes>;
using Floats = hn::Repartition<float, Bytes>;
using SignedVector = hn::Vec<SignedWords>;

constexpr SignedWords kSignedWords;
constexpr Integers kIntegers;
constexpr Floats kFloats;

HWY_INLINE SignedVector as_signed(WordVector words) {
    return hn::BitCast(kSignedWords, words);
}

HWY_INLINE WordVector as_words(SignedVector words) {
    return hn::BitCast(kWords, words);
}

// The two halves of each lane of 32 bits: the even and the odd ones of the numbers.
HWY_INLINE hn::Vec<Integers> low_halves(WordVector words) {
    return hn::And(hn::BitCast(kIntegers, words), hn::Set(kIntegers, 0xFFFF));
}

HWY_INLINE hn::Vec<Integers> high_halves(WordVector words) {
    return hn::ShiftRight<16>(hn::BitCast(kIntegers, words));
}

// In the low 16 bits, at most 1 from the nearest root of a square above 0, on any machine: a
// relative error of 1 / 256 would do. A number that is added to 2^23 is rounded to a whole one, and
// stands in the lowest bits of the sum.
HWY_INLINE WordVector approximate_root(hn::Vec<Integers> squares) {
    const auto x = hn::ConvertTo(kFloats, squares);
    const auto root = hn::Mul(x, hn::ApproximateReciprocalSqrt(x));
    return hn::BitCast(kWords, hn::Add(root, hn::Set(kFloats, 8388608.0F)));
}

// The low halves of `low` and, above them, those of `high`.
HWY_INLINE WordVector halves(WordVector low, WordVector high) {
    const auto low_half = hn::And(hn::BitCast(kIntegers, low), hn::Set(kIntegers, 0xFFFF));
    return hn::BitCast(kWords, hn::Or(low_half, hn::ShiftLeft<16>(hn::BitCast(kIntegers, high))));
}

// Of squares below 2^15. A root r is the nearest one for squares r * r - r + 1 .. r * r + r.
HWY_INLINE WordVector rounded_roots(WordVector squares) {
    const WordVector one = hn::Set(kWords, std::uint16_t{1});
    const WordVector positive = hn::Max(squares, one);
    const WordVector root =
        halves(approximate_root(low_halves(positive)), approximate_root(high_halves(positive)));
    const WordVector product = hn::Mul(root, root);
    const WordVector too_small = hn::SaturatedSub(squares, hn::Add(product, root));
    const WordVector too_large = hn::SaturatedSub(hn::Add(product, one), hn::Add(squares, root));
    return hn::Sub(hn::Add(root, hn::Min(too_small, one)), hn::Min(too_large, one));
}

// A quarter of a response, at most 127.
HWY_INLINE WordVector component(SignedVector response) {
    const WordVector size = as_words(hn::Abs(response));
    return hn::Min(hn::ShiftRight<2>(size), hn::Set(kWords, std::uint16_t{127}));
}

// Of squares up to 15: the table has their rounded roots.
HWY_INLINE ByteVector small_roots(WordVector even, WordVector odd) {
    alignas(16) constexpr std::uint8_t kRoots[16] = {0, 1, 1, 2, 2, 2, 2, 3,
                                                     3, 3, 3, 3, 3, 4, 4, 4};
    return hn::TableLookupBytes(hn::LoadDup128(kBytes, kRoots), interleave(even, odd));
}

// On most of the paper of a page all gradients of a vector are small.
HWY_INLINE ByteVector magnitudes(WordVector even, WordVector odd) {
    const WordVector small = hn::Set(kWords, std::uint16_t{15});
    if (hn::AllTrue(kWords, hn::Eq(hn::Max(hn::Max(even, odd), small), small))) {
        return small_roots(even, odd);
    }
    return interleave(rounded_roots(even), rounded_roots(odd));
}

// What the two responses of a pixel become.
struct Gradient {
    WordVector squares;  // of the magnitude
    WordVector across;
    WordVector down;
};

// `right`, `left`: sums of three pixels of the columns beside, weighted 1 2 1; `lower`, `upper`:
// likewise of the rows.
HWY_INLINE Gradient gradient(WordVector left, WordVector right, WordVector upper,
                             WordVector lower) {
    const SignedVector gx = as_signed(hn::Sub(right, left));
    const SignedVector gy = as_signed(hn::Sub(lower, upper));
    const WordVector across = component(gx);
    const WordVector down = component(gy);
    const WordVector squares = hn::Add(hn::Mul(across, across), hn::Mul(down, down));
    // The sign of a zero counts for nothing: its component has no weight.
    const WordVector opposite =
        hn::And(hn::ShiftRight<8>(as_words(hn::Xor(gx, gy))), hn::Set(kWords, std::uint16_t{0x80}));
    return {squares, hn::Or(across, opposite), down};
}

// With `before` the rows from one pixel to the left on and `behind` from one to the right, the lane
// of pixels x and x + 1, x even, has x - 1 and x in the bytes of `before` and x + 1 and x + 2 in
// those of `behind`: the four columns that the two pixels need.
HWY_INLINE void gradient_vector(const std::uint8_t* above, const std::uint8_t* row,
                                const std::uint8_t* below, const GradientRow& out, std::size_t x) {
    const ByteVector above_before = hn::LoadU(kBytes, above - 1);
    const ByteVector above_behind = hn::LoadU(kBytes, above + 1);
    const ByteVector before = hn::LoadU(kBytes, row - 1);
    const ByteVector behind = hn::LoadU(kBytes, row + 1);
    const ByteVector below_before = hn::LoadU(kBytes, below - 1);
    const ByteVector below_behind = hn::LoadU(kBytes, below + 1);
    const WordVector a0 = even_bytes(above_before), a1 = odd_bytes(above_before);
    const WordVector a2 = even_bytes(above_behind), a3 = odd_bytes(above_behind);
    const WordVector b0 = even_bytes(below_before), b1 = odd_bytes(below_before);
    const WordVector b2 = even_bytes(below_behind), b3 = odd_bytes(below_behind);
    const WordVector column0 = one_two_one(a0, even_bytes(before), b0);
    const WordVector column1 = one_two_one(a1, odd_bytes(before), b1);
    const WordVector column2 = one_two_one(a2, even_bytes(behind), b2);
    const WordVector column3 = one_two_one(a3, odd_bytes(behind), b3);
    const Gradient even =
        gradient(column0, column2, one_two_one(a0, a1, a2), one_two_one(b0, b1, b2));
    const Gradient odd =
        gradient(column1, column3, one_two_one(a1, a2, a3), one_two_one(b1, b2, b3));
    hn::StoreU(magnitudes(even.squares, odd.squares), kBytes, out.magnitude + x);
    hn::StoreU(interleave(even.across, odd.across), kBytes, out.across + x);
    hn::StoreU(interleave(even.down, odd.down), kBytes, out.down + x);
}

void gradient_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, const GradientRow& out) {
    // The row after `below` most often follows it in memory.
    for (std::size_t x = 0; x < width; x += hn::Lanes(kBytes)) {
        fetch_ahead(below + x);
        gradient_vector(above + x, row + x, below + x, out, x);
    }
    if (width == 0) return;
    const std::size_t last = width - 1;
    plain::gradient_at(above, row, below, 0, 0, std::min<std::size_t>(1, last), out);
    plain::gradient_at(above, row, below, last - std::min<std::size_t>(1, last), last, last, out);
}

// (longer - shorter) * straight + shorter * diagonal: at most 127 * 181.
struct Weights {
    WordVector straight;
    WordVector diagonal;

    HWY_INLINE WordVector mean(WordVector at_straight, WordVector at_diagonal) const {
        return hn::Add(hn::Mul(straight, at_straight), hn::Mul(diagonal, at_diagonal));
    }
};

// Neighbours on the two sides of a pixel along its gradient.
struct Sides {
    ByteVector straight_ahead;
    ByteVector diagonal_ahead;
    ByteVector straight_behind;
    ByteVector diagonal_behind;
};

// All ones where the pixel is not below the means on either side.
HWY_INLINE WordVector not_below(WordVector magnitude, WordVector longer, const Weights& weights,
                                WordVector straight_ahead, WordVector diagonal_ahead,
                                WordVector straight_behind, WordVector diagonal_behind) {
    const WordVector here = hn::Mul(magnitude, longer);
    const WordVector most = hn::Max(weights.mean(straight_ahead, diagonal_ahead),
                                    weights.mean(straight_behind, diagonal_behind));
    return hn::VecFromMask(kWords, hn::Eq(hn::Max(here, most), here));
}

HWY_INLINE Sides sides_of(const ThreeRows& m, ByteVector level, ByteVector opposite,
                          std::size_t x) {
    const auto is_level = hn::MaskFromVec(level);
    const auto is_opposite = hn::MaskFromVec(opposite);
    const ByteVector above_right = hn::LoadU(kBytes, m.above + x + 1);
    const ByteVector below_left = hn::LoadU(kBytes, m.below + x - 1);
    const ByteVector above_left = hn::LoadU(kBytes, m.above + x - 1);
    const ByteVector below_right = hn::LoadU(kBytes, m.below + x + 1);
    return {
        hn::IfThenElse(is_level, hn::LoadU(kBytes, m.row + x + 1), hn::LoadU(kBytes, m.below + x)),
        hn::IfThenElse(is_opposite, hn::IfThenElse(is_level, above_right, below_left), below_right),
        hn::IfThenElse(is_level, hn::LoadU(kBytes, m.row + x - 1), hn::LoadU(kBytes, m.above + x)),
        hn::IfThenElse(is_opposite, hn::IfThenElse(is_level, below_left, above_right), above_left)};
}

// All ones where the pixel is a local maximum.
HWY_INLINE ByteVector local_maxima(const ThreeRows& m, const GradientRow& gradient,
                                   ByteVector magnitude, std::size_t x) {
    const ByteVector packed = hn::LoadU(kBytes, gradient.across + x);
    const ByteVector sign = hn::Set(kBytes, std::uint8_t{0x80});
    const ByteVector across = hn::AndNot(sign, packed);
    const ByteVector down = hn::LoadU(kBytes, gradient.down + x);
    const ByteVector longer = hn::Max(across, down);
    const ByteVector shorter = hn::Min(across, down);
    const ByteVector rest = hn::Sub(longer, shorter);
    const ByteVector level = hn::VecFromMask(kBytes, hn::Eq(longer, across));
    const ByteVector opposite = hn::VecFromMask(kBytes, hn::Eq(hn::And(packed, sign), sign));
    const Sides sides = sides_of(m, level, opposite, x);
    const WordVector even = not_below(
        even_bytes(magnitude), even_bytes(longer), {even_bytes(rest), even_bytes(shorter)},
        even_bytes(sides.straight_ahead), even_bytes(sides.diagonal_ahead),
        even_bytes(sides.straight_behind), even_bytes(sides.diagonal_behind));
    const WordVector odd =
        not_below(odd_bytes(magnitude), odd_bytes(longer), {odd_bytes(rest), odd_bytes(shorter)},
                  odd_bytes(sides.straight_ahead), odd_bytes(sides.diagonal_ahead),
                  odd_bytes(sides.straight_behind), odd_bytes(sides.diagonal_behind));
    return interleave(hn::And(even, hn::Set(kWords, std::uint16_t{0xFF})), odd);
}

HWY_INLINE ByteVector at_least(ByteVector values, ByteVector limit) {
    return hn::VecFromMask(kBytes, hn::Eq(hn::Max(values, limit), values));
}

bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, std::uint64_t* start,
                      std::uint64_t* follow) {
    const ByteVector candidate = hn::Set(kBytes, thresholds.candidate);
    const ByteVector starts = hn::Set(kBytes, thresholds.start);
    const ByteVector follows = hn::Set(kBytes, thresholds.follow);
    const std::size_t words = (width + 63) / 64;
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word[3] = {};
        for (std::size_t at = 0; at < 64; at += hn::Lanes(kBytes)) {
            const std::size_t x = 64 * i + at;
            const ByteVector magnitude = hn::LoadU(kBytes, magnitudes.row + x);
            const ByteVector strong = at_least(magnitude, candidate);
            if (hn::AllTrue(kBytes, hn::Eq(strong, hn::Zero(kBytes)))) continue;
            const ByteVector kept =
                hn::And(strong, local_maxima(magnitudes, gradient, magnitude, x));
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

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(gradient_row);
HWY_EXPORT(local_maxima_row);

void gradient_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, const GradientRow& out) {
    HWY_DYNAMIC_DISPATCH(gradient_row)(above, row, below, width, out);
}

bool local_maxima_row(const ThreeRows& magnitudes, const GradientRow& gradient, std::size_t width,
                      const EdgeThresholds& thresholds, std::uint64_t* start,
                      std::uint64_t* follow) {
    return HWY_DYNAMIC_DISPATCH(local_maxima_row)(magnitudes, gradient, width, thresholds, start,
                                                  follow);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector forms of blend_rows.h.
//
// Whole weights are sums in 16 bits, divided by multiplication.
//
// Linear: with t a multiple of 2^-45, all products and sums of the definition are exact in double
// precision, so that its value is a + floor(t * (b - a)), and a multiplier of 16 bits stands for t
// (see linear_weights). That holds from source row 128 on, where a position has no more fraction
// bits; the rows before are done as they are defined.
//
// Cubic: p1 and the weighted differences of the others from it, in single precision. Weights are
// below 1 and off by 2^-25 at most, differences are up to 255, sums below 512: three weights, three
// products and three sums bring the value off by less than 2^-13. One that is further than that
// from a whole number is on the right side of it. Of the others, equal pixels are right, as no
// rounding takes part, neither here nor in the definition; the rest is done as it is defined.
#include "simd/pixels/blend_rows.h"

#include <bit>
#include <cmath>

#include "simd/pixels/plain/blend_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/blend_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

// Calls blend(x, load) for each vector of a row and stores its result at x; load(row) are the
// pixels of a row there. The last vector overlaps the one before it.
template <class Blend>
HWY_INLINE void by_pixels(std::size_t width, std::uint8_t* out, const Blend& blend) {
    const std::size_t lanes = hn::Lanes(kU8);
    const auto whole = [&](std::size_t x) HWY_ATTR {
        const auto load = [&](const std::uint8_t* row) HWY_ATTR { return hn::LoadU(kU8, row + x); };
        hn::StoreU(blend(x, load), kU8, out + x);
    };
    std::size_t x = 0;
    for (; x + lanes <= width; x += lanes) whole(x);
    if (x == width) return;
    if (width >= lanes) return whole(width - lanes);
    std::uint8_t pixels[64] = {};
    const auto load = [&](const std::uint8_t* row) HWY_ATTR {
        std::memcpy(pixels, row, width);
        return hn::LoadU(kU8, pixels);
    };
    hn::StoreU(blend(x, load), kU8, pixels);
    std::memcpy(out, pixels, width);
}

// x / divisor = (x * multiplier >> 16) >> shift, for all x up to 45582.
struct Division {
    std::uint16_t multiplier;
    int shift;
};

constexpr Division division_by(std::uint8_t divisor) {
    switch (divisor) {
        case 3:
            return {43691, 1};  // (2^17 + 1) / 3
        case 27:
            return {38837, 4};  // (2^20 + 23) / 27
        case 54:
            return {38837, 5};
        default:
            return {static_cast<std::uint16_t>(65536 / divisor), 0};
    }
}

void weigh_rows(const Neighbours& rows, const WholeWeights& weights, std::size_t width,
                std::uint8_t* out) {
    const Division division = division_by(weights.divisor);
    const VecU16 multipliers = hn::Set(kU16, division.multiplier);
    const VecU16 most = hn::Set(kU16, std::uint16_t{255});
    const auto set = [](std::uint8_t weight)
                         HWY_ATTR { return hn::Set(kU16, std::uint16_t{weight}); };
    const VecU16 inner1 = set(weights.inner1), inner2 = set(weights.inner2);
    const auto divided = [&](VecU16 sum) HWY_ATTR {
        return hn::ShiftRightSame(hn::MulHigh(sum, multipliers), division.shift);
    };
    if ((weights.outer0 | weights.outer3) == 0) {
        by_pixels(width, out, [&](std::size_t, const auto& load) HWY_ATTR {
            const VecU8 p1 = load(rows.p1), p2 = load(rows.p2);
            const auto weighed = [&](VecU16 a, VecU16 b) HWY_ATTR {
                return divided(hn::Add(hn::Mul(a, inner1), hn::Mul(b, inner2)));
            };
            return interleave(weighed(even_bytes(p1), even_bytes(p2)),
                              weighed(odd_bytes(p1), odd_bytes(p2)));
        });
        return;
    }
    const VecU16 outer0 = set(weights.outer0), outer3 = set(weights.outer3);
    by_pixels(width, out, [&](std::size_t, const auto& load) HWY_ATTR {
        const VecU8 p0 = load(rows.p0), p1 = load(rows.p1), p2 = load(rows.p2), p3 = load(rows.p3);
        const auto weighed = [&](VecU16 a, VecU16 b, VecU16 c, VecU16 d) HWY_ATTR {
            const VecU16 inner = hn::Add(hn::Mul(b, inner1), hn::Mul(c, inner2));
            const VecU16 outer = hn::Add(hn::Mul(a, outer0), hn::Mul(d, outer3));
            return hn::Min(divided(hn::SaturatedSub(inner, outer)), most);
        };
        return interleave(weighed(even_bytes(p0), even_bytes(p1), even_bytes(p2), even_bytes(p3)),
                          weighed(odd_bytes(p0), odd_bytes(p1), odd_bytes(p2), odd_bytes(p3)));
    });
}

// As defined, in double precision.
void linear_rows_rounded(const Neighbours& rows, double t, std::size_t width, std::uint8_t* out) {
    const hn::CappedTag<double, 8> d64;
    const hn::Rebind<std::int32_t, decltype(d64)> d32;
    const hn::Rebind<std::uint8_t, decltype(d64)> d8;
    const auto before = hn::Set(d64, 1 - t), behind = hn::Set(d64, t);
    const auto load = [&](const std::uint8_t* pixels) HWY_ATTR {
        return hn::PromoteTo(d64, hn::PromoteTo(d32, hn::LoadU(d8, pixels)));
    };
    std::size_t x = 0;
    for (; x + hn::Lanes(d64) <= width; x += hn::Lanes(d64)) {
        const auto sum =
            hn::Add(hn::Mul(before, load(rows.p1 + x)), hn::Mul(behind, load(rows.p2 + x)));
        hn::StoreU(hn::DemoteTo(d8, hn::DemoteTo(d32, sum)), d8, out + x);
    }
    for (; x < width; ++x) out[x] = plain::linear(rows.p1[x], rows.p2[x], t);
}

void linear_rows(const Neighbours& rows, const LinearWeights& weights, std::size_t width,
                 std::uint8_t* out) {
    if (weights.multiplier == 0) return linear_rows_rounded(rows, weights.t, width, out);
    // A multiplier with its highest bit set is negative as a number of 16 bits and stands for t -
    // 1, which is the way from b back to a.
    using I16 = hn::RebindToSigned<U16>;
    const I16 d16;
    const bool from_b = weights.multiplier >= 0x8000;
    const auto multiplier = hn::Set(d16, static_cast<std::int16_t>(weights.multiplier));
    by_pixels(width, out, [&](std::size_t, const auto& load) HWY_ATTR {
        const VecU8 p1 = load(rows.p1), p2 = load(rows.p2);
        const VecU8 from = from_b ? p2 : p1;
        const auto change = [&](VecU16 a, VecU16 b) HWY_ATTR {
            const auto difference = hn::BitCast(d16, hn::Sub(b, a));
            return hn::BitCast(kU16, hn::MulHigh(difference, multiplier));
        };
        const VecU16 even = change(even_bytes(p1), even_bytes(p2));
        const VecU16 odd = change(odd_bytes(p1), odd_bytes(p2));
        const VecU16 low = hn::Set(kU16, std::uint16_t{0xFF});
        return hn::Add(from, interleave(hn::And(even, low), odd));
    });
}

// The lanes of `unsure`, a bit for each, as defined.
HWY_NOINLINE VecU8 cubic_as_defined(const Neighbours& rows, double t, std::size_t x,
                                    std::uint64_t unsure, VecU8 values) {
    std::uint8_t pixels[64];
    hn::StoreU(values, kU8, pixels);
    for (; unsure != 0; unsure &= unsure - 1) {
        const auto lane = static_cast<std::size_t>(std::countr_zero(unsure));
        const std::size_t at = x + lane;
        pixels[lane] = plain::cubic(rows.p0[at], rows.p1[at], rows.p2[at], rows.p3[at], t);
    }
    return hn::LoadU(kU8, pixels);
}

// Lanes of 32 bits, each with four pixels.
using U32 = hn::Repartition<std::uint32_t, U8>;
using I32 = hn::RebindToSigned<U32>;
using F32 = hn::RebindToFloat<U32>;
constexpr U32 kU32;
constexpr F32 kF32;

// Byte kByte of each lane.
template <int kByte>
HWY_INLINE hn::Vec<F32> level(VecU8 bytes) {
    const auto words = hn::ShiftRight<8 * kByte>(hn::BitCast(kU32, bytes));
    const auto value = kByte == 3 ? words : hn::And(words, hn::Set(kU32, 0xFFU));
    return hn::ConvertTo(kF32, hn::BitCast(I32(), value));
}

struct CubicSum {
    hn::Vec<F32> w0, w2, w3;
    VecU8 p0, p1, p2, p3;
    hn::Vec<U32> values = hn::Zero(kU32);
    hn::Vec<U32> unsure = hn::Zero(kU32);

    template <int kByte>
    HWY_INLINE void add() {
        const auto base = level<kByte>(p1);
        const auto from0 = hn::Mul(w0, hn::Sub(level<kByte>(p0), base));
        const auto from2 = hn::Mul(w2, hn::Sub(level<kByte>(p2), base));
        const auto from3 = hn::Mul(w3, hn::Sub(level<kByte>(p3), base));
        const auto sum = hn::Add(hn::Add(base, from2), hn::Add(from0, from3));
        // Beyond the clamp no whole number is near.
        const auto value = hn::Clamp(sum, hn::Set(kF32, 0.5F), hn::Set(kF32, 255.5F));
        const auto distance = hn::Abs(hn::Sub(value, hn::Round(value)));
        const auto near = hn::VecFromMask(kF32, hn::Lt(distance, hn::Set(kF32, 0x1p-13F)));
        const auto whole = hn::BitCast(kU32, hn::ConvertTo(I32(), value));
        values = hn::Or(values, hn::ShiftLeft<8 * kByte>(whole));
        const auto byte = hn::Set(kU32, 0xFFU << (8 * kByte));
        unsure = hn::Or(unsure, hn::And(hn::BitCast(kU32, near), byte));
    }
};

void cubic_rows(const Neighbours& rows, const CubicWeights& weights, std::size_t width,
                std::uint8_t* out) {
    const auto w0 = hn::Set(kF32, weights.rest[0]);
    const auto w2 = hn::Set(kF32, weights.rest[1]);
    const auto w3 = hn::Set(kF32, weights.rest[2]);
    by_pixels(width, out, [&](std::size_t x, const auto& load) HWY_ATTR {
        CubicSum sum{w0, w2, w3, load(rows.p0), load(rows.p1), load(rows.p2), load(rows.p3)};
        sum.add<0>();
        sum.add<1>();
        sum.add<2>();
        sum.add<3>();
        const VecU8 values = hn::BitCast(kU8, sum.values);
        if (HWY_LIKELY(hn::AllTrue(kU32, hn::Eq(sum.unsure, hn::Zero(kU32))))) return values;
        const VecU8 other = hn::Or(hn::Or(hn::Xor(sum.p0, sum.p1), hn::Xor(sum.p2, sum.p1)),
                                   hn::Xor(sum.p3, sum.p1));
        const auto equal = hn::VecFromMask(kU8, hn::Eq(other, hn::Zero(kU8)));
        const VecU8 unsure = hn::AndNot(equal, hn::BitCast(kU8, sum.unsure));
        const std::uint64_t bits = bits_of(hn::MaskFromVec(unsure));
        return bits == 0 ? values : cubic_as_defined(rows, weights.t, x, bits, values);
    });
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(weigh_rows);
HWY_EXPORT(linear_rows);
HWY_EXPORT(cubic_rows);

namespace {

// Whether floor(multiplier * d / 65536) is floor(t * d), for the differences 1 .. 255 and their
// negatives: for those it also counts whether the product is whole.
bool stands_for(std::uint32_t multiplier, double t) {
    const bool equal = multiplier == t * 65536;
    if (!equal && multiplier % 512 == 0) return false;  // 128 * multiplier is whole, 128 * t is not
    std::uint32_t different = 0;
    for (std::uint32_t d = 1; d < 256; ++d) {
        const auto whole = static_cast<std::int32_t>(t * static_cast<std::int32_t>(d));
        different |= static_cast<std::uint32_t>(whole) ^ (multiplier * d >> 16);
    }
    return different == 0;
}

}  // namespace

// Between the products of t with all differences and the whole numbers next to them lies an
// interval of at least 1 / (255 * 254) around t (of neighbours k / d, Farey 1816), which contains
// a multiple of 1 / 65536: that before t or that behind it.
LinearWeights linear_weights(double t) {
    constexpr double kExactUnits = 0x1p45;
    if (t * kExactUnits != std::floor(t * kExactUnits)) return {t, 0};
    const auto below = static_cast<std::uint32_t>(t * 65536);
    for (const std::uint32_t multiplier : {below, below + 1})
        if (multiplier < 65536 && stands_for(multiplier, t))
            return {t, static_cast<std::uint16_t>(multiplier)};
    return {t, 0};
}

CubicWeights cubic_weights(double t) {
    return {t,
            {static_cast<float>(((-t + 2) * t - 1) * t / 2),
             static_cast<float>(((-3 * t + 4) * t + 1) * t / 2),
             static_cast<float>((t - 1) * t * t / 2)}};
}

void weigh_rows(const Neighbours& rows, const WholeWeights& weights, std::size_t width,
                std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(weigh_rows)(rows, weights, width, out);
}

void linear_rows(const Neighbours& rows, const LinearWeights& weights, std::size_t width,
                 std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(linear_rows)(rows, weights, width, out);
}

void cubic_rows(const Neighbours& rows, const CubicWeights& weights, std::size_t width,
                std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(cubic_rows)(rows, weights, width, out);
}

}  // namespace simd
#endif  // HWY_ONCE

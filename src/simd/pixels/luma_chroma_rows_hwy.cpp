// Vector forms of luma_chroma_rows.h: everything in 16 bits but for the green on the way back.
#include "simd/pixels/luma_chroma_rows.h"

#include "simd/pixels/plain/luma_chroma_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/luma_chroma_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using I16 = hn::RebindToSigned<U16>;
using I32 = hn::RepartitionToWide<I16>;
using F32 = hn::RebindToFloat<I32>;
using VecI16 = hn::Vec<I16>;
using VecI32 = hn::Vec<I32>;
constexpr I16 kI16;
constexpr I32 kI32;
constexpr F32 kF32;

HWY_INLINE VecU16 times(VecU16 value, std::uint16_t factor) {
    return hn::Mul(value, hn::Set(kU16, factor));
}

HWY_INLINE VecI16 times(VecI16 value, std::int16_t factor) {
    return hn::Mul(value, hn::Set(kI16, factor));
}

struct Colours {
    VecU16 red, green, blue;
};

// The weights cut into multiples of 256, which add up to 255 * 256, and rests, which add up to 256:
// both sums fit in 16 bits.
HWY_INLINE VecU16 luma(const Colours& c) {
    const VecU16 high = hn::Add(hn::Add(times(c.red, 76), times(c.green, 150)), times(c.blue, 29));
    const VecU16 low = hn::Add(hn::Add(times(c.red, 139), times(c.green, 70)), times(c.blue, 47));
    return hn::ShiftRight<8>(hn::Add(high, hn::ShiftRight<8>(low)));
}

// 128 + (x / 4096 towards zero), where x = 128 * high + low is a chroma in weights of 1/4096. For
// x < 0 that is the quotient, rounded down, of x + 4095 = 128 * (high + 31) + (low + 127). |low| is
// at most 128 * 255, so nothing overflows.
HWY_INLINE VecU16 chroma(VecI16 high, VecI16 low) {
    const VecI16 negative = hn::ShiftRight<15>(hn::Add(high, hn::ShiftRight<7>(low)));
    const VecI16 more_high = hn::And(negative, hn::Set(kI16, std::int16_t{31}));
    const VecI16 more_low = hn::And(negative, hn::Set(kI16, std::int16_t{127}));
    const VecI16 whole = hn::ShiftRight<7>(hn::Add(low, more_low));
    const VecI16 quotient = hn::ShiftRight<5>(hn::Add(hn::Add(high, more_high), whole));
    return hn::BitCast(kU16, hn::Add(quotient, hn::Set(kI16, std::int16_t{128})));
}

HWY_INLINE VecI16 difference(VecU16 a, VecU16 b) {
    return hn::BitCast(kI16, hn::Sub(a, b));
}

// 1715 (red - green) + 333 (red - blue), that is (13 * 128 + 51, 2 * 128 + 77).
HWY_INLINE VecU16 red_chroma(const Colours& c) {
    const VecI16 a = difference(c.red, c.green), b = difference(c.red, c.blue);
    return chroma(hn::Add(times(a, 13), hn::Add(b, b)), hn::Add(times(a, 51), times(b, 77)));
}

// 691 (blue - red) + 1357 (blue - green), that is (5 * 128 + 51, 10 * 128 + 77).
HWY_INLINE VecU16 blue_chroma(const Colours& c) {
    const VecI16 a = difference(c.blue, c.red), b = difference(c.blue, c.green);
    return chroma(hn::Add(times(a, 5), times(b, 10)), hn::Add(times(a, 51), times(b, 77)));
}

void separate_row(const std::uint8_t* colours, std::size_t width, const LumaChromaRows& to) {
    std::size_t x = 0;
    for (; x + hn::Lanes(kU8) <= width; x += hn::Lanes(kU8)) {
        VecU8 red, green, blue;
        hn::LoadInterleaved3(kU8, colours + 3 * x, red, green, blue);
        const Colours even{even_bytes(red), even_bytes(green), even_bytes(blue)};
        const Colours odd{odd_bytes(red), odd_bytes(green), odd_bytes(blue)};
        hn::StoreU(interleave(luma(even), luma(odd)), kU8, to.y + x);
        hn::StoreU(interleave(red_chroma(even), red_chroma(odd)), kU8, to.cr + x);
        hn::StoreU(interleave(blue_chroma(even), blue_chroma(odd)), kU8, to.cb + x);
    }
    plain::separate_row(colours + 3 * x, width - x, {to.y + x, to.cr + x, to.cb + x});
}

// The chroma, less its 128, times 1 + fraction / 65536, towards zero.
HWY_INLINE VecI16 scaled_chroma(VecU16 chroma, std::uint16_t fraction) {
    const VecI16 value = hn::Sub(hn::BitCast(kI16, chroma), hn::Set(kI16, std::int16_t{128}));
    const VecI16 sign = hn::ShiftRight<15>(value);
    const VecU16 size = hn::BitCast(kU16, hn::Abs(value));
    const VecU16 scaled = hn::Add(size, hn::MulHigh(size, hn::Set(kU16, fraction)));
    return hn::Sub(hn::Xor(hn::BitCast(kI16, scaled), sign), sign);
}

// Of E = -(19595 red + 7471 blue), the quotient E / 38470, rounded down, that green and luma differ
// by. E + 1/2 is exact, and its quotient at least 1 / (2 * 38470) from a whole number; the test
// goes through all chroma to show that the rounded product keeps on that side. A negative green,
// which would have to be cut off towards zero, becomes 0 in any case.
HWY_INLINE VecI32 green_change(VecI32 red, VecI32 blue) {
    const auto of_red = hn::Mul(hn::ConvertTo(kF32, red), hn::Set(kF32, -19595.0F));
    const auto of_blue = hn::Mul(hn::ConvertTo(kF32, blue), hn::Set(kF32, -7471.0F));
    const auto sum = hn::Add(hn::Add(of_red, of_blue), hn::Set(kF32, 0.5F));
    return hn::ConvertTo(kI32, hn::Floor(hn::Mul(sum, hn::Set(kF32, 1 / 38470.0F))));
}

HWY_INLINE VecI16 green_change(VecI16 red, VecI16 blue) {
    const auto lower = [](VecI16 v) HWY_ATTR {
        return hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(kI32, v)));
    };
    const auto upper = [](VecI16 v) HWY_ATTR { return hn::ShiftRight<16>(hn::BitCast(kI32, v)); };
    const VecI32 low = green_change(lower(red), lower(blue));
    const VecI32 high = green_change(upper(red), upper(blue));
    return hn::BitCast(kI16, hn::Or(hn::And(low, hn::Set(kI32, 0xFFFF)), hn::ShiftLeft<16>(high)));
}

HWY_INLINE VecU16 clamped_sum(VecU16 luma, VecI16 change) {
    const VecI16 sum = hn::Add(hn::BitCast(kI16, luma), change);
    return hn::BitCast(kU16, hn::Clamp(sum, hn::Zero(kI16), hn::Set(kI16, std::int16_t{255})));
}

HWY_INLINE Colours colours_of(VecU16 y, VecU16 cr, VecU16 cb) {
    const VecI16 red = scaled_chroma(cr, common::kRedFromCr - common::kChromaUnit);
    const VecI16 blue = scaled_chroma(cb, common::kBlueFromCb - common::kChromaUnit);
    return {clamped_sum(y, red), clamped_sum(y, green_change(red, blue)), clamped_sum(y, blue)};
}

void join_row(const LumaChromaRows& from, std::size_t width, std::uint8_t* colours) {
    std::size_t x = 0;
    for (; x + hn::Lanes(kU8) <= width; x += hn::Lanes(kU8)) {
        const VecU8 y = hn::LoadU(kU8, from.y + x);
        const VecU8 cr = hn::LoadU(kU8, from.cr + x);
        const VecU8 cb = hn::LoadU(kU8, from.cb + x);
        const Colours even = colours_of(even_bytes(y), even_bytes(cr), even_bytes(cb));
        const Colours odd = colours_of(odd_bytes(y), odd_bytes(cr), odd_bytes(cb));
        hn::StoreInterleaved3(interleave(even.red, odd.red), interleave(even.green, odd.green),
                              interleave(even.blue, odd.blue), kU8, colours + 3 * x);
    }
    plain::join_row({from.y + x, from.cr + x, from.cb + x}, width - x, colours + 3 * x);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(separate_row);
HWY_EXPORT(join_row);

void separate_row(const std::uint8_t* colours, std::size_t width, const LumaChromaRows& to) {
    HWY_DYNAMIC_DISPATCH(separate_row)(colours, width, to);
}

void join_row(const LumaChromaRows& from, std::size_t width, std::uint8_t* colours) {
    HWY_DYNAMIC_DISPATCH(join_row)(from, width, colours);
}

}  // namespace simd
#endif  // HWY_ONCE

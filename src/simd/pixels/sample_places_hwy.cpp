// Vector form of sample_places.h, exact by computing in double precision what the plain form does.
//
// A lane is a place. Of the 4 x 4 pixels around it, words of four bytes hold luma Y and chroma r, b
// of a row; A and C together have the four lumas, B and C the chroma of the middle two pixels:
//
//     Yrb Yrb Yrb Y      of pixels -1, 0, 1, 2
//     AAAA  CCCC         the outer rows
//     AAAA
//        BBBB            the middle rows, too
//           CCCC
#include "simd/pixels/sample_places.h"

#include <algorithm>
#include <cstring>

#include "simd/pixels/plain/sample_places.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/sample_places_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using I32 = hn::CappedTag<std::int32_t, 8>;
using HalfI32 = hn::Half<I32>;
using F64 = hn::Rebind<double, HalfI32>;
using VecI32 = hn::Vec<I32>;
using VecF64 = hn::Vec<F64>;

constexpr I32 kI32;
constexpr F64 kF64;
constexpr std::size_t kPlaces = hn::MaxLanes(I32());

// The lanes of a vector of 32-bit numbers in double precision.
struct Doubles {
    VecF64 lower, upper;
};

HWY_INLINE Doubles doubles(VecI32 v) {
    return {hn::PromoteTo(kF64, hn::LowerHalf(HalfI32(), v)),
            hn::PromoteTo(kF64, hn::UpperHalf(HalfI32(), v))};
}

HWY_INLINE VecI32 truncated(const Doubles& v) {
    return hn::Combine(kI32, hn::DemoteTo(HalfI32(), v.upper), hn::DemoteTo(HalfI32(), v.lower));
}

// 0.5 * (((third * t + second) * t + first) * t + twice), in this order.
struct Cubic {
    Doubles third, second, first, twice;
};

HWY_INLINE VecF64 cubic_at(VecF64 third, VecF64 second, VecF64 first, VecF64 twice, VecF64 t) {
    const VecF64 quadratic = hn::Add(hn::Mul(third, t), second);
    const VecF64 linear = hn::Add(hn::Mul(quadratic, t), first);
    return hn::Mul(hn::Set(kF64, 0.5), hn::Add(hn::Mul(linear, t), twice));
}

// What is done in whole numbers is exact.
HWY_INLINE VecI32 cubic(VecI32 p0, VecI32 p1, VecI32 p2, VecI32 p3, const Doubles& t) {
    const VecI32 inner = hn::Sub(p1, p2);
    const VecI32 twice_inner = hn::Add(inner, inner);
    const VecI32 outer = hn::Sub(p0, p1);
    // 2 p0 - 5 p1 + 4 p2 - p3 = 2 (p0 - p1) - 4 (p1 - p2) + (p1 - p3)
    const VecI32 second =
        hn::Add(hn::Sub(hn::Add(outer, outer), hn::Add(twice_inner, twice_inner)), hn::Sub(p1, p3));
    const Cubic c = {doubles(hn::Add(hn::Sub(p3, p0), hn::Add(twice_inner, inner))),
                     doubles(second), doubles(hn::Sub(p2, p0)), doubles(hn::Add(p1, p1))};
    const VecI32 value =
        truncated({cubic_at(c.third.lower, c.second.lower, c.first.lower, c.twice.lower, t.lower),
                   cubic_at(c.third.upper, c.second.upper, c.first.upper, c.twice.upper, t.upper)});
    return hn::Min(hn::Max(value, hn::Zero(kI32)), hn::Set(kI32, 255));
}

HWY_INLINE VecF64 linear_at(VecF64 a, VecF64 b, VecF64 t) {
    return hn::Add(hn::Mul(hn::Sub(hn::Set(kF64, 1.0), t), a), hn::Mul(t, b));
}

HWY_INLINE VecI32 linear(VecI32 a, VecI32 b, const Doubles& t) {
    const Doubles from = doubles(a);
    const Doubles to = doubles(b);
    return truncated(
        {linear_at(from.lower, to.lower, t.lower), linear_at(from.upper, to.upper, t.upper)});
}

template <int kByte>
HWY_INLINE VecI32 byte_of(VecI32 words) {
    const hn::RebindToUnsigned<I32> d;
    const auto shifted = hn::ShiftRight<8 * kByte>(hn::BitCast(d, words));
    if constexpr (kByte == 3) return hn::BitCast(kI32, shifted);
    return hn::BitCast(kI32, hn::And(shifted, hn::Set(d, 0xFFU)));
}

// Where kPlaces places are: their pixels, and how far behind them.
struct Located {
    HWY_ALIGN std::int32_t columns[kPlaces];
    HWY_ALIGN std::int32_t rows[kPlaces];
    Doubles x, y;
    bool inside = true;  // all of them
};

// Half the places, from `places` on; returns how far behind their pixels they are.
HWY_INLINE VecF64 locate_axis(const double* numerators, VecF64 w, std::int32_t size,
                              std::int32_t* pixels, bool& inside) {
    const VecF64 place = hn::Div(hn::LoadU(kF64, numerators), w);
    const VecF64 whole = hn::Floor(place);
    const auto in = hn::And(
        hn::Ge(whole, hn::Set(kF64, 1.0)),
        hn::Lt(hn::Add(whole, hn::Set(kF64, 2.0)), hn::Set(kF64, static_cast<double>(size))));
    inside = inside && hn::AllTrue(kF64, in);
    hn::Store(hn::DemoteTo(HalfI32(), whole), HalfI32(), pixels);
    return hn::Sub(place, whole);
}

HWY_INLINE void locate(const LumaChromaImage& image, const ProjectedPlaces& places,
                       Located& located) {
    constexpr std::size_t kHalf = kPlaces / 2;
    const VecF64 lower = hn::LoadU(kF64, places.w);
    const VecF64 upper = hn::LoadU(kF64, places.w + kHalf);
    located.x = {
        locate_axis(places.x, lower, image.width, located.columns, located.inside),
        locate_axis(places.x + kHalf, upper, image.width, located.columns + kHalf, located.inside)};
    located.y = {
        locate_axis(places.y, lower, image.height, located.rows, located.inside),
        locate_axis(places.y + kHalf, upper, image.height, located.rows + kHalf, located.inside)};
}

enum Word { kA, kB, kC };

struct Words {
    HWY_ALIGN std::int32_t at[4][3][kPlaces];  // of four rows

    HWY_INLINE VecI32 get(std::size_t row, Word word) const {
        return hn::Load(kI32, at[row][word]);
    }
};

HWY_INLINE void gather(const LumaChromaImage& image, const Located& located, Words& words) {
    for (std::size_t i = 0; i < kPlaces; ++i) {
        const std::uint8_t* pixel = image.data + (located.rows[i] - 1) * image.stride +
                                    std::ptrdiff_t{3} * located.columns[i];
        for (std::size_t row = 0; row < 4; ++row, pixel += image.stride) {
            std::memcpy(&words.at[row][kA][i], pixel - 3, 4);
            if (row == 1 || row == 2) std::memcpy(&words.at[row][kB][i], pixel, 4);
            std::memcpy(&words.at[row][kC][i], pixel + 3, 4);
        }
    }
}

HWY_INLINE void store_bytes(VecI32 v, std::uint8_t* out) {
    const hn::Rebind<std::uint8_t, I32> d8;
    hn::StoreU(hn::DemoteTo(d8, v), d8, out);
}

HWY_INLINE void sample_inside(const Words& words, const Located& at, std::size_t i,
                              const LumaChromaRows& out) {
    const auto luma_of = [&](std::size_t row) HWY_ATTR {
        const VecI32 a = words.get(row, kA);
        const VecI32 c = words.get(row, kC);
        return cubic(byte_of<0>(a), byte_of<3>(a), byte_of<0>(c), byte_of<3>(c), at.x);
    };
    store_bytes(cubic(luma_of(0), luma_of(1), luma_of(2), luma_of(3), at.y), out.luma + i);
    const auto red_of = [&](std::size_t row) HWY_ATTR {
        return linear(byte_of<1>(words.get(row, kB)), byte_of<1>(words.get(row, kC)), at.x);
    };
    store_bytes(linear(red_of(1), red_of(2), at.y), out.red + i);
    const auto blue_of = [&](std::size_t row) HWY_ATTR {
        return linear(byte_of<2>(words.get(row, kB)), byte_of<2>(words.get(row, kC)), at.x);
    };
    store_bytes(linear(blue_of(1), blue_of(2), at.y), out.blue + i);
}

// Some vectors of places. Words are stored one by one and loaded as vectors, which has to wait
// until they are in the cache: so all of them are gathered before the first is used.
constexpr std::size_t kVectors = 4;

HWY_INLINE void sample_together(const LumaChromaImage& image, const ProjectedPlaces& places,
                                const LumaChromaRows& out) {
    Located located[kVectors];
    Words words[kVectors];
    for (std::size_t k = 0; k < kVectors; ++k) {
        const std::size_t i = k * kPlaces;
        locate(image, {places.x + i, places.y + i, places.w + i}, located[k]);
    }
    for (std::size_t k = 0; k < kVectors; ++k) {
        if (located[k].inside) gather(image, located[k], words[k]);
    }
    for (std::size_t k = 0; k < kVectors; ++k) {
        const std::size_t i = k * kPlaces;
        if (located[k].inside) {
            sample_inside(words[k], located[k], i, out);
        } else {
            plain::sample_places(image, {places.x + i, places.y + i, places.w + i}, kPlaces,
                                 {out.luma + i, out.red + i, out.blue + i});
        }
    }
}

void sample_places(const LumaChromaImage& image, const ProjectedPlaces& places, std::size_t count,
                   const LumaChromaRows& out) {
    constexpr std::size_t kTogether = kVectors * kPlaces;
    std::size_t i = 0;
    for (; i + kTogether <= count; i += kTogether) {
        sample_together(image, {places.x + i, places.y + i, places.w + i},
                        {out.luma + i, out.red + i, out.blue + i});
    }
    plain::sample_places(image, {places.x + i, places.y + i, places.w + i}, count - i,
                         {out.luma + i, out.red + i, out.blue + i});
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(sample_places);

void sample_places(const LumaChromaImage& image, const ProjectedPlaces& places, std::size_t count,
                   const LumaChromaRows& out) {
    HWY_DYNAMIC_DISPATCH(sample_places)(image, places, count, out);
}

}  // namespace simd
#endif  // HWY_ONCE

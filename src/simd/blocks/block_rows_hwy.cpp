// Vector forms of block_rows.h.
//
// Means of up to nine cells: a sum below 2^12 is divided by a count c as the high half of the
// 16-bit product of twice the sum and 32768 / c + 1, rounded down before the addition. The product
// is too large by less than twice the sum, 4590 of 65536, which is less than the 1 / 9 by which a
// quotient stays below the next whole number.
#include "simd/blocks/block_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/block_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using I32 = hn::Repartition<std::int32_t, U8>;
using F32 = hn::Repartition<float, U8>;

constexpr I32 kI32;
constexpr F32 kF32;

// Sums of groups of four bytes from the sums of groups of two.
HWY_INLINE hn::Vec<I32> sums_of_four(VecU16 sums_of_two) {
    const auto pairs = hn::BitCast(kI32, sums_of_two);
    return hn::Add(hn::And(pairs, hn::Set(kI32, 0xFFFF)), hn::ShiftRight<16>(pairs));
}

HWY_INLINE VecU16 sums_of_two(VecU8 bytes) {
    return hn::Add(even_bytes(bytes), odd_bytes(bytes));
}

HWY_INLINE void store_cells(hn::Vec<I32> values, std::uint8_t* cells) {
    const hn::Rebind<std::uint8_t, I32> quarter;
    hn::StoreU(hn::DemoteTo(quarter, values), quarter, cells);
}

// Of sums below 4096 over counts up to 16: a quotient is at least 1 / 16 below the next whole
// number, far more than single precision loses.
HWY_INLINE hn::Vec<I32> quotients(hn::Vec<I32> sums, hn::Vec<I32> counts) {
    return hn::ConvertTo(kI32, hn::Div(hn::ConvertTo(kF32, sums), hn::ConvertTo(kF32, counts)));
}

HWY_INLINE void edge_means_of_vector(const FourRows& midpoints, const FourRows& contrasts,
                                     std::size_t x, std::uint8_t* midpoint_means,
                                     std::uint8_t* contrast_means) {
    const VecU8 one = hn::Set(kU8, std::uint8_t{1});
    VecU16 midpoint = hn::Zero(kU16);
    VecU16 contrast = hn::Zero(kU16);
    VecU8 pixels = hn::Zero(kU8);
    for (int i = 0; i < 4; ++i) {
        const VecU8 c = hn::LoadU(kU8, contrasts.row[i] + x);
        const VecU8 m = hn::LoadU(kU8, midpoints.row[i] + x);
        const auto none = hn::Eq(c, hn::Zero(kU8));
        midpoint = hn::Add(midpoint, sums_of_two(hn::IfThenZeroElse(none, m)));
        contrast = hn::Add(contrast, sums_of_two(c));
        pixels = hn::Add(pixels, hn::Min(c, one));
    }
    const auto counts = hn::Max(sums_of_four(sums_of_two(pixels)), hn::Set(kI32, 1));
    store_cells(quotients(sums_of_four(midpoint), counts), midpoint_means + x / 4);
    store_cells(quotients(sums_of_four(contrast), counts), contrast_means + x / 4);
}

void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t* edges,
                std::size_t words, std::uint8_t* midpoint_means, std::uint8_t* contrast_means) {
    for (std::size_t i = 0; i < words; ++i) {
        if (edges[i] == 0) {
            std::memset(midpoint_means + 16 * i, 0, 16);
            std::memset(contrast_means + 16 * i, 0, 16);
            continue;
        }
        by_vectors([&](std::size_t at) HWY_ATTR {
            edge_means_of_vector(midpoints, contrasts, 64 * i + at, midpoint_means, contrast_means);
        });
    }
}

void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means) {
    for (std::size_t x = 0; x < 64 * words; x += hn::Lanes(kU8)) {
        VecU16 sum = hn::Zero(kU16);
        for (int i = 0; i < 4; ++i) {
            sum = hn::Add(sum, sums_of_two(hn::LoadU(kU8, grey.row[i] + x)));
        }
        store_cells(hn::ShiftRight<4>(sums_of_four(sum)), means + x / 4);
    }
}

HWY_INLINE VecU16 means_of(VecU16 sums_and_counts) {
    // 32768 / count + 1, low and high bytes.
    alignas(16) static constexpr std::uint8_t kLow[16] = {0,    0x01, 0x01, 0xAB, 0x01,
                                                          0x9A, 0x56, 0x4A, 0x01, 0x39};
    alignas(16) static constexpr std::uint8_t kHigh[16] = {0,    0x80, 0x40, 0x2A, 0x20,
                                                           0x19, 0x15, 0x12, 0x10, 0x0E};
    const VecU8 counts = hn::BitCast(kU8, counts_of(sums_and_counts));
    const auto low = hn::BitCast(kU16, hn::TableLookupBytes(hn::LoadDup128(kU8, kLow), counts));
    const auto high = hn::BitCast(kU16, hn::TableLookupBytes(hn::LoadDup128(kU8, kHigh), counts));
    const VecU16 reciprocals = hn::Or(low, hn::ShiftLeft<8>(high));
    const VecU16 sums = sums_of(sums_and_counts);
    return hn::MulHigh(hn::Add(sums, sums), reciprocals);
}

// Whether all cells of a vector and those around them are 0.
HWY_INLINE bool none_around(const ThreeRows& map, std::size_t x) {
    VecU8 any = hn::Zero(kU8);
    for (const std::uint8_t* row : {map.above, map.row, map.below}) {
        any = hn::Or3(any, hn::LoadU(kU8, row + x - 1), hn::LoadU(kU8, row + x + 1));
    }
    return hn::AllTrue(kU8, hn::Eq(any, hn::Zero(kU8)));
}

// Most maps have large areas that are filled or empty all over.
void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; x += hn::Lanes(kU8)) {
        const VecU8 own = hn::LoadU(kU8, map.row + x);
        const auto empty = hn::Eq(own, hn::Zero(kU8));
        if (hn::AllFalse(kU8, empty) || none_around(map, x)) {
            hn::StoreU(own, kU8, out + x);
            continue;
        }
        const SumsAndCounts around = sums_around(map.above + x, map.row + x, map.below + x);
        const VecU8 means = interleave(means_of(around.even), means_of(around.odd));
        hn::StoreU(hn::IfThenElse(empty, means, own), kU8, out + x);
    }
    out[0] = map.row[0];
    out[width - 1] = map.row[width - 1];
}

// Zero where fewer than three cells count.
HWY_INLINE VecU16 means_of_three_or_more(VecU16 sums_and_counts) {
    const auto enough = hn::Gt(counts_of(sums_and_counts), hn::Set(kU16, std::uint16_t{2}));
    return hn::IfThenElseZero(enough, means_of(sums_and_counts));
}

void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; x += hn::Lanes(kU8)) {
        const auto empty = hn::Eq(hn::LoadU(kU8, map.row + x), hn::Zero(kU8));
        if (hn::AllTrue(kU8, empty)) {
            hn::StoreU(hn::Zero(kU8), kU8, out + x);
            continue;
        }
        const SumsAndCounts around = sums_around(map.above + x, map.row + x, map.below + x);
        const VecU8 means =
            interleave(means_of_three_or_more(around.even), means_of_three_or_more(around.odd));
        hn::StoreU(hn::IfThenZeroElse(empty, means), kU8, out + x);
    }
    out[0] = 0;
    out[width - 1] = 0;
}

void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit, std::uint8_t* out) {
    const VecU8 limits = hn::Set(kU8, limit);
    const VecU8 one = hn::Set(kU8, std::uint8_t{1});
    for (std::size_t x = 0; x < width; x += hn::Lanes(kU8)) {
        VecU8 least = hn::LoadU(kU8, map.row + x);
        VecU8 most = least;
        for (const std::uint8_t* row : {map.above, map.row, map.below}) {
            for (std::ptrdiff_t side = -1; side <= 1; ++side) {
                const VecU8 cells = hn::LoadU(kU8, row + static_cast<std::ptrdiff_t>(x) + side);
                least = hn::Min(least, cells);
                most = hn::Max(most, cells);
            }
        }
        const VecU8 middle =
            hn::Sub(hn::AverageRound(least, most), hn::And(hn::Xor(least, most), one));
        hn::StoreU(hn::IfThenElseZero(hn::Gt(hn::Sub(most, least), limits), middle), kU8, out + x);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(edge_means);
HWY_EXPORT(grey_means);
HWY_EXPORT(fill_empty_row);
HWY_EXPORT(average_filled_row);
HWY_EXPORT(midrange_row);

void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t* edges,
                std::size_t words, std::uint8_t* midpoint_means, std::uint8_t* contrast_means) {
    HWY_DYNAMIC_DISPATCH(edge_means)
    (midpoints, contrasts, edges, words, midpoint_means, contrast_means);
}

void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means) {
    HWY_DYNAMIC_DISPATCH(grey_means)(grey, words, means);
}

void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(fill_empty_row)(map, width, out);
}

void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(average_filled_row)(map, width, out);
}

void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(midrange_row)(map, width, limit, out);
}

}  // namespace simd
#endif  // HWY_ONCE

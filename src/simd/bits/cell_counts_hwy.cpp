// Ink counts of a band of sixteen rows, for cells of 2 x 16 and of 16 x 2 pixels in one pass.
//
// Sixteen rows of a block of bytes give eight rows of wide cells and one row of tall cells. Wide
// cells are sums of the bit counts of bytes. For tall cells the bits of a byte are added in pairs,
// and the pairs down the rows, in fields of four bits at first and of eight in the end. The edges
// of the wide cells are stored transposed, eight cells down a column side by side, because the skew
// search moves columns of them.
#include "simd/bits/cell_counts.h"

#include <algorithm>
#include <cstring>

#include "simd/bits/plain/cell_counts.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/cell_counts_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U8 = hn::CappedTag<std::uint8_t, kCountBlock>;
using U16 = hn::Repartition<std::uint16_t, U8>;

// The ink of 2 rows x 16 pixels in each lane of 16 bits.
HWY_INLINE hn::Vec<U16> wide_cells(const std::uint8_t* upper, const std::uint8_t* lower) {
    const U8 d8;
    const U16 d16;
    const auto bytes = hn::BitCast(d16, hn::Add(hn::PopulationCount(hn::LoadU(d8, upper)),
                                                hn::PopulationCount(hn::LoadU(d8, lower))));
    return hn::Add(hn::And(bytes, hn::Set(d16, 0xFF)), hn::ShiftRight<8>(bytes));
}

// Stores eight rows of cells, a vector each, as eight bytes for each column: three perfect shuffles
// exchange rows and columns in every block of 128 bits.
HWY_INLINE void store_transposed(const std::uint16_t* rows, std::uint8_t* out, std::size_t pitch,
                                 std::size_t columns) {
    const U16 d;
    const hn::RebindToSigned<U16> signed_d;
    const hn::Rebind<std::uint8_t, U16> d8;
    using V = hn::Vec<U16>;
    const std::size_t lanes = hn::Lanes(d);
    const auto low = [](V a, V b) HWY_ATTR { return hn::InterleaveLower(U16(), a, b); };
    const auto high = [](V a, V b) HWY_ATTR { return hn::InterleaveUpper(U16(), a, b); };
    const auto row = [&](std::size_t i) HWY_ATTR { return hn::LoadU(d, rows + i * lanes); };
    const V a0 = low(row(0), row(4)), a1 = high(row(0), row(4));
    const V a2 = low(row(1), row(5)), a3 = high(row(1), row(5));
    const V a4 = low(row(2), row(6)), a5 = high(row(2), row(6));
    const V a6 = low(row(3), row(7)), a7 = high(row(3), row(7));
    const V b0 = low(a0, a4), b1 = high(a0, a4), b2 = low(a1, a5), b3 = high(a1, a5);
    const V b4 = low(a2, a6), b5 = high(a2, a6), b6 = low(a3, a7), b7 = high(a3, a7);

    std::uint8_t tile[kBandPairs * kCountBlock / 2];
    const auto store = [&](std::size_t i, V cells) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(signed_d, cells)), d8, tile + i * lanes);
    };
    store(0, low(b0, b4));
    store(1, high(b0, b4));
    store(2, low(b1, b5));
    store(3, high(b1, b5));
    store(4, low(b2, b6));
    store(5, high(b2, b6));
    store(6, low(b3, b7));
    store(7, high(b3, b7));
    for (std::size_t column = 0; column < columns; ++column)
        std::memcpy(out + column * pitch, tile + column % 8 * lanes + column / 8 * 8, kBandPairs);
}

// The ink of 16 rows x 2 pixels: four cells for every byte.
HWY_INLINE void store_tall_cells(const std::uint8_t* const (&from)[kBandRows], std::uint8_t* out) {
    const U8 d8;
    const auto even_bits = hn::Set(d8, 0x55);
    const auto even_pairs = hn::Set(d8, 0x33);
    const auto low_nibbles = hn::Set(d8, 0x0F);
    auto cell0 = hn::Zero(d8), cell1 = cell0, cell2 = cell0, cell3 = cell0;
    // Four rows at a time: a field of four bits holds at most 8.
    for (std::size_t group = 0; group < kBandRows; group += 4) {
        auto left = hn::Zero(d8), right = left;
        for (std::size_t i = group; i < group + 4; ++i) {
            const auto ink = hn::LoadU(d8, from[i]);
            const auto pairs =
                hn::Add(hn::And(ink, even_bits), hn::And(hn::ShiftRight<1>(ink), even_bits));
            left = hn::Add(left, hn::And(hn::ShiftRight<2>(pairs), even_pairs));
            right = hn::Add(right, hn::And(pairs, even_pairs));
        }
        cell0 = hn::Add(cell0, hn::ShiftRight<4>(left));
        cell1 = hn::Add(cell1, hn::ShiftRight<4>(right));
        cell2 = hn::Add(cell2, hn::And(left, low_nibbles));
        cell3 = hn::Add(cell3, hn::And(right, low_nibbles));
    }
    hn::StoreInterleaved4(cell0, cell1, cell2, cell3, d8, out);
}

// Counts one vector of bytes of every row; it starts at byte `byte` of the band.
HWY_INLINE void count_block(const CountBand& band, const std::uint8_t* const (&from)[kBandRows],
                            std::size_t byte) {
    const U16 d16;
    const std::size_t lanes = hn::Lanes(d16);
    store_tall_cells(from, band.tall_cells + 4 * byte);

    const std::size_t column = byte / 2;
    std::uint16_t edges[kBandPairs * kCountBlock / 2];
    auto above = band.first ? wide_cells(from[0], from[1]) : hn::LoadU(d16, band.above + column);
    for (std::size_t i = 0; i < kBandPairs; ++i) {
        const auto counts = wide_cells(from[2 * i], from[2 * i + 1]);
        hn::StoreU(hn::Sub(hn::Max(counts, above), hn::Min(counts, above)), d16, edges + i * lanes);
        above = counts;
    }
    hn::StoreU(above, d16, band.above + column);
    if (column < band.columns)
        store_transposed(edges, band.row_edges + column * band.pitch, band.pitch,
                         std::min(lanes, band.columns - column));
}

void count_band(const CountBand& band) {
    const std::size_t step = hn::Lanes(U8());
    const std::uint8_t* from[kBandRows];
    std::size_t byte = 0;
    for (; byte + step <= band.bytes; byte += step) {
        for (std::size_t i = 0; i < kBandRows; ++i) from[i] = band.rows[i] + byte;
        count_block(band, from, byte);
    }
    if (byte == band.bytes) return;
    std::uint8_t tail[kBandRows][kCountBlock] = {};
    for (std::size_t i = 0; i < kBandRows; ++i) {
        std::memcpy(tail[i], band.rows[i] + byte, band.bytes - byte);
        from[i] = tail[i];
    }
    count_block(band, from, byte);
}

void adjacent_differences(const std::uint8_t* values, std::size_t count, std::uint8_t* out) {
    const U8 d8;
    const std::size_t lanes = hn::Lanes(d8);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto value = hn::LoadU(d8, values + i);
        const auto before = hn::LoadU(d8, values + i - 1);
        hn::StoreU(hn::Sub(hn::Max(value, before), hn::Min(value, before)), d8, out + i);
    }
    plain::adjacent_differences(values + i, count - i, out + i);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_band);
HWY_EXPORT(adjacent_differences);

void count_band(const CountBand& band) {
    HWY_DYNAMIC_DISPATCH(count_band)(band);
}

void adjacent_differences(const std::uint8_t* values, std::size_t count, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(adjacent_differences)(values, count, out);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector form of edge_block_sums.h. A strip of one vector of columns and four rows is worked on at
// a time, so that the sums of its blocks stay in registers.
//
// Most of a page has no contrast. With greys that differ by r at most, gx * gx + gy * gy is 20 r *
// r at most (the four opposite pairs of neighbours move (gx, gy) by (r, r), (r, -r), (2 r, 0) and
// (0, 2 r) at most, either way; their longest sum is (4 r, 2 r)). So the difference of the largest
// and the smallest grey, which bytes can hold, rules out most pixels before any gradient is taken.
//
// Pixels stand in bytes; where 16 bits are needed, the even and the odd pixels are worked on apart.
// That makes neighbours of a pixel lanes of the other half or of a vector loaded one byte further,
// and no lane has to move. Four bytes of a block are one 32-bit lane in the end.
#include "simd/blocks/edge_block_sums.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/edge_block_sums_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

constexpr std::size_t kMaxLanes = hn::MaxLanes(kU8);
using U32 = hn::Repartition<std::uint32_t, U8>;
using VecU32 = hn::Vec<U32>;
constexpr U32 kU32;

// Where one strip is read, columns -1 .. lanes of each row, and which of its pixels are inside the
// page (all bits set) rather than at its edge.
struct Strip {
    const std::uint8_t* row[6];
    const std::uint8_t* inside;
};

HWY_INLINE VecU16 sum_of_pairs(VecU8 v) {
    return hn::Add(even_bytes(v), odd_bytes(v));
}

HWY_INLINE VecU32 sum_of_pairs(VecU16 v) {
    const VecU32 pairs = hn::BitCast(kU32, v);
    return hn::Add(hn::And(pairs, hn::Set(kU32, 0xFFFFU)), hn::ShiftRight<16>(pairs));
}

HWY_INLINE VecU32 sum_of_squares(VecU8 v) {
    const VecU16 e = even_bytes(v);
    const VecU16 o = odd_bytes(v);
    return hn::Add(sum_of_pairs(hn::Mul(e, e)), sum_of_pairs(hn::Mul(o, o)));
}

// The columns that the pixels of a lane of 16 bits need: left, middle and right of the even pixel
// are the first three members, those of the odd pixel the last three.
struct Columns {
    VecU16 left_of_even;
    VecU16 even;
    VecU16 odd;
    VecU16 right_of_odd;
};

HWY_INLINE Columns load_columns(const std::uint8_t* row) {
    const VecU8 middle = hn::LoadU(kU8, row);
    return {even_bytes(hn::LoadU(kU8, row - 1)), even_bytes(middle), odd_bytes(middle),
            odd_bytes(hn::LoadU(kU8, row + 1))};
}

HWY_INLINE VecU16 magnitude(VecU16 a, VecU16 b) {
    return hn::Sub(hn::Max(a, b), hn::Min(a, b));
}

// All bits of a lane where gx * gx + gy * gy >= limit, from |gx| and |gy| below 1024: the squares
// are added in two halves of 16 bits.
HWY_INLINE VecU16 is_steep(VecU16 gx, VecU16 gy, std::uint32_t limit) {
    const VecU16 low_x = hn::Mul(gx, gx);
    const VecU16 low = hn::Add(low_x, hn::Mul(gy, gy));
    // A comparison that holds is -1: subtracted, it is the carry.
    const VecU16 carry = hn::VecFromMask(kU16, hn::Lt(low, low_x));
    const VecU16 high = hn::Sub(hn::Add(hn::MulHigh(gx, gx), hn::MulHigh(gy, gy)), carry);
    const VecU16 limit_low = hn::Set(kU16, static_cast<std::uint16_t>(limit));
    const VecU16 limit_high = hn::Set(kU16, static_cast<std::uint16_t>(limit >> 16));
    const auto below =
        hn::Or(hn::Lt(high, limit_high), hn::And(hn::Eq(high, limit_high), hn::Lt(low, limit_low)));
    return hn::Not(hn::VecFromMask(kU16, below));
}

// The same for the pixels of a row, in bytes.
HWY_INLINE VecU8 is_steep(const std::uint8_t* above, const std::uint8_t* row,
                          const std::uint8_t* below, std::uint32_t limit) {
    const Columns a = load_columns(above);
    const Columns b = load_columns(row);
    const Columns c = load_columns(below);
    const auto down = [&](auto column) { return one_two_one(a.*column, b.*column, c.*column); };
    const VecU16 even_gx = magnitude(down(&Columns::odd), down(&Columns::left_of_even));
    const VecU16 odd_gx = magnitude(down(&Columns::right_of_odd), down(&Columns::even));
    const VecU16 even_gy = magnitude(one_two_one(c.left_of_even, c.even, c.odd),
                                     one_two_one(a.left_of_even, a.even, a.odd));
    const VecU16 odd_gy = magnitude(one_two_one(c.even, c.odd, c.right_of_odd),
                                    one_two_one(a.even, a.odd, a.right_of_odd));
    const VecU16 even_steep = is_steep(even_gx, even_gy, limit);
    const VecU16 odd_steep = is_steep(odd_gx, odd_gy, limit);
    return hn::BitCast(kU8, hn::Or(hn::ShiftRight<8>(even_steep), hn::ShiftLeft<8>(odd_steep)));
}

// The sums of a strip's blocks while rows are added. Lanes of 16 bits are sums of two columns: at
// most 4 rows of 2 * 255.
struct StripSums {
    VecU16 count;
    VecU16 minima;
    VecU16 maxima;
    VecU32 squared_minima;
    VecU32 squared_maxima;

    HWY_INLINE void add(VecU8 edges, VecU8 least, VecU8 most) {
        least = hn::And(edges, least);
        most = hn::And(edges, most);
        count = hn::Add(count, sum_of_pairs(hn::And(edges, hn::Set(kU8, std::uint8_t{1}))));
        minima = hn::Add(minima, sum_of_pairs(least));
        maxima = hn::Add(maxima, sum_of_pairs(most));
        squared_minima = hn::Add(squared_minima, sum_of_squares(least));
        squared_maxima = hn::Add(squared_maxima, sum_of_squares(most));
    }
};

HWY_INLINE void store(VecU32 v, std::int32_t* to) {
    const hn::RebindToSigned<U32> words;
    hn::StoreU(hn::BitCast(words, v), words, to);
}

struct Limits {
    std::uint32_t squared_gradient;
    std::uint8_t contrast;  // what every edge pixel exceeds
};

HWY_INLINE void sum_strip(const Strip& strip, std::size_t from, std::size_t to,
                          const Limits& limits, const EdgeBlockSums& sums) {
    VecU16 grey = hn::Zero(kU16);
    VecU8 least[6];
    VecU8 most[6];
    for (std::size_t k = 0; k < 6; ++k) {
        const VecU8 left = hn::LoadU(kU8, strip.row[k] - 1);
        const VecU8 middle = hn::LoadU(kU8, strip.row[k]);
        const VecU8 right = hn::LoadU(kU8, strip.row[k] + 1);
        least[k] = hn::Min(hn::Min(left, right), middle);
        most[k] = hn::Max(hn::Max(left, right), middle);
        if (k >= 1 && k <= 4) grey = hn::Add(grey, sum_of_pairs(middle));
    }
    const VecU16 none = hn::Zero(kU16);
    StripSums found{none, none, none, hn::Zero(kU32), hn::Zero(kU32)};
    const VecU8 contrast = hn::Set(kU8, limits.contrast);
    for (std::size_t y = 0; y < 4; ++y) {
        const VecU8 low = hn::Min(hn::Min(least[y], least[y + 1]), least[y + 2]);
        const VecU8 high = hn::Max(hn::Max(most[y], most[y + 1]), most[y + 2]);
        const auto possible = hn::Gt(hn::Sub(high, low), contrast);
        if (hn::AllFalse(kU8, possible) || y < from || y >= to) continue;
        const VecU8 steep =
            is_steep(strip.row[y], strip.row[y + 1], strip.row[y + 2], limits.squared_gradient);
        const VecU8 inside = hn::LoadU(kU8, strip.inside);
        found.add(hn::And(hn::And(hn::VecFromMask(kU8, possible), inside), steep), low, high);
    }
    store(sum_of_pairs(grey), sums.grey);
    store(sum_of_pairs(found.count), sums.count);
    store(sum_of_pairs(found.minima), sums.minima);
    store(sum_of_pairs(found.maxima), sums.maxima);
    store(found.squared_minima, sums.squared_minima);
    store(found.squared_maxima, sums.squared_maxima);
}

EdgeBlockSums from_block(const EdgeBlockSums& sums, std::size_t block) {
    return {sums.grey + block,   sums.count + block,          sums.minima + block,
            sums.maxima + block, sums.squared_minima + block, sums.squared_maxima + block};
}

// A strip that reaches over the left or the right end of the page, by way of copies.
void sum_end_strip(const BlockRows& rows, std::size_t x, std::size_t blocks, const Limits& limits,
                   const EdgeBlockSums& sums) {
    const std::size_t lanes = hn::Lanes(kU8);
    std::uint8_t copies[7][kMaxLanes + 2] = {};  // columns x - 1 .. x + lanes
    const std::size_t from = x == 0 ? 1 : 0;
    const std::size_t count = std::min(lanes + 2 - from, rows.width - (x + from - 1));
    Strip strip{};
    for (std::size_t k = 0; k < 6; ++k) {
        std::memcpy(copies[k] + from, rows.row[k] + (x + from - 1), count);
        strip.row[k] = copies[k] + 1;
    }
    for (std::size_t i = 0; i < lanes; ++i) {
        copies[6][i] = x + i != 0 && x + i + 1 < rows.width ? 0xFF : 0;
    }
    strip.inside = copies[6];
    std::int32_t results[6][kMaxLanes / 4];
    sum_strip(strip, rows.edges_from, rows.edges_to, limits,
              {results[0], results[1], results[2], results[3], results[4], results[5]});
    std::int32_t* const ends[] = {sums.grey,   sums.count,          sums.minima,
                                  sums.maxima, sums.squared_minima, sums.squared_maxima};
    for (std::size_t k = 0; k < 6; ++k) {
        std::memcpy(ends[k], results[k], blocks * sizeof(std::int32_t));
    }
}

void sum_edge_blocks(const BlockRows& rows, const EdgeLimits& limits, const EdgeBlockSums& sums) {
    std::uint8_t all_inside[kMaxLanes];
    std::memset(all_inside, 0xFF, sizeof all_inside);
    Limits own{static_cast<std::uint32_t>(limits.squared_gradient), limits.contrast};
    while (20 * own.contrast * own.contrast < limits.squared_gradient) ++own.contrast;
    --own.contrast;
    const std::size_t lanes = hn::Lanes(kU8);
    const std::size_t width = rows.width / 4 * 4;
    for (std::size_t x = 0; x < width; x += lanes) {
        const EdgeBlockSums here = from_block(sums, x / 4);
        if (x == 0 || x + lanes >= rows.width) {
            sum_end_strip(rows, x, std::min(lanes, width - x) / 4, own, here);
            continue;
        }
        Strip strip{};
        for (std::size_t k = 0; k < 6; ++k) strip.row[k] = rows.row[k] + x;
        strip.inside = all_inside;
        sum_strip(strip, rows.edges_from, rows.edges_to, own, here);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(sum_edge_blocks);

void sum_edge_blocks(const BlockRows& rows, const EdgeLimits& limits, const EdgeBlockSums& sums) {
    HWY_DYNAMIC_DISPATCH(sum_edge_blocks)(rows, limits, sums);
}

}  // namespace simd
#endif  // HWY_ONCE

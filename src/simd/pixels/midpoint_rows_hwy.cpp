// Vector forms of midpoint_rows.h. Most words of most pages have no edge in or around them, and are
// passed over.
#include "simd/pixels/midpoint_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/midpoint_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

struct Extremes {
    VecU8 least;
    VecU8 most;

    HWY_INLINE void add(VecU8 bytes) {
        least = hn::Min(least, bytes);
        most = hn::Max(most, bytes);
    }
};

HWY_INLINE Extremes extremes_around(const ThreeRows& rows, std::size_t x) {
    const VecU8 here = hn::LoadU(kU8, rows.row + x);
    Extremes extremes{here, here};
    for (const std::uint8_t* row : {rows.above, rows.row, rows.below}) {
        extremes.add(hn::LoadU(kU8, row + x - 1));
        extremes.add(hn::LoadU(kU8, row + x));
        extremes.add(hn::LoadU(kU8, row + x + 1));
    }
    return extremes;
}

bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                  std::uint8_t* midpoint, std::uint8_t* contrast) {
    const VecU8 zero = hn::Zero(kU8);
    const VecU8 one = hn::Set(kU8, std::uint8_t{1});
    bool hidden = false;
    for (std::size_t i = 0; i < words; ++i) {
        by_vectors([&](std::size_t at) HWY_ATTR {
            const std::size_t x = 64 * i + at;
            if (edges[i] == 0) {
                hn::StoreU(zero, kU8, midpoint + x);
                hn::StoreU(zero, kU8, contrast + x);
                return;
            }
            const auto edge = mask_of(edges[i], at);
            const Extremes around = extremes_around(grey, x);
            // The mean that is rounded up, less the half that was added.
            const VecU8 rounded = hn::And(hn::Xor(around.least, around.most), one);
            const VecU8 mean = hn::Sub(hn::AverageRound(around.least, around.most), rounded);
            const VecU8 midpoints = hn::IfThenElseZero(edge, mean);
            const VecU8 contrasts = hn::IfThenElseZero(edge, hn::Sub(around.most, around.least));
            hn::StoreU(midpoints, kU8, midpoint + x);
            hn::StoreU(contrasts, kU8, contrast + x);
            hidden |= !hn::AllTrue(
                kU8, hn::Eq(hn::Min(contrasts, one), hn::Min(hn::Min(contrasts, one), midpoints)));
        });
    }
    return hidden;
}

// All ones where the mean, rounded down, of the bytes that are not 0 is above the grey. It is
// exactly when their sum is at least their number times grey + 1, so nothing has to be divided;
// without any such byte the sum is 0.
HWY_INLINE hn::Vec<U16> above_grey(VecU16 sums_and_counts, VecU16 grey) {
    const VecU16 one = hn::Set(kU16, std::uint16_t{1});
    const VecU16 sums = sums_of(sums_and_counts);
    const VecU16 least = hn::Max(hn::Mul(counts_of(sums_and_counts), hn::Add(grey, one)), one);
    return hn::VecFromMask(kU16, hn::Eq(hn::Max(sums, least), sums));
}

HWY_INLINE std::uint64_t marks_of(const ThreeRows& midpoints, const std::uint8_t* grey,
                                  std::size_t x) {
    const VecU8 greys = hn::LoadU(kU8, grey + x);
    const VecU8 own = hn::LoadU(kU8, midpoints.row + x);
    const SumsAndCounts around =
        sums_around(midpoints.above + x, midpoints.row + x, midpoints.below + x);
    const VecU16 even = above_grey(around.even, even_bytes(greys));
    const VecU16 odd = above_grey(around.odd, odd_bytes(greys));
    // Only for pixels without a midpoint, which add nothing to the sums around themselves.
    const VecU8 by_neighbours = interleave(hn::And(even, hn::Set(kU16, std::uint16_t{0xFF})), odd);
    const auto none = hn::Eq(own, hn::Zero(kU8));
    const VecU8 by_own = hn::VecFromMask(kU8, hn::Lt(greys, own));
    return bits_of(hn::MaskFromVec(hn::IfThenElse(none, by_neighbours, by_own)));
}

// Whether there are edges within one pixel of word i.
HWY_INLINE bool near_edges(const ThreeBitRows& edges, std::size_t i, std::size_t words) {
    const auto any = [&](std::size_t at)
                         HWY_ATTR { return edges.above[at] | edges.row[at] | edges.below[at]; };
    std::uint64_t found = any(i);
    if (i > 0) found |= any(i - 1) >> 63;
    if (i + 1 < words) found |= any(i + 1) & 1;
    return found != 0;
}

void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows& edges,
                          const std::uint8_t* grey, std::size_t width, std::uint64_t* marks) {
    const std::size_t words = (width + 63) / 64;
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word = 0;
        if (near_edges(edges, i, words)) {
            by_vectors([&](std::size_t at)
                           HWY_ATTR { word |= marks_of(midpoints, grey, 64 * i + at) << at; });
        }
        marks[i] = word & inner_pixels(i, width);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(midpoint_row);
HWY_EXPORT(mark_below_midpoints);

bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                  std::uint8_t* midpoint, std::uint8_t* contrast) {
    return HWY_DYNAMIC_DISPATCH(midpoint_row)(grey, edges, words, midpoint, contrast);
}

void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows& edges,
                          const std::uint8_t* grey, std::size_t width, std::uint64_t* marks) {
    HWY_DYNAMIC_DISPATCH(mark_below_midpoints)(midpoints, edges, grey, width, marks);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector form of light_counts.h. Counts are kept in bytes, a lane each, and added up before they
// can pass 255. A row that is not a whole number of vectors ends with one that overlaps the one
// before; what it has in common with that is counted as 0, which reaches no level.
#include "simd/pixels/light_counts.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/light_counts_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/fetch_ahead.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U8 = hn::CappedTag<std::uint8_t, 64>;
using VecU8 = hn::Vec<U8>;
constexpr U8 kU8;

HWY_INLINE VecU8 reaches(VecU8 pixels, VecU8 level) {
    return hn::VecFromMask(kU8, hn::Eq(hn::Max(pixels, level), pixels));
}

HWY_INLINE std::uint64_t sum_of(VecU8 bytes) {
    const hn::Repartition<std::uint64_t, U8> sums;
    return hn::GetLane(hn::SumOfLanes(sums, hn::SumsOf8(bytes)));
}

// Counts of one level each, for as many vectors as bytes can count.
struct Counters {
    VecU8 n0, n1, n2, n3, n4, n5, n6, n7;

    HWY_INLINE void clear() { n0 = n1 = n2 = n3 = n4 = n5 = n6 = n7 = hn::Zero(kU8); }

    HWY_INLINE void add(VecU8 pixels, VecU8 first_level) {
        const VecU8 one = hn::Set(kU8, std::uint8_t{1});
        VecU8 level = first_level;
        for (VecU8* n : {&n0, &n1, &n2, &n3, &n4, &n5, &n6, &n7}) {
            *n = hn::Sub(*n, reaches(pixels, level));
            level = hn::Add(level, one);
        }
    }

    HWY_INLINE void flush(LightCounts& counts) {
        std::size_t k = 0;
        for (const VecU8 n : {n0, n1, n2, n3, n4, n5, n6, n7}) {
            counts.at_least[k++] += sum_of(n);
        }
        clear();
    }
};

void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts) {
    constexpr int kMostVectors = 255;
    const std::size_t lanes = hn::Lanes(kU8);
    const auto width = static_cast<std::size_t>(grey.width);
    if (width < lanes) return plain::count_light(grey, first_level, counts);
    const VecU8 levels = hn::Set(kU8, first_level);
    const VecU8 white = hn::Set(kU8, std::uint8_t{255});
    const std::size_t last = width - lanes;
    VecU8 least = hn::Set(kU8, counts.least);
    Counters counters;
    counters.clear();
    int vectors = 0;
    for (std::ptrdiff_t y = 0; y < grey.height; ++y) {
        const std::uint8_t* row = grey.row(y);
        for (std::size_t x = 0; x < width; x += lanes) {
            fetch_ahead(row + x);
            if (++vectors > kMostVectors) {
                counters.flush(counts);
                vectors = 1;
            }
            if (x <= last) {
                const VecU8 pixels = hn::LoadU(kU8, row + x);
                least = hn::Min(least, pixels);
                counters.add(pixels, levels);
            } else {
                const auto counted = hn::FirstN(kU8, x - last);
                const VecU8 pixels = hn::LoadU(kU8, row + last);
                least = hn::Min(least, hn::IfThenElse(counted, white, pixels));
                counters.add(hn::IfThenZeroElse(counted, pixels), levels);
            }
        }
    }
    counters.flush(counts);
    alignas(64) std::uint8_t values[HWY_MAX_BYTES];
    hn::Store(least, kU8, values);
    counts.least = *std::min_element(values, values + lanes);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_light);

void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts) {
    HWY_DYNAMIC_DISPATCH(count_light)(grey, first_level, counts);
}

}  // namespace simd
#endif  // HWY_ONCE

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
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::CappedTag<std::uint8_t, 64>;
using ByteVector = hn::Vec<Bytes>;
constexpr Bytes kBytes;

HWY_INLINE ByteVector reaches(ByteVector pixels, ByteVector level) {
    return hn::VecFromMask(kBytes, hn::Eq(hn::Max(pixels, level), pixels));
}

HWY_INLINE std::uint64_t sum_of(ByteVector bytes) {
    const hn::Repartition<std::uint64_t, Bytes> sums;
    return hn::GetLane(hn::SumOfLanes(sums, hn::SumsOf8(bytes)));
}

// Counts of one level each, for as many vectors as bytes can count.
struct Counters {
    ByteVector n0, n1, n2, n3, n4, n5, n6, n7;

    HWY_INLINE void clear() { n0 = n1 = n2 = n3 = n4 = n5 = n6 = n7 = hn::Zero(kBytes); }

    HWY_INLINE void add(ByteVector pixels, ByteVector first_level) {
        const ByteVector one = hn::Set(kBytes, std::uint8_t{1});
        ByteVector level = first_level;
        for (ByteVector* n : {&n0, &n1, &n2, &n3, &n4, &n5, &n6, &n7}) {
            *n = hn::Sub(*n, reaches(pixels, level));
            level = hn::Add(level, one);
        }
    }

    HWY_INLINE void flush(LightCounts& counts) {
        std::size_t k = 0;
        for (const ByteVector n : {n0, n1, n2, n3, n4, n5, n6, n7}) {
            counts.at_least[k++] += sum_of(n);
        }
        clear();
    }
};

void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts) {
    constexpr int kMostVectors = 255;
    const std::size_t lanes = hn::Lanes(kBytes);
    const auto width = static_cast<std::size_t>(grey.width);
    if (width < lanes) return plain::count_light(grey, first_level, counts);
    const ByteVector levels = hn::Set(kBytes, first_level);
    const ByteVector white = hn::Set(kBytes, std::uint8_t{255});
    const std::size_t last = width - lanes;
    ByteVector least = hn::Set(kBytes, counts.least);
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
                const ByteVector pixels = hn::LoadU(kBytes, row + x);
                least = hn::Min(least, pixels);
                counters.add(pixels, levels);
            } else {
                const auto counted = hn::FirstN(kBytes, x - last);
                const ByteVector pixels = hn::LoadU(kBytes, row + last);
                least = hn::Min(least, hn::IfThenElse(counted, white, pixels));
                counters.add(hn::IfThenZeroElse(counted, pixels), levels);
            }
        }
    }
    counters.flush(counts);
    alignas(64) std::uint8_t values[HWY_MAX_BYTES];
    hn::Store(least, kBytes, values);
    counts.least = *std::min_element(values, values + lanes);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_light);

void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts) {
    HWY_DYNAMIC_DISPATCH(count_light)(grey, first_level, counts);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector form of light_counts.h. Counts are kept in bytes, a lane each, and added up before they
// can pass 255.
#include "simd/light_counts.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/light_counts_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVector = hn::Vec<Bytes>;
constexpr Bytes kBytes;

HWY_INLINE ByteVector reaches(ByteVector pixels, ByteVector level) {
    return hn::VecFromMask(kBytes, hn::Eq(hn::Max(pixels, level), pixels));
}

HWY_INLINE std::uint64_t sum_of(ByteVector bytes) {
    const hn::Repartition<std::uint64_t, Bytes> sums;
    return hn::GetLane(hn::SumOfLanes(sums, hn::SumsOf8(bytes)));
}

// At most 255 vectors.
HWY_INLINE void count_vectors(const std::uint8_t* pixels, std::size_t vectors,
                              std::uint8_t first_level, LightCounts& counts) {
    const ByteVector level0 = hn::Set(kBytes, first_level);
    const ByteVector one = hn::Set(kBytes, std::uint8_t{1});
    const ByteVector level1 = hn::Add(level0, one);
    const ByteVector level2 = hn::Add(level1, one);
    const ByteVector level3 = hn::Add(level2, one);
    const ByteVector level4 = hn::Add(level3, one);
    const ByteVector level5 = hn::Add(level4, one);
    const ByteVector level6 = hn::Add(level5, one);
    const ByteVector level7 = hn::Add(level6, one);
    ByteVector n0 = hn::Zero(kBytes), n1 = n0, n2 = n0, n3 = n0, n4 = n0, n5 = n0, n6 = n0, n7 = n0;
    ByteVector least = hn::Set(kBytes, counts.least);
    for (std::size_t i = 0; i < vectors; ++i) {
        const ByteVector v = hn::LoadU(kBytes, pixels + i * hn::Lanes(kBytes));
        least = hn::Min(least, v);
        n0 = hn::Sub(n0, reaches(v, level0));
        n1 = hn::Sub(n1, reaches(v, level1));
        n2 = hn::Sub(n2, reaches(v, level2));
        n3 = hn::Sub(n3, reaches(v, level3));
        n4 = hn::Sub(n4, reaches(v, level4));
        n5 = hn::Sub(n5, reaches(v, level5));
        n6 = hn::Sub(n6, reaches(v, level6));
        n7 = hn::Sub(n7, reaches(v, level7));
    }
    std::size_t k = 0;
    for (const ByteVector n : {n0, n1, n2, n3, n4, n5, n6, n7}) counts.at_least[k++] += sum_of(n);
    alignas(64) std::uint8_t lanes[HWY_MAX_BYTES];
    hn::Store(least, kBytes, lanes);
    counts.least = *std::min_element(lanes, lanes + hn::Lanes(kBytes));
}

void count_light(const std::uint8_t* pixels, std::size_t count, std::uint8_t first_level,
                 LightCounts& counts) {
    constexpr std::size_t kMostVectors = 255;
    const std::size_t lanes = hn::Lanes(kBytes);
    while (count >= lanes) {
        const std::size_t vectors = std::min(count / lanes, kMostVectors);
        count_vectors(pixels, vectors, first_level, counts);
        pixels += vectors * lanes;
        count -= vectors * lanes;
    }
    plain::count_light(pixels, count, first_level, counts);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_light);

void count_light(const std::uint8_t* pixels, std::size_t count, std::uint8_t first_level,
                 LightCounts& counts) {
    HWY_DYNAMIC_DISPATCH(count_light)(pixels, count, first_level, counts);
}

}  // namespace simd
#endif  // HWY_ONCE

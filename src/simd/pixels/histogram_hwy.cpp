// A histogram without a table access per pixel, where vectors are wide enough for it to pay.
//
// A block of eight vectors of bytes is turned into eight bit planes, so that one bit of each plane
// makes a pixel. Which pixels have a given upper half of the level is the conjunction of four
// planes or their complements; most of these sixteen sets are empty in most blocks, paper being
// alike. A set that is not is split by the lower four planes into one set per level, whose bits are
// counted.
//
// Narrow vectors would do this for too few pixels at once: there, and for what is left of the last
// block, pixels are counted one by one, in eight tables in turn. A counter that is raised again at
// once waits for its own store, so neighbours of one level must not share a table; vectors of a
// single level, as white paper has them, are counted as a whole.
#include "simd/pixels/histogram.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/histogram_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

constexpr std::size_t kTables = 8;
using Tables = std::uint32_t[kTables][256];

// The eight pixels are taken out of one word: that is one load, and eight shifts that cost less.
HWY_INLINE void count_eight(const std::uint8_t* pixels, Tables& tables) {
    std::uint64_t word;
    std::memcpy(&word, pixels, sizeof word);
    for (std::size_t k = 0; k < kTables; ++k) ++tables[k][word >> (8 * k) & 0xFF];
}

// At most 2^32 - 1 pixels.
inline void count_in_tables(const std::uint8_t* pixels, std::size_t count, Tables& tables) {
    const hn::CappedTag<std::uint8_t, 32> bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto level = hn::Set(bytes, pixels[i]);
        if (hn::AllTrue(bytes, hn::Eq(hn::LoadU(bytes, pixels + i), level))) {
            tables[0][pixels[i]] += static_cast<std::uint32_t>(lanes);
        } else {
            for (std::size_t k = 0; k < lanes; k += 8) count_eight(pixels + i + k, tables);
        }
    }
    for (; i < count; ++i) ++tables[0][pixels[i]];
}

inline void count_one_by_one(const std::uint8_t* pixels, std::size_t count, Histogram& counts) {
    constexpr std::size_t kMost = std::size_t{1} << 31;
    for (std::size_t done = 0; done < count; done += kMost) {
        Tables tables = {};
        count_in_tables(pixels + done, std::min(count - done, kMost), tables);
        for (std::size_t level = 0; level < counts.size(); ++level) {
            for (const auto& table : tables) counts[level] += table[level];
        }
    }
}

#if HWY_TARGET <= HWY_AVX3 && HWY_ARCH_X86

using U64 = hn::FixedTag<std::uint64_t, 8>;
using VecU64 = hn::Vec<U64>;

constexpr U64 kU64;
constexpr std::size_t kVectorBytes = 64;
constexpr std::size_t kBlockBytes = 8 * kVectorBytes;

// planes[b], bit i of each byte = bit b of that byte of vector i.
HWY_INLINE void load_planes(const std::uint8_t* pixels, VecU64 (&planes)[8]) {
    const hn::Repartition<std::uint8_t, U64> bytes;
    for (std::size_t i = 0; i < 8; ++i) {
        planes[i] = hn::BitCast(kU64, hn::LoadU(bytes, pixels + i * kVectorBytes));
    }
    for (int i = 0; i < 4; ++i) exchange_bits<4>(planes[i], planes[i + 4], 0x0F0F0F0F0F0F0F0FU);
    for (int i : {0, 1, 4, 5}) exchange_bits<2>(planes[i], planes[i + 2], 0x3333333333333333U);
    for (int i : {0, 2, 4, 6}) exchange_bits<1>(planes[i], planes[i + 1], 0x5555555555555555U);
}

// sets[i] of the first `count` becomes two: those without and those with a bit in the plane.
template <std::size_t kCount, std::size_t kSize>
HWY_INLINE void split(VecU64 (&sets)[kSize], VecU64 plane) {
    for (std::size_t i = kCount; i-- > 0;) {
        const VecU64 set = sets[i];
        sets[2 * i + 1] = hn::And(plane, set);
        sets[2 * i] = hn::AndNot(plane, set);
    }
}

void count_block(const std::uint8_t* pixels, std::uint64_t (&sums)[256][8]) {
    VecU64 planes[8];
    load_planes(pixels, planes);
    VecU64 upper[16];
    upper[0] = hn::Set(kU64, ~std::uint64_t{0});
    split<1>(upper, planes[7]);
    split<2>(upper, planes[6]);
    split<4>(upper, planes[5]);
    split<8>(upper, planes[4]);
    for (std::size_t half = 0; half < 16; ++half) {
        if (hn::AllTrue(kU64, hn::Eq(upper[half], hn::Zero(kU64)))) continue;
        VecU64 levels[16];
        levels[0] = upper[half];
        split<1>(levels, planes[3]);
        split<2>(levels, planes[2]);
        split<4>(levels, planes[1]);
        split<8>(levels, planes[0]);
        for (std::size_t i = 0; i < 16; ++i) {
            std::uint64_t* sum = sums[half * 16 + i];
            hn::StoreU(hn::Add(hn::LoadU(kU64, sum), hn::PopulationCount(levels[i])), kU64, sum);
        }
    }
}

void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts) {
    std::size_t done = 0;
    if (count >= kBlockBytes) {
        std::uint64_t sums[256][8] = {};
        for (; done + kBlockBytes <= count; done += kBlockBytes) count_block(pixels + done, sums);
        for (std::size_t level = 0; level < counts.size(); ++level) {
            for (const std::uint64_t sum : sums[level]) counts[level] += sum;
        }
    }
    count_one_by_one(pixels + done, count - done, counts);
}

#else

void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts) {
    count_one_by_one(pixels, count, counts);
}

#endif

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(add_to_histogram);

void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts) {
    HWY_DYNAMIC_DISPATCH(add_to_histogram)(pixels, count, counts);
}

}  // namespace simd
#endif  // HWY_ONCE

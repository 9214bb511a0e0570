// Vector form of light_counts.h. How many of the levels a pixel reaches is a number from 0 to 8,
// and a table tells what that adds to the counts, two of which share a byte of each lane; they are
// added up before they can pass 15. A row that is not a number of full vectors ends with one that
// overlaps the one before; what it has in common with that is counted as 0, which reaches no level.
#include "simd/pixels/light_counts.h"

#include <numeric>

#include "simd/fetch_ahead.h"
#include "simd/pixels/plain/light_counts.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/light_counts_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using U64 = hn::Repartition<std::uint64_t, U8>;
constexpr U64 kU64;

// kReached[k]: what a pixel that reaches the first `index` levels adds to the counts of levels 2 k
// and 2 k + 1, which share a byte, the former in its low half.
alignas(16) constexpr std::uint8_t kReached[kLightLevels / 2][16] = {
    {0x00, 0x01, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11},
    {0x00, 0x00, 0x00, 0x01, 0x11, 0x11, 0x11, 0x11, 0x11},
    {0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x11, 0x11, 0x11},
    {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x11}};

class Counters {
  public:
    explicit Counters(std::uint8_t first_level)
        : below_(hn::Set(kU8, static_cast<std::uint8_t>(first_level - 1))) {}

    HWY_INLINE void add(VecU8 pixels) {
        if (++vectors_ > kMostVectors) flush();
        const VecU8 levels = hn::Set(kU8, std::uint8_t{kLightLevels});
        const VecU8 reached = hn::Min(hn::SaturatedSub(pixels, below_), levels);
        pair0_ = hn::Add(pair0_, lookup(0, reached));
        pair1_ = hn::Add(pair1_, lookup(1, reached));
        pair2_ = hn::Add(pair2_, lookup(2, reached));
        pair3_ = hn::Add(pair3_, lookup(3, reached));
    }

    // After the last pixels.
    HWY_INLINE void add_up(LightCounts& counts) {
        flush();
        for (std::size_t k = 0; k < kLightLevels; ++k) {
            counts.at_least[k] += std::accumulate(sums_[k], sums_[k] + kMostSums, std::uint64_t{0});
        }
    }

  private:
    static constexpr int kMostVectors = 15;  // that half a byte can count

    static constexpr std::size_t kMostSums = hn::MaxLanes(kU64);

    HWY_INLINE void flush() {
        const VecU8 half = hn::Set(kU8, std::uint8_t{0x0F});
        std::size_t k = 0;
        for (VecU8* pair : {&pair0_, &pair1_, &pair2_, &pair3_}) {
            const hn::Repartition<std::uint16_t, U8> wide;
            const auto second = hn::BitCast(kU8, hn::ShiftRight<4>(hn::BitCast(wide, *pair)));
            add_to(sums_[k++], hn::And(*pair, half));
            add_to(sums_[k++], hn::And(second, half));
            *pair = hn::Zero(kU8);
        }
        vectors_ = 1;
    }

    static HWY_INLINE void add_to(std::uint64_t* sums, VecU8 bytes) {
        hn::StoreU(hn::Add(hn::LoadU(kU64, sums), hn::SumsOf8(bytes)), kU64, sums);
    }

    static HWY_INLINE VecU8 lookup(std::size_t k, VecU8 reached) {
        return hn::TableLookupBytes(hn::LoadDup128(kU8, kReached[k]), reached);
    }

    VecU8 below_;
    VecU8 pair0_ = hn::Zero(kU8), pair1_ = hn::Zero(kU8);
    VecU8 pair2_ = hn::Zero(kU8), pair3_ = hn::Zero(kU8);
    int vectors_ = 0;
    std::uint64_t sums_[kLightLevels][kMostSums] = {};
};

void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts) {
    const std::size_t lanes = hn::Lanes(kU8);
    const auto width = static_cast<std::size_t>(grey.width);
    if (width < lanes) return plain::count_light(grey, first_level, counts);
    const VecU8 white = hn::Set(kU8, std::uint8_t{255});
    const std::size_t last = width - lanes;
    VecU8 least = hn::Set(kU8, counts.least);
    Counters counters(first_level);
    for (std::ptrdiff_t y = 0; y < grey.height; ++y) {
        const std::uint8_t* row = grey.row(y);
        for (std::size_t x = 0; x < width; x += lanes) {
            fetch_ahead(row + x);
            if (x <= last) {
                const VecU8 pixels = hn::LoadU(kU8, row + x);
                least = hn::Min(least, pixels);
                counters.add(pixels);
            } else {
                const auto counted = hn::FirstN(kU8, x - last);
                const VecU8 pixels = hn::LoadU(kU8, row + last);
                least = hn::Min(least, hn::IfThenElse(counted, white, pixels));
                counters.add(hn::IfThenZeroElse(counted, pixels));
            }
        }
    }
    counters.add_up(counts);
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

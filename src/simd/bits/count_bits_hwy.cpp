// Vector form of count_bits.h. Two sums are taken in turn, which do not wait for each other.
#include "simd/bits/count_bits.h"

#include <bit>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/count_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size) {
    const hn::ScalableTag<std::uint8_t> d8;
    const hn::ScalableTag<std::uint64_t> d64;
    const std::size_t step = hn::Lanes(d8);
    auto even = hn::Zero(d64);
    auto odd = hn::Zero(d64);
    std::size_t i = 0;
    for (; i + 2 * step <= size; i += 2 * step) {
        const auto a = hn::PopulationCount(hn::LoadU(d8, bytes + i));
        const auto b = hn::PopulationCount(hn::LoadU(d8, bytes + i + step));
        even = hn::Add(even, hn::SumsOf8(a));
        odd = hn::Add(odd, hn::SumsOf8(b));
    }
    std::uint64_t count = hn::GetLane(hn::SumOfLanes(d64, hn::Add(even, odd)));
    for (; i < size; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, size - i < 8 ? size - i : 8);
        count += static_cast<std::uint64_t>(std::popcount(word));
    }
    return static_cast<std::int64_t>(count);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_bits);

std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size) {
    return HWY_DYNAMIC_DISPATCH(count_bits)(bytes, size);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector form of threshold_bits.h. A comparison mask stores its first lane in the least significant
// bit, a bitonal row its first pixel in the most significant one: each group of eight pixels is
// reversed before it is compared.
#include "simd/threshold_bits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/threshold_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Whole vectors from pixel `x` on; returns where they end.
template <class Tag>
HWY_INLINE std::size_t pack_vectors(Tag bytes, const std::uint8_t* grey, std::size_t x,
                                    std::size_t width, std::uint8_t threshold, std::uint8_t* bits) {
    alignas(16) static constexpr std::uint8_t kReversedEights[16] = {7,  6,  5,  4,  3,  2,  1, 0,
                                                                     15, 14, 13, 12, 11, 10, 9, 8};
    const auto reversed = hn::LoadDup128(bytes, kReversedEights);
    const auto thresholds = hn::Set(bytes, threshold);
    const std::size_t lanes = hn::Lanes(bytes);
    for (; x + lanes <= width; x += lanes) {
        const auto pixels = hn::TableLookupBytes(hn::LoadU(bytes, grey + x), reversed);
        hn::StoreMaskBits(bytes, hn::Lt(pixels, thresholds), bits + x / 8);
    }
    return x;
}

void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                std::uint8_t* bits) {
    const hn::ScalableTag<std::uint8_t> widest;
    const hn::CappedTag<std::uint8_t, 16> small;
    std::size_t x = pack_vectors(widest, grey, 0, width, threshold, bits);
    x = pack_vectors(small, grey, x, width, threshold, bits);
    plain::pack_below(grey + x, width - x, threshold, bits + x / 8);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(pack_below);

void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                std::uint8_t* bits) {
    HWY_DYNAMIC_DISPATCH(pack_below)(grey, width, threshold, bits);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector form of threshold_bits.h. A comparison mask stores its first lane in the least significant
// bit, a bitonal row its first pixel in the most significant one: each group of eight pixels is
// reversed before it is compared.
#include "simd/pixels/threshold_bits.h"

#include "simd/pixels/plain/threshold_bits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/threshold_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Packs vectors from pixel `x` on, as long as they are full; returns where they end.
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

template <class Tag>
HWY_INLINE std::size_t pack_block_vectors(Tag bytes, const std::uint8_t* grey, std::size_t x,
                                          std::size_t width, const std::uint8_t* thresholds,
                                          std::uint8_t* bits) {
    alignas(16) static constexpr std::uint8_t kReversedEights[16] = {7,  6,  5,  4,  3,  2,  1, 0,
                                                                     15, 14, 13, 12, 11, 10, 9, 8};
    // A threshold stands in the lowest byte of each group of four; it goes to the four pixels of
    // its block, which stand in reversed eights.
    alignas(16) static constexpr std::uint8_t kReversedBlocks[16] = {4,  4,  4,  4,  0, 0, 0, 0,
                                                                     12, 12, 12, 12, 8, 8, 8, 8};
    const hn::Repartition<std::uint32_t, Tag> blocks;
    const hn::Rebind<std::uint8_t, decltype(blocks)> block_bytes;
    const auto reversed = hn::LoadDup128(bytes, kReversedEights);
    const auto repeated = hn::LoadDup128(bytes, kReversedBlocks);
    const std::size_t lanes = hn::Lanes(bytes);
    for (; x + lanes <= width; x += lanes) {
        const auto pixels = hn::TableLookupBytes(hn::LoadU(bytes, grey + x), reversed);
        const auto per_block = hn::PromoteTo(blocks, hn::LoadU(block_bytes, thresholds + x / 4));
        const auto limits = hn::TableLookupBytes(hn::BitCast(bytes, per_block), repeated);
        hn::StoreMaskBits(bytes, hn::Lt(pixels, limits), bits + x / 8);
    }
    return x;
}

void pack_below_blocks(const std::uint8_t* grey, std::size_t width, const std::uint8_t* thresholds,
                       std::uint8_t* bits) {
    const hn::ScalableTag<std::uint8_t> widest;
    const hn::CappedTag<std::uint8_t, 16> small;
    std::size_t x = pack_block_vectors(widest, grey, 0, width, thresholds, bits);
    x = pack_block_vectors(small, grey, x, width, thresholds, bits);
    plain::pack_below_blocks(grey + x, width - x, thresholds + x / 4, bits + x / 8);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(pack_below);
HWY_EXPORT(pack_below_blocks);

void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                std::uint8_t* bits) {
    HWY_DYNAMIC_DISPATCH(pack_below)(grey, width, threshold, bits);
}

void pack_below_blocks(const std::uint8_t* grey, std::size_t width, const std::uint8_t* thresholds,
                       std::uint8_t* bits) {
    HWY_DYNAMIC_DISPATCH(pack_below_blocks)(grey, width, thresholds, bits);
}

}  // namespace simd
#endif  // HWY_ONCE

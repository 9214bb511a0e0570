// Vector forms of cell_sums.h.
#include "simd/pixels/cell_sums.h"

#include "simd/pixels/plain/cell_sums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/cell_sums_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

// Four cells to a block: the sums of their halves stand in the 16-bit lanes of its two halves.
void add_sixteens(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    constexpr hn::Repartition<std::uint64_t, U8> kU64;
    constexpr hn::Half<U16> kHalf16;
    const std::size_t step = hn::Lanes(kHalf16);
    std::size_t i = 0;
    for (; i + step <= cells; i += step) {
        const auto cell = [&](std::size_t j) HWY_ATTR {
            return hn::SumsOf8(load_blocks_apart(kU8, row + 16 * (i + j), 4 * 16));
        };
        const auto four = hn::Or(hn::Or(cell(0), hn::ShiftLeft<16>(cell(1))),
                                 hn::Or(hn::ShiftLeft<32>(cell(2)), hn::ShiftLeft<48>(cell(3))));
        const auto both = hn::Add(four, hn::Shuffle01(four));
        const auto packed = hn::LowerHalf(hn::Half<hn::Repartition<std::uint64_t, U8>>(),
                                          hn::ConcatEven(kU64, both, both));
        const auto added = hn::Add(hn::LoadU(kHalf16, sums + i), hn::BitCast(kHalf16, packed));
        hn::StoreU(added, kHalf16, sums + i);
    }
    plain::add_sixteens(row + 16 * i, cells - i, sums + i);
}

void add_pairs(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    const std::size_t lanes = hn::Lanes(kU16);
    std::size_t i = 0;
    for (; i + lanes <= cells; i += lanes) {
        const VecU8 pixels = hn::LoadU(kU8, row + 2 * i);
        const VecU16 pairs = hn::Add(even_bytes(pixels), odd_bytes(pixels));
        hn::StoreU(hn::Add(hn::LoadU(kU16, sums + i), pairs), kU16, sums + i);
    }
    plain::add_pairs(row + 2 * i, cells - i, sums + i);
}

void absolute_differences(const std::uint16_t* a, const std::uint16_t* b, std::size_t count,
                          std::uint16_t* out) {
    const std::size_t lanes = hn::Lanes(kU16);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const VecU16 first = hn::LoadU(kU16, a + i);
        const VecU16 second = hn::LoadU(kU16, b + i);
        hn::StoreU(hn::Sub(hn::Max(first, second), hn::Min(first, second)), kU16, out + i);
    }
    plain::absolute_differences(a + i, b + i, count - i, out + i);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(add_sixteens);
HWY_EXPORT(add_pairs);
HWY_EXPORT(absolute_differences);

void add_sixteens(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(add_sixteens)(row, cells, sums);
}

void add_pairs(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(add_pairs)(row, cells, sums);
}

void absolute_differences(const std::uint16_t* a, const std::uint16_t* b, std::size_t count,
                          std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(absolute_differences)(a, b, count, out);
}

}  // namespace simd
#endif  // HWY_ONCE

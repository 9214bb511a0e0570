// Vector forms of bit_windows.h. The words are taken in an order in which those that are read have
// not been changed yet: upwards for pixels that follow, downwards for pixels that precede.
#include "simd/bits/bit_windows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/bit_windows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U64 = hn::CappedTag<std::uint64_t, kWindowWords>;

bool swap_word_bytes(std::uint64_t* words, std::size_t count) {
    const U64 d;
    const hn::Repartition<std::uint8_t, U64> d8;
    alignas(16) static constexpr std::uint8_t kReversed[16] = {7,  6,  5,  4,  3,  2,  1, 0,
                                                               15, 14, 13, 12, 11, 10, 9, 8};
    const auto reversed = hn::LoadDup128(d8, kReversed);
    auto any = hn::Zero(d);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto bytes = hn::BitCast(d8, hn::LoadU(d, words + i));
        const auto swapped = hn::BitCast(d, hn::TableLookupBytes(bytes, reversed));
        hn::StoreU(swapped, d, words + i);
        any = hn::Or(any, swapped);
    }
    return !hn::AllTrue(d, hn::Eq(any, hn::Zero(d)));
}

// Combines every vector with what load_moved(its address) gives.
template <bool kAnd, bool kFollowing, class LoadMoved>
HWY_INLINE bool combine_moved(std::uint64_t* words, std::size_t count, LoadMoved load_moved) {
    const U64 d;
    const std::size_t lanes = hn::Lanes(d);
    auto any = hn::Zero(d);
    for (std::size_t done = 0; done < count; done += lanes) {
        std::uint64_t* const at = words + (kFollowing ? done : count - lanes - done);
        const auto own = hn::LoadU(d, at);
        const auto moved = load_moved(at);
        const auto combined = kAnd ? hn::And(own, moved) : hn::Or(own, moved);
        hn::StoreU(combined, d, at);
        any = hn::Or(any, combined);
    }
    return !hn::AllTrue(d, hn::Eq(any, hn::Zero(d)));
}

template <bool kAnd, bool kFollowing>
bool combine_with_moved(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    const U64 d;
    const auto words_apart = static_cast<std::ptrdiff_t>(pixels / 64);
    const std::ptrdiff_t near = kFollowing ? words_apart : -words_apart;
    const std::ptrdiff_t far = kFollowing ? near + 1 : near - 1;
    const int rest = static_cast<int>(pixels % 64);
    if (rest == 0) {
        return combine_moved<kAnd, kFollowing>(words, count, [=](const std::uint64_t* at) HWY_ATTR {
            return hn::LoadU(d, at + near);
        });
    }
    return combine_moved<kAnd, kFollowing>(words, count, [=](const std::uint64_t* at) HWY_ATTR {
        const auto a = hn::LoadU(d, at + near);
        const auto b = hn::LoadU(d, at + far);
        return kFollowing ? hn::Or(hn::ShiftLeftSame(a, rest), hn::ShiftRightSame(b, 64 - rest))
                          : hn::Or(hn::ShiftRightSame(a, rest), hn::ShiftLeftSame(b, 64 - rest));
    });
}

bool and_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved<true, true>(words, count, pixels);
}
bool and_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved<true, false>(words, count, pixels);
}
bool or_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved<false, true>(words, count, pixels);
}
bool or_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved<false, false>(words, count, pixels);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(swap_word_bytes);
HWY_EXPORT(and_following);
HWY_EXPORT(and_preceding);
HWY_EXPORT(or_following);
HWY_EXPORT(or_preceding);

bool swap_word_bytes(std::uint64_t* words, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(swap_word_bytes)(words, count);
}
bool and_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return HWY_DYNAMIC_DISPATCH(and_following)(words, count, pixels);
}
bool and_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return HWY_DYNAMIC_DISPATCH(and_preceding)(words, count, pixels);
}
bool or_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return HWY_DYNAMIC_DISPATCH(or_following)(words, count, pixels);
}
bool or_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return HWY_DYNAMIC_DISPATCH(or_preceding)(words, count, pixels);
}

}  // namespace simd
#endif  // HWY_ONCE

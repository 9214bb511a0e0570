// Vector form of shift_bits.h. Eights of pixels are moved by where the copy starts; for the other 1
// to 7, each byte is joined with its neighbour. The last vector of a row overlaps the one before
// it, so as not to run beyond the end.
#include "simd/bits/shift_bits.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/shift_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// dst[i] = src[i] << left | src[i + 1] >> (8 - left) for i < count, with left 1 .. 7. Reads src[0]
// .. src[count].
void join_neighbours(const std::uint8_t* src, std::size_t count, unsigned left, std::uint8_t* dst) {
    const hn::ScalableTag<std::uint8_t> d;
    const hn::Repartition<std::uint16_t, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d);
    const int left_count = static_cast<int>(left);
    const int right_count = 8 - left_count;
    std::size_t i = 0;
    if (count >= lanes) {
        // There is no shift of bytes: pairs are shifted, and the mask drops what crossed over.
        const auto from_right = hn::Set(d, static_cast<std::uint8_t>(0xFF >> right_count));
        const auto join_at = [&](std::size_t at) HWY_ATTR {
            const auto here = hn::BitCast(d16, hn::LoadU(d, src + at));
            const auto next = hn::BitCast(d16, hn::LoadU(d, src + at + 1));
            const auto high = hn::BitCast(d, hn::ShiftLeftSame(here, left_count));
            const auto low = hn::BitCast(d, hn::ShiftRightSame(next, right_count));
            hn::StoreU(hn::OrAnd(hn::AndNot(from_right, high), from_right, low), d, dst + at);
        };
        for (; i + lanes <= count; i += lanes) join_at(i);
        if (i < count) join_at(count - lanes);
        return;
    }
    for (; i < count; ++i) {
        dst[i] = static_cast<std::uint8_t>(src[i] << left_count | src[i + 1] >> right_count);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(join_neighbours);

namespace {

void clear(std::uint8_t* dst, std::size_t bytes) {
    if (bytes != 0) std::memset(dst, 0, bytes);
}

// Copies what fits and clears the rest of dst.
void copy(const std::uint8_t* src, std::size_t src_bytes, std::uint8_t* dst,
          std::size_t dst_bytes) {
    const std::size_t both = std::min(src_bytes, dst_bytes);
    if (both != 0) std::memcpy(dst, src, both);
    clear(dst + both, dst_bytes - both);
}

}  // namespace

void shift_right(const std::uint8_t* src, std::size_t src_bytes, unsigned pixels, std::uint8_t* dst,
                 std::size_t dst_bytes) {
    const std::size_t blank = std::min<std::size_t>(pixels / 8, dst_bytes);
    clear(dst, blank);
    dst += blank;
    dst_bytes -= blank;
    const unsigned rest = pixels % 8;
    if (dst_bytes == 0 || src_bytes == 0 || rest == 0) {
        copy(src, src_bytes, dst, dst_bytes);
        return;
    }
    dst[0] = static_cast<std::uint8_t>(src[0] >> rest);
    const std::size_t joined = std::min(src_bytes, dst_bytes) - 1;
    HWY_DYNAMIC_DISPATCH(join_neighbours)(src, joined, 8 - rest, dst + 1);
    if (dst_bytes > src_bytes) {
        dst[src_bytes] = static_cast<std::uint8_t>(src[src_bytes - 1] << (8 - rest));
        clear(dst + src_bytes + 1, dst_bytes - src_bytes - 1);
    }
}

}  // namespace simd
#endif  // HWY_ONCE

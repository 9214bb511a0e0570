// Vector form of colour_changes.h. A row XOR itself moved left by a pixel has a 1 where the colour
// changes along the row; a row XOR the row below has one where it changes along the column. The
// ones are counted in each byte. All rows of a block of columns are done before the next block, so
// that its sums stay in registers.
#include "simd/bits/colour_changes.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/colour_changes_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U8 = hn::ScalableTag<std::uint8_t>;
using VecU8 = hn::Vec<U8>;

// The bits of every byte moved left by one, without a shift: there is none for bytes.
HWY_INLINE VecU8 doubled(VecU8 bytes) {
    return hn::Add(bytes, bytes);
}
HWY_INLINE VecU8 first_pixel(VecU8 bytes) {
    const U8 d;
    const hn::Repartition<std::uint16_t, U8> d16;
    const auto moved = hn::BitCast(d, hn::ShiftRight<7>(hn::BitCast(d16, bytes)));
    return hn::And(moved, hn::Set(d, 1));
}

// Counts one block of columns. load(y, moved) gives its bytes in row y, or those `moved` bytes
// further to the right. `pixels` has ones for what is in the page, `pairs` for pixels that have a
// right neighbour there.
template <class Load>
HWY_INLINE void count_block(int row_count, bool row_below, VecU8 pixels, VecU8 pairs, Load load,
                            const ChangeCounts& to, std::size_t at) {
    const U8 d;
    auto across = hn::Zero(d);
    auto down = hn::Zero(d);
    auto left = hn::Zero(d);
    VecU8 row = load(0, 0);
    for (int y = 0; y < row_count; ++y) {
        const auto moved = hn::Or(doubled(row), first_pixel(load(y, 1)));
        across = hn::Add(across, hn::PopulationCount(hn::And(hn::Xor(row, moved), pairs)));
        if (y == 0) hn::StoreU(across, d, to.across_first + at);
        if (y + 1 == row_count && !row_below) break;
        const auto below = load(y + 1, 0);
        const auto changed = hn::And(hn::Xor(row, below), pixels);
        down = hn::Add(down, hn::PopulationCount(changed));
        left = hn::Add(left, first_pixel(changed));
        row = below;
    }
    hn::StoreU(across, d, to.across + at);
    hn::StoreU(down, d, to.down + at);
    hn::StoreU(left, d, to.down_left + at);
}

// Counts the last columns, which do not fill a block and the byte to its right, by way of copies.
void count_tail(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                std::size_t bytes, int last_pixels, const ChangeCounts& to, std::size_t at) {
    const U8 d;
    constexpr std::size_t kMost = HWY_MAX_BYTES;
    std::uint8_t lines[kMaxChangeRows + 1][kMost + 1] = {};
    std::uint8_t pixels[kMost] = {};
    std::uint8_t pairs[kMost] = {};
    std::memset(pixels, 0xFF, bytes);
    std::memset(pairs, 0xFF, bytes);
    pixels[bytes - 1] = static_cast<std::uint8_t>(0xFF00 >> last_pixels);
    pairs[bytes - 1] = static_cast<std::uint8_t>(0xFF00 >> (last_pixels - 1));
    const int read_rows = row_count + (row_below ? 1 : 0);
    for (int y = 0; y < read_rows; ++y) std::memcpy(lines[y], rows + y * stride, bytes);
    std::uint8_t results[4][kMost];
    const ChangeCounts block{results[0], results[1], results[2], results[3]};
    count_block(
        row_count, row_below, hn::LoadU(d, pixels), hn::LoadU(d, pairs),
        [&](int y, int moved) HWY_ATTR { return hn::LoadU(d, lines[y] + moved); }, block, 0);
    std::memcpy(to.across + at, block.across, bytes);
    std::memcpy(to.across_first + at, block.across_first, bytes);
    std::memcpy(to.down + at, block.down, bytes);
    std::memcpy(to.down_left + at, block.down_left, bytes);
}

void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                   std::int32_t width, const ChangeCounts& counts) {
    const U8 d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t bytes = (static_cast<std::size_t>(width) + 7) / 8;
    const auto all = hn::Set(d, 0xFF);
    std::size_t at = 0;
    for (; at + lanes < bytes; at += lanes) {
        count_block(
            row_count, row_below, all, all,
            [&](int y, int moved) HWY_ATTR { return hn::LoadU(d, rows + y * stride + at + moved); },
            counts, at);
    }
    count_tail(rows + at, stride, row_count, row_below, bytes - at, (width - 1) % 8 + 1, counts,
               at);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(count_changes);

void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                   std::int32_t width, const ChangeCounts& counts) {
    HWY_DYNAMIC_DISPATCH(count_changes)(rows, stride, row_count, row_below, width, counts);
}

}  // namespace simd
#endif  // HWY_ONCE

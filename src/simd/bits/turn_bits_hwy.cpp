// Turns of bitonal images, 64 x 64 bits at a time.
//
// Exchange of rows and columns: a block of 64 rows of 64 bits is exchanged by swapping ever smaller
// squares across its diagonal: 32 x 32 bits, 16 x 16, down to single bits (Warren, Hacker's
// Delight, 7-3). A vector holds the words of one row in several neighbouring blocks, so no step
// ever moves anything between lanes. The six sizes are done in two passes of three over eight
// registers each. Tiles of 512 rows are collected before they are written, so that the destination
// is written in padded_bytes cache lines; tiles at the right and lower edge are padded with zeros
// in a copy.
//
// Half turn: rows from last to first, each shifted right until its last pixel is the last bit of a
// byte, then reversed bytewise and bitwise, all in one pass.
#include "simd/bits/turn_bits.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/turn_bits_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using U64 = hn::CappedTag<std::uint64_t, 8>;
using VecU64 = hn::Vec<U64>;

constexpr std::size_t kLanes = hn::MaxLanes(U64());  // blocks side by side
constexpr std::size_t kVectorBytes = kLanes * 8;
constexpr std::size_t kStripRows = 64;
constexpr std::size_t kStrips = 8;  // of a tile: their words make up a cache line

// Exchanges the high half of every group of 2 * kBits bits of `upper` with the low half of `lower`.
template <int kBits>
HWY_INLINE void swap_halves(std::uint64_t low_halves, VecU64& upper, VecU64& lower) {
    const auto low = hn::Set(U64(), low_halves);
    const auto changed = hn::And(hn::Xor(hn::ShiftRight<kBits>(upper), lower), low);
    lower = hn::Xor(lower, changed);
    upper = hn::Xor(upper, hn::ShiftLeft<kBits>(changed));
}

// The columns of a byte run from its high bit to its low one, the bytes of a word from low to high:
// bytes and larger squares are swapped towards the high end, parts of bytes towards the low end.
HWY_INLINE void swap_squares_of_bytes(VecU64 (&v)[8]) {
    for (std::size_t i = 0; i < 4; ++i) swap_halves<32>(0x00000000FFFFFFFF, v[i], v[i + 4]);
    for (const std::size_t i : {0U, 1U, 4U, 5U})
        swap_halves<16>(0x0000FFFF0000FFFF, v[i], v[i + 2]);
    for (const std::size_t i : {0U, 2U, 4U, 6U}) swap_halves<8>(0x00FF00FF00FF00FF, v[i], v[i + 1]);
}

HWY_INLINE void swap_squares_of_bits(VecU64 (&v)[8]) {
    for (std::size_t i = 0; i < 4; ++i) swap_halves<4>(0x0F0F0F0F0F0F0F0F, v[i + 4], v[i]);
    for (const std::size_t i : {0U, 1U, 4U, 5U}) swap_halves<2>(0x3333333333333333, v[i + 2], v[i]);
    for (const std::size_t i : {0U, 2U, 4U, 6U}) swap_halves<1>(0x5555555555555555, v[i + 1], v[i]);
}

// Column i of every block of a strip goes to turned[i * kStrips * kLanes + block].
HWY_INLINE void turn_strip(const std::uint8_t* src, std::ptrdiff_t stride, std::uint64_t* turned) {
    const U64 d;
    const hn::Repartition<std::uint8_t, U64> d8;
    HWY_ALIGN std::uint64_t between[kStripRows * kLanes];
    VecU64 v[8];
    for (std::size_t first = 0; first < 8; ++first) {
        for (std::size_t i = 0; i < 8; ++i) {
            const auto row = static_cast<std::ptrdiff_t>(first + 8 * i);
            v[i] = hn::BitCast(d, hn::LoadU(d8, src + row * stride));
        }
        swap_squares_of_bytes(v);
        for (std::size_t i = 0; i < 8; ++i) {
            hn::Store(v[i], d, between + (first + 8 * i) * kLanes);
        }
    }
    for (std::size_t first = 0; first < kStripRows; first += 8) {
        for (std::size_t i = 0; i < 8; ++i) v[i] = hn::Load(d, between + (first + i) * kLanes);
        swap_squares_of_bits(v);
        for (std::size_t i = 0; i < 8; ++i) {
            hn::Store(v[i], d, turned + (first + i) * kStrips * kLanes);
        }
    }
}

void transpose_bits(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                    std::size_t columns, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    HWY_ALIGN std::uint64_t turned[kStripRows * kStrips * kLanes];
    HWY_ALIGN std::uint8_t padded[kStripRows * kVectorBytes];
    const std::size_t row_bytes = (columns + 7) / 8;
    const std::size_t dst_bytes = (rows + 31) / 32 * 4;
    for (std::size_t y = 0; y < rows; y += kStripRows * kStrips) {
        const std::size_t out_bytes = std::min(kStrips * 8, dst_bytes - y / 8);
        for (std::size_t x_byte = 0; x_byte < row_bytes; x_byte += kVectorBytes) {
            const std::size_t in_bytes = std::min(kVectorBytes, row_bytes - x_byte);
            for (std::size_t strip = 0; strip * 8 < out_bytes; ++strip) {
                const std::size_t top = y + strip * kStripRows;
                const std::uint8_t* from =
                    src + static_cast<std::ptrdiff_t>(top) * src_stride + x_byte;
                const std::size_t in_rows = std::min(kStripRows, rows - top);
                std::ptrdiff_t from_stride = src_stride;
                if (in_rows < kStripRows || in_bytes < kVectorBytes) {
                    std::memset(padded, 0, sizeof(padded));
                    for (std::size_t i = 0; i < in_rows; ++i) {
                        std::memcpy(padded + i * kVectorBytes,
                                    from + static_cast<std::ptrdiff_t>(i) * src_stride, in_bytes);
                    }
                    from = padded;
                    from_stride = kVectorBytes;
                }
                turn_strip(from, from_stride, turned + strip * kLanes);
            }
            const std::size_t out_rows = std::min(kVectorBytes * 8, columns - x_byte * 8);
            for (std::size_t i = 0; i < std::min(out_rows, kStripRows); ++i) {
                for (std::size_t block = 0; block * 64 + i < out_rows; ++block) {
                    std::uint64_t line[kStrips];
                    for (std::size_t strip = 0; strip < kStrips; ++strip) {
                        line[strip] = turned[(i * kStrips + strip) * kLanes + block];
                    }
                    const auto x = static_cast<std::ptrdiff_t>(x_byte * 8 + block * 64 + i);
                    std::uint8_t* to = dst + x * dst_stride + y / 8;
                    if (out_bytes == sizeof(line)) {
                        std::memcpy(to, line, sizeof(line));
                    } else {
                        std::memcpy(to, line, out_bytes);
                    }
                }
            }
        }
    }
}

using U8 = hn::CappedTag<std::uint8_t, 64>;
using VecU8 = hn::Vec<U8>;
constexpr std::size_t kByteLanes = hn::MaxLanes(U8());

// U8 from last to first, and the bits of each.
HWY_INLINE VecU8 reversed_bits(VecU8 v) {
    const U8 d;
    const hn::Repartition<std::uint16_t, U8> d16;
    alignas(16) static constexpr std::uint8_t kBackwards[16] = {15, 14, 13, 12, 11, 10, 9, 8,
                                                                7,  6,  5,  4,  3,  2,  1, 0};
    alignas(16) static constexpr std::uint8_t kLowNibble[16] = {0x00, 0x80, 0x40, 0xC0, 0x20, 0xA0,
                                                                0x60, 0xE0, 0x10, 0x90, 0x50, 0xD0,
                                                                0x30, 0xB0, 0x70, 0xF0};
    alignas(16) static constexpr std::uint8_t kHighNibble[16] = {0x00, 0x08, 0x04, 0x0C, 0x02, 0x0A,
                                                                 0x06, 0x0E, 0x01, 0x09, 0x05, 0x0D,
                                                                 0x03, 0x0B, 0x07, 0x0F};
    v = hn::ReverseBlocks(d, hn::TableLookupBytes(v, hn::LoadDup128(d, kBackwards)));
    const auto nibble = hn::Set(d, std::uint8_t{0x0F});
    const auto high = hn::BitCast(d, hn::ShiftRight<4>(hn::BitCast(d16, v)));
    return hn::Or(hn::TableLookupBytes(hn::LoadDup128(d, kLowNibble), hn::And(v, nibble)),
                  hn::TableLookupBytes(hn::LoadDup128(d, kHighNibble), hn::And(high, nibble)));
}

void half_turn_bits(const std::uint8_t* src, std::size_t rows, std::size_t columns,
                    std::size_t stride, std::uint8_t* dst) {
    const U8 d;
    const hn::Repartition<std::uint16_t, U8> d16;
    const std::size_t row_bytes = (columns + 7) / 8;
    const int shift = static_cast<int>(row_bytes * 8 - columns);
    const std::size_t body = (row_bytes - 1) / kByteLanes * kByteLanes;
    const std::size_t tail = row_bytes - body;  // 1 .. kByteLanes
    const std::size_t padded_bytes = body + kByteLanes;
    HWY_ALIGN std::uint8_t tail_bits[kByteLanes] = {};
    std::memset(tail_bits, 0xFF, tail - 1);
    tail_bits[tail - 1] = static_cast<std::uint8_t>(0xFF << shift);
    const auto tail_mask = hn::Load(d, tail_bits);
    const auto here_mask = hn::Set(d, static_cast<std::uint8_t>(0xFF >> shift));

    // The vector of shifted source bytes that starts at `at`, reversed.
    const auto turned = [&](const std::uint8_t* at) HWY_ATTR {
        const auto here = hn::BitCast(d16, hn::LoadU(d, at));
        const auto before = hn::BitCast(d16, hn::LoadU(d, at - 1));
        const auto low = hn::BitCast(d, hn::ShiftRightSame(here, shift));
        const auto high = hn::BitCast(d, hn::ShiftLeftSame(before, 8 - shift));
        return reversed_bits(hn::OrAnd(hn::AndNot(here_mask, high), here_mask, low));
    };

    for (std::size_t y = rows; y-- > 0; dst += stride) {
        const std::uint8_t* row = src + y * stride;
        // The last vector of a row reads into the row before and writes into the row behind, which
        // is written next. The rows at the edge of the image have none.
        const bool spare = y * stride > kByteLanes && (y + 1) * stride >= padded_bytes;
        std::size_t done = 0;
        for (; done < body; done += kByteLanes) {
            hn::StoreU(turned(row + (row_bytes - kByteLanes - done)), d, dst + done);
        }
        if (spare) {
            const auto last = turned(row - (padded_bytes - row_bytes));
            hn::StoreU(hn::And(last, tail_mask), d, dst + body);
            if (padded_bytes < stride) std::memset(dst + padded_bytes, 0, stride - padded_bytes);
            continue;
        }
        HWY_ALIGN std::uint8_t edge[kByteLanes + 1] = {};
        std::memcpy(edge + kByteLanes + 1 - tail, row, tail);
        HWY_ALIGN std::uint8_t out[kByteLanes];
        hn::Store(turned(edge + 1), d, out);
        std::memcpy(dst + body, out, tail);
        if (row_bytes < stride) std::memset(dst + row_bytes, 0, stride - row_bytes);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(transpose_bits);
HWY_EXPORT(half_turn_bits);

void transpose_bits(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                    std::size_t columns, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    HWY_DYNAMIC_DISPATCH(transpose_bits)(src, src_stride, rows, columns, dst, dst_stride);
}

void half_turn_bits(const std::uint8_t* src, std::size_t rows, std::size_t columns,
                    std::size_t stride, std::uint8_t* dst) {
    HWY_DYNAMIC_DISPATCH(half_turn_bits)(src, rows, columns, stride, dst);
}

}  // namespace simd
#endif  // HWY_ONCE

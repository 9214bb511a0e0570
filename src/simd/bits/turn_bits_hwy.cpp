// Turns of bitonal images, 64 x 64 bits at a time.
//
// Exchange of rows and columns: a block of 64 rows of 64 bits is exchanged by swapping ever smaller
// squares across its diagonal: 32 x 32 bits, 16 x 16, down to single bits (Warren, Hacker's
// Delight, 7-3). A vector holds the words of one row in several neighbouring blocks, so no step
// ever moves anything between lanes. The six sizes are done in two passes of three over eight
// registers each. Tiles of 512 rows are collected before they are written, so that the destination
// is written in full cache lines; tiles at the right and lower edge are padded with zeros in a
// copy.
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

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using U64 = hn::CappedTag<std::uint64_t, 8>;
using VecU64 = hn::Vec<U64>;

constexpr std::size_t kLanes = hn::MaxLanes(U64());  // blocks side by side
constexpr std::size_t kVectorBytes = kLanes * 8;
constexpr std::size_t kStripRows = 64;
constexpr std::size_t kStrips = 8;  // of a tile: their words make up a cache line

// The columns of a byte run from its high bit to its low one, the bytes of a word from low to high:
// bytes and larger squares are swapped towards the high end, parts of bytes towards the low end.
HWY_INLINE void swap_squares_of_bytes(VecU64 (&v)[8]) {
    for (std::size_t i = 0; i < 4; ++i) exchange_bits<32>(v[i], v[i + 4], 0x00000000FFFFFFFF);
    for (const std::size_t i : {0U, 1U, 4U, 5U})
        exchange_bits<16>(v[i], v[i + 2], 0x0000FFFF0000FFFF);
    for (const std::size_t i : {0U, 2U, 4U, 6U})
        exchange_bits<8>(v[i], v[i + 1], 0x00FF00FF00FF00FF);
}

HWY_INLINE void swap_squares_of_bits(VecU64 (&v)[8]) {
    for (std::size_t i = 0; i < 4; ++i) exchange_bits<4>(v[i + 4], v[i], 0x0F0F0F0F0F0F0F0F);
    for (const std::size_t i : {0U, 1U, 4U, 5U})
        exchange_bits<2>(v[i + 2], v[i], 0x3333333333333333);
    for (const std::size_t i : {0U, 2U, 4U, 6U})
        exchange_bits<1>(v[i + 1], v[i], 0x5555555555555555);
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

// The part of the image that is exchanged at once: kStrips strips of 64 rows, a vector wide.
struct Tile {
    const std::uint8_t* from;
    std::ptrdiff_t from_stride;
    std::size_t rows;      // of the source that are left, at least 1
    std::size_t in_bytes;  // of them that are left, 1 .. kVectorBytes
    std::uint8_t* to;
    std::ptrdiff_t to_stride;
    std::size_t out_rows;   // 1 .. 8 * kVectorBytes
    std::size_t out_bytes;  // of them, 1 .. 8 * kStrips
};

// Turns a strip that the image does not fill, by way of a copy with zeros around it.
void turn_short_strip(const std::uint8_t* from, std::ptrdiff_t stride, std::size_t rows,
                      std::size_t bytes, std::uint64_t* turned) {
    HWY_ALIGN std::uint8_t padded[kStripRows * kVectorBytes] = {};
    for (std::size_t i = 0; i < rows; ++i) {
        std::memcpy(padded + i * kVectorBytes, from + static_cast<std::ptrdiff_t>(i) * stride,
                    bytes);
    }
    turn_strip(padded, kVectorBytes, turned);
}

HWY_INLINE void turn_strips(const Tile& tile, std::uint64_t* turned) {
    for (std::size_t strip = 0; strip * 8 < tile.out_bytes; ++strip, turned += kLanes) {
        const std::size_t top = strip * kStripRows;
        const std::uint8_t* const from =
            tile.from + static_cast<std::ptrdiff_t>(top) * tile.from_stride;
        const std::size_t rows = std::min(kStripRows, tile.rows - top);
        if (rows == kStripRows && tile.in_bytes == kVectorBytes) {
            turn_strip(from, tile.from_stride, turned);
        } else {
            turn_short_strip(from, tile.from_stride, rows, tile.in_bytes, turned);
        }
    }
}

// Column i of every block becomes a row of the destination: its words in the strips, side by side.
HWY_INLINE void write_rows(const Tile& tile, const std::uint64_t* turned) {
    for (std::size_t i = 0; i < std::min(tile.out_rows, kStripRows); ++i) {
        for (std::size_t block = 0; block * 64 + i < tile.out_rows; ++block) {
            std::uint64_t line[kStrips];
            for (std::size_t strip = 0; strip < kStrips; ++strip) {
                line[strip] = turned[(i * kStrips + strip) * kLanes + block];
            }
            std::uint8_t* const to =
                tile.to + static_cast<std::ptrdiff_t>(block * 64 + i) * tile.to_stride;
            if (tile.out_bytes == sizeof(line)) {
                std::memcpy(to, line, sizeof(line));
            } else {
                std::memcpy(to, line, tile.out_bytes);
            }
        }
    }
}

void transpose_bits(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                    std::size_t columns, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    HWY_ALIGN std::uint64_t turned[kStripRows * kStrips * kLanes];
    const std::size_t row_bytes = (columns + 7) / 8;
    const std::size_t dst_bytes = (rows + 31) / 32 * 4;
    for (std::size_t y = 0; y < rows; y += kStripRows * kStrips) {
        for (std::size_t byte = 0; byte < row_bytes; byte += kVectorBytes) {
            const Tile tile{src + static_cast<std::ptrdiff_t>(y) * src_stride + byte,
                            src_stride,
                            rows - y,
                            std::min(kVectorBytes, row_bytes - byte),
                            dst + static_cast<std::ptrdiff_t>(8 * byte) * dst_stride + y / 8,
                            dst_stride,
                            std::min(8 * kVectorBytes, columns - 8 * byte),
                            std::min(8 * kStrips, dst_bytes - y / 8)};
            turn_strips(tile, turned);
            write_rows(tile, turned);
        }
    }
}

constexpr std::size_t kByteLanes = hn::MaxLanes(U8());

// The bits of a vector from last to first: the order of its bytes and of the bits in each.
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

// A row of pixels from last to first, a vector at a time: its bits are moved to the right until the
// last pixel is the last bit of a byte, and reversed.
class RowReversal {
  public:
    HWY_INLINE explicit RowReversal(std::size_t columns)
        : shift_(static_cast<int>(-columns % 8)),
          from_here_(hn::Set(U8(), static_cast<std::uint8_t>(0xFF >> shift_))) {}

    // The vector that starts at `at`. Reads one byte before it, too.
    HWY_INLINE VecU8 operator()(const std::uint8_t* at) const {
        const U8 d;
        const hn::Repartition<std::uint16_t, U8> d16;
        const auto here = hn::BitCast(d16, hn::LoadU(d, at));
        const auto before = hn::BitCast(d16, hn::LoadU(d, at - 1));
        const auto low = hn::BitCast(d, hn::ShiftRightSame(here, shift_));
        const auto high = hn::BitCast(d, hn::ShiftLeftSame(before, 8 - shift_));
        return reversed_bits(hn::OrAnd(hn::AndNot(from_here_, high), from_here_, low));
    }

  private:
    int shift_;
    VecU8 from_here_;  // the bits of a byte that do not come from the byte before
};

// All ones for the pixels of the last vector of a reversed row, `bytes` of which are of the row.
HWY_INLINE VecU8 tail_pixels(std::size_t bytes, std::size_t columns) {
    HWY_ALIGN std::uint8_t mask[kByteLanes] = {};
    std::memset(mask, 0xFF, bytes - 1);
    mask[bytes - 1] = static_cast<std::uint8_t>(0xFF << -columns % 8);
    return hn::Load(U8(), mask);
}

// The first `bytes` (1 .. kByteLanes) of a row, reversed by way of copies.
HWY_INLINE void reverse_tail(const RowReversal& reversed, const std::uint8_t* row,
                             std::size_t bytes, std::uint8_t* dst) {
    HWY_ALIGN std::uint8_t padded[kByteLanes + 1] = {};
    std::memcpy(padded + kByteLanes + 1 - bytes, row, bytes);
    HWY_ALIGN std::uint8_t out[kByteLanes];
    hn::Store(reversed(padded + 1), U8(), out);
    std::memcpy(dst, out, bytes);
}

HWY_INLINE void clear_between(std::uint8_t* row, std::size_t from, std::size_t to) {
    if (from < to) std::memset(row + from, 0, to - from);
}

// The last vector of a row reads into the row before and writes into the row behind, which is
// written next; the rows at the edge of the image have no such neighbours.
void half_turn_bits(const std::uint8_t* src, std::size_t rows, std::size_t columns,
                    std::size_t stride, std::uint8_t* dst) {
    const U8 d;
    const std::size_t row_bytes = (columns + 7) / 8;
    const std::size_t body = (row_bytes - 1) / kByteLanes * kByteLanes;
    const std::size_t tail = row_bytes - body;  // 1 .. kByteLanes
    const std::size_t vector_bytes = body + kByteLanes;
    const RowReversal reversed(columns);
    const VecU8 tail_mask = tail_pixels(tail, columns);
    for (std::size_t y = rows; y-- > 0; dst += stride) {
        const std::uint8_t* const end = src + y * stride + row_bytes;
        for (std::size_t done = 0; done < body; done += kByteLanes) {
            hn::StoreU(reversed(end - kByteLanes - done), d, dst + done);
        }
        if (y * stride > kByteLanes && (y + 1) * stride >= vector_bytes) {
            hn::StoreU(hn::And(reversed(end - vector_bytes), tail_mask), d, dst + body);
            clear_between(dst, vector_bytes, stride);
        } else {
            reverse_tail(reversed, end - row_bytes, tail, dst + body);
            clear_between(dst, row_bytes, stride);
        }
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

// Turns of images of whole bytes per pixel, in blocks of 16 bytes.
//
// Exchange of rows and columns: a 16-byte block of n pixels of 16 / n bytes, from n neighbouring
// rows, is exchanged by log2(n) rounds of interleaving. A vector holds blocks of rows n apart, so
// that a result vector is one piece of a destination row. Pixels of three bytes become four
// on the way in and packed on the way out. The image is taken in tiles whose source and
// destination lines stay in the first cache.
//
// Where an image is not a multiple of the block, the last blocks overlap the ones before them; an
// image smaller than one block is copied pixel by pixel.
#include "simd/pixels/turn_pixels.h"

#include <algorithm>
#include <cstring>

#include "simd/pixels/plain/turn_pixels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/turn_pixels_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// What does not depend on the instruction set.
#ifndef VEMOPREPRO_SIMD_TURN_PIXELS_COMMON
#define VEMOPREPRO_SIMD_TURN_PIXELS_COMMON
namespace simd {
namespace {

struct Exchange {
    const std::uint8_t* src;
    std::ptrdiff_t src_stride;
    std::size_t rows;     // of the source
    std::size_t columns;  // of the source
    std::uint8_t* dst;
    std::ptrdiff_t dst_stride;

    const std::uint8_t* from(std::size_t x, std::size_t y, std::size_t pixel_bytes) const {
        return src + static_cast<std::ptrdiff_t>(y) * src_stride + x * pixel_bytes;
    }
    std::uint8_t* to(std::size_t x, std::size_t y, std::size_t pixel_bytes) const {
        return dst + static_cast<std::ptrdiff_t>(x) * dst_stride + y * pixel_bytes;
    }
};

}  // namespace
}  // namespace simd
#endif  // VEMOPREPRO_SIMD_TURN_PIXELS_COMMON

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kBlockBytes = 16;

// D is a tag of bytes: the widest vectors, or single blocks for images that are too small for
// those.
using WideBytes = hn::CappedTag<std::uint8_t, 64>;
using BlockBytes = hn::Full128<std::uint8_t>;
template <class D>
constexpr std::size_t kBlocks = hn::MaxLanes(D()) / kBlockBytes;

// Blocks that start `step` bytes apart, the first in the lowest lanes.
template <class D>
HWY_INLINE hn::Vec<D> load_blocks(D d, const std::uint8_t* from, std::ptrdiff_t step) {
    if constexpr (hn::MaxLanes(D()) == kBlockBytes) {
        return hn::LoadU(d, from);
    } else {
        const hn::Half<D> half;
        const auto upper = static_cast<std::ptrdiff_t>(hn::MaxLanes(half) / kBlockBytes) * step;
        return hn::Combine(d, load_blocks(half, from + upper, step), load_blocks(half, from, step));
    }
}

// Exchanges rows and columns of the square of lanes T that v has in each column of blocks. A round
// is a perfect shuffle of the square's elements, and all rounds together rotate their index by
// half, which makes the row of each its column.
template <class T, class D>
HWY_INLINE void exchange_squares(D d8, hn::Vec<D> (&v)[kBlockBytes / sizeof(T)]) {
    constexpr std::size_t kSide = kBlockBytes / sizeof(T);
    const hn::Repartition<T, D> d;
    for (std::size_t round = 1; round < kSide; round *= 2) {
        hn::Vec<D> shuffled[kSide];
        for (std::size_t i = 0; i < kSide / 2; ++i) {
            const auto a = hn::BitCast(d, v[i]);
            const auto b = hn::BitCast(d, v[i + kSide / 2]);
            shuffled[2 * i] = hn::BitCast(d8, hn::InterleaveLower(d, a, b));
            shuffled[2 * i + 1] = hn::BitCast(d8, hn::InterleaveUpper(d, a, b));
        }
        for (std::size_t i = 0; i < kSide; ++i) v[i] = shuffled[i];
    }
}

// A kernel has kRows x kColumns pixels and run(exchange, x, y), which does those from (x, y) on.

template <class T, class D>
struct LanePixels {
    static constexpr std::size_t kColumns = kBlockBytes / sizeof(T);
    static constexpr std::size_t kRows = kBlocks<D> * kColumns;
    static constexpr std::size_t kPixelBytes = sizeof(T);

    static HWY_INLINE void run(const Exchange& exchange, std::size_t x, std::size_t y) {
        const D d;
        const std::uint8_t* from = exchange.from(x, y, kPixelBytes);
        const std::ptrdiff_t stride = exchange.src_stride;
        hn::Vec<D> v[kColumns];
        for (std::size_t i = 0; i < kColumns; ++i) {
            v[i] = load_blocks(d, from + static_cast<std::ptrdiff_t>(i) * stride,
                               static_cast<std::ptrdiff_t>(kColumns) * stride);
        }
        exchange_squares<T>(d, v);
        std::uint8_t* to = exchange.to(x, y, kPixelBytes);
        for (std::size_t i = 0; i < kColumns; ++i) {
            hn::StoreU(v[i], d, to + static_cast<std::ptrdiff_t>(i) * exchange.dst_stride);
        }
    }
};

// Four columns of three bytes. On the way, each pixel has four bytes, so that lanes can be
// exchanged:
//
//     16 bytes loaded     abc def ghi jkl mnop      (mnop is of the next pixels, and is dropped)
//     lanes of a pixel    abc. def. ghi. jkl.       exchange of rows and columns
//     12 bytes stored     ABC DEF GHI JKL           of each block, and the blocks side by side
template <class D>
struct ThreeBytePixels {
    static constexpr std::size_t kColumns = 4;
    static constexpr std::size_t kRows = kBlocks<D> * kColumns;
    static constexpr std::size_t kPixelBytes = 3;
    static constexpr std::size_t kOutBytes = kRows * kPixelBytes;

    // How the 16 bytes of a load become four lanes of a pixel and an empty byte. At the right edge
    // of the image the load is moved to the left, so that the pixels are its last bytes.
    struct Load {
        std::ptrdiff_t offset;
        hn::Vec<D> to_lanes;

        HWY_INLINE explicit Load(bool at_edge) {
            alignas(16) static constexpr std::uint8_t kFirst12[16] = {
                0, 1, 2, 0x80, 3, 4, 5, 0x80, 6, 7, 8, 0x80, 9, 10, 11, 0x80};
            alignas(16) static constexpr std::uint8_t kLast12[16] = {
                4, 5, 6, 0x80, 7, 8, 9, 0x80, 10, 11, 12, 0x80, 13, 14, 15, 0x80};
            offset = at_edge ? -4 : 0;
            to_lanes = hn::LoadDup128(D(), at_edge ? kLast12 : kFirst12);
        }
    };

    // The first three bytes of every lane of a block, without the empty ones between them.
    static HWY_INLINE hn::Vec<D> without_gaps(hn::Vec<D> v) {
        alignas(16) static constexpr std::uint8_t kPack[16] = {
            0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
        return hn::TableLookupBytes(v, hn::LoadDup128(D(), kPack));
    }

    // The first three lanes of every block side by side; the fourth ones go to the end.
    static HWY_INLINE hn::Vec<D> blocks_joined(hn::Vec<D> v) {
        if constexpr (kBlocks<D> == 1) {
            return v;
        } else {
            const hn::Repartition<std::uint32_t, D> d32;
            alignas(64) static constexpr std::uint32_t kFour[16] = {0,  1,  2,  4,  5, 6, 8,  9,
                                                                    10, 12, 13, 14, 3, 7, 11, 15};
            alignas(64) static constexpr std::uint32_t kTwo[8] = {0, 1, 2, 4, 5, 6, 3, 7};
            const auto join = hn::SetTableIndices(d32, kBlocks<D> == 4 ? kFour : kTwo);
            return hn::BitCast(D(), hn::TableLookupLanes(hn::BitCast(d32, v), join));
        }
    }

    // What a store writes too much is overwritten by the next one of the same row; the last one of
    // a row writes no byte too much.
    static HWY_INLINE void store(hn::Vec<D> v, bool last, std::uint8_t* to) {
        if (!last) {
            hn::StoreU(v, D(), to);
            return;
        }
        HWY_ALIGN std::uint8_t exact[hn::MaxLanes(D())];
        hn::Store(v, D(), exact);
        std::memcpy(to, exact, kOutBytes);
    }

    static HWY_INLINE void run(const Exchange& exchange, std::size_t x, std::size_t y) {
        const D d;
        const Load load((exchange.columns - x) * kPixelBytes < kBlockBytes);
        const std::uint8_t* from = exchange.from(x, y, kPixelBytes) + load.offset;
        const std::ptrdiff_t stride = exchange.src_stride;
        hn::Vec<D> v[kColumns];
        for (std::size_t i = 0; i < kColumns; ++i) {
            const auto blocks = load_blocks(d, from + static_cast<std::ptrdiff_t>(i) * stride,
                                            static_cast<std::ptrdiff_t>(kColumns) * stride);
            v[i] = hn::TableLookupBytes(blocks, load.to_lanes);
        }
        exchange_squares<std::uint32_t>(d, v);
        std::uint8_t* to = exchange.to(x, y, kPixelBytes);
        const bool last = (exchange.rows - y) * kPixelBytes < hn::MaxLanes(d);
        for (std::size_t i = 0; i < kColumns; ++i) {
            store(blocks_joined(without_gaps(v[i])), last,
                  to + static_cast<std::ptrdiff_t>(i) * exchange.dst_stride);
        }
    }
};

template <class Kernel>
HWY_INLINE void run_tiles(const Exchange& exchange, std::size_t tile_rows,
                          std::size_t tile_columns) {
    const std::size_t last_y = exchange.rows - Kernel::kRows;
    const std::size_t last_x = exchange.columns - Kernel::kColumns;
    for (std::size_t top = 0; top < exchange.rows; top += tile_rows) {
        const std::size_t bottom = std::min(exchange.rows, top + tile_rows);
        for (std::size_t left = 0; left < exchange.columns; left += tile_columns) {
            const std::size_t right = std::min(exchange.columns, left + tile_columns);
            for (std::size_t y = top; y < bottom; y += Kernel::kRows) {
                for (std::size_t x = left; x < right; x += Kernel::kColumns) {
                    Kernel::run(exchange, std::min(x, last_x), std::min(y, last_y));
                }
            }
        }
    }
}

// Source rows and columns of a tile.
constexpr std::size_t kTileRows = 256;
constexpr std::size_t kTileColumns = 128;

template <class Kernel>
HWY_INLINE bool fits(const Exchange& exchange) {
    // Pixels of three bytes at the right edge are loaded with the bytes before them.
    return exchange.rows >= Kernel::kRows && exchange.columns >= Kernel::kColumns + 2;
}

// An image that is smaller than a block. Apart, so that it does not weigh on the loops above.
HWY_NOINLINE void copy_singly(const Exchange& exchange, std::size_t pixel_bytes) {
    plain::transpose_pixels(exchange.src, exchange.src_stride, exchange.rows, exchange.columns,
                            pixel_bytes, exchange.dst, exchange.dst_stride);
}

template <class Wide, class Narrow>
void transpose(const Exchange& exchange) {
    if (fits<Wide>(exchange)) {
        run_tiles<Wide>(exchange, kTileRows, kTileColumns);
    } else if (fits<Narrow>(exchange)) {
        run_tiles<Narrow>(exchange, kTileRows, kTileColumns);
    } else {
        copy_singly(exchange, Narrow::kPixelBytes);
    }
}

void transpose_pixels(const Exchange& exchange, std::size_t pixel_bytes) {
    switch (pixel_bytes) {
        case 1:
            return transpose<LanePixels<std::uint8_t, WideBytes>,
                             LanePixels<std::uint8_t, BlockBytes>>(exchange);
        case 2:
            return transpose<LanePixels<std::uint16_t, WideBytes>,
                             LanePixels<std::uint16_t, BlockBytes>>(exchange);
        case 3:
            return transpose<ThreeBytePixels<WideBytes>, ThreeBytePixels<BlockBytes>>(exchange);
        default:
            return transpose<LanePixels<std::uint32_t, WideBytes>,
                             LanePixels<std::uint32_t, BlockBytes>>(exchange);
    }
}

// The pixels of a block of 16 bytes, last pixel first; the bytes behind them are unspecified.
template <std::size_t kPixelBytes>
HWY_INLINE hn::Vec<hn::Full128<std::uint8_t>> reverse_block(hn::Vec<hn::Full128<std::uint8_t>> v) {
    const hn::Full128<std::uint8_t> d;
    alignas(16) static constexpr std::uint8_t kBackwards[4][16] = {
        {15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0},
        {14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1},
        {13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0x80},
        {12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3}};
    return hn::TableLookupBytes(v, hn::Load(d, kBackwards[kPixelBytes - 1]));
}

template <std::size_t kPixelBytes>
void reverse(const std::uint8_t* src, std::size_t count, std::uint8_t* dst) {
    const hn::Full128<std::uint8_t> d;
    constexpr std::size_t kPixels = kBlockBytes / kPixelBytes;
    constexpr std::size_t kStep = kPixels * kPixelBytes;
    std::size_t left = count * kPixelBytes;  // bytes not yet moved, the first ones of src
    for (; left >= kBlockBytes; left -= kStep, dst += kStep) {
        hn::StoreU(reverse_block<kPixelBytes>(hn::LoadU(d, src + left - kBlockBytes)), d, dst);
    }
    plain::reverse_pixels(src, left / kPixelBytes, kPixelBytes, dst);
}

void reverse_pixels(const std::uint8_t* src, std::size_t count, std::size_t pixel_bytes,
                    std::uint8_t* dst) {
    switch (pixel_bytes) {
        case 1:
            return reverse<1>(src, count, dst);
        case 2:
            return reverse<2>(src, count, dst);
        case 3:
            return reverse<3>(src, count, dst);
        default:
            return reverse<4>(src, count, dst);
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(transpose_pixels);
HWY_EXPORT(reverse_pixels);

void transpose_pixels(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                      std::size_t columns, std::size_t pixel_bytes, std::uint8_t* dst,
                      std::ptrdiff_t dst_stride) {
    const Exchange exchange{src, src_stride, rows, columns, dst, dst_stride};
    if (pixel_bytes <= 4) {
        HWY_DYNAMIC_DISPATCH(transpose_pixels)(exchange, pixel_bytes);
        return;
    }
    // Small tiles: the cache lines of a tile's destination are still there for its next row.
    constexpr std::size_t kSide = 16;
    for (std::size_t y = 0; y < rows; y += kSide) {
        for (std::size_t x = 0; x < columns; x += kSide) {
            plain::transpose_pixels(exchange.from(x, y, pixel_bytes), src_stride,
                                    std::min(kSide, rows - y), std::min(kSide, columns - x),
                                    pixel_bytes, exchange.to(x, y, pixel_bytes), dst_stride);
        }
    }
}

void reverse_pixels(const std::uint8_t* src, std::size_t count, std::size_t pixel_bytes,
                    std::uint8_t* dst) {
    if (pixel_bytes <= 4) {
        HWY_DYNAMIC_DISPATCH(reverse_pixels)(src, count, pixel_bytes, dst);
    } else {
        plain::reverse_pixels(src, count, pixel_bytes, dst);
    }
}

}  // namespace simd
#endif  // HWY_ONCE

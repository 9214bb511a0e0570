// A row is read as words of 64 pixels, the leftmost one in the most significant bit. A word XOR
// itself moved right by one pixel, with the last pixel of the word before it moving in, has a 1
// exactly where the colour changes:
//
//     pixels   . . # # # . # .
//     moved    . . . # # # . #
//     edges    . . 1 . . 1 1 1      at 2, 5, 6 and 7: the runs are 2 .. 4 and 6
//
// So the runs are the positions of those ones. The scan starts from paper and is followed by paper,
// which opens and closes the runs at its ends; vectors of one colour are skipped.
//
// With AVX-512 VBMI2 the ones of a word are turned into positions by one byte compression; the
// other targets count leading zeros.
#include "simd/bits/run_edges.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "common/byte_order.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/bits/run_edges_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The first `bits` (1 .. 63) pixels of the bytes, with paper behind them.
HWY_INLINE std::uint64_t load_tail(const std::uint8_t* bytes, std::int64_t bits,
                                   std::uint64_t flip) {
    std::uint8_t padded[8] = {};
    std::memcpy(padded, bytes, static_cast<std::size_t>((bits + 7) / 8));
    return (common::load_big_endian(padded) ^ flip) & ~(~std::uint64_t{0} >> bits);
}

// The scan of a row, word by word. Ink is 1 in its words, whatever it is in the row.
struct EdgeScan {
    const std::uint8_t* bytes;  // of the next word
    std::int64_t left;          // bits of the scan from there on
    std::int32_t x;             // position of its first pixel
    std::uint64_t flip;         // all ones where 0-bits are the ink
    std::uint64_t inside;       // the pixels of the next word that are not before the scan
    std::uint64_t before = 0;   // the pixel before the next word

    HWY_INLINE EdgeScan(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                        bool invert)
        : bytes(row + x_start / 8),
          left(std::int64_t{x_start % 8} + width),
          x(x_start - x_start % 8),
          flip(invert ? ~std::uint64_t{0} : 0),
          inside(~std::uint64_t{0} >> x_start % 8) {}

    // The position stays where it is behind the last pixel: it need not be representable.
    HWY_INLINE void advance(std::int64_t pixels) {
        bytes += pixels / 8;
        left -= pixels;
        if (left > 0) x += static_cast<std::int32_t>(pixels);
    }

    // Whether a vector of bytes from here on has the colour of the pixel before it throughout, and
    // so no edge.
    template <class D>
    HWY_INLINE bool is_uniform(D d8) const {
        const std::uint64_t colour = (std::uint64_t{0} - before) ^ flip;
        const auto same = hn::Set(d8, static_cast<std::uint8_t>(colour));
        return hn::AllTrue(d8, hn::Eq(hn::LoadU(d8, bytes), same));
    }

    static HWY_INLINE std::uint64_t edges_of(std::uint64_t word, std::uint64_t before) {
        return word ^ (word >> 1 | before << 63);
    }

    template <class Visit>
    HWY_INLINE void visit_word(Visit& visit) {
        const std::uint64_t word = (common::load_big_endian(bytes) ^ flip) & inside;
        visit(edges_of(word, before), x);
        inside = ~std::uint64_t{0};
        before = word & 1;
        advance(64);
    }

    // The word that the scan ends in, with paper behind its end.
    template <class Visit>
    HWY_INLINE void visit_tail(Visit& visit) const {
        visit(edges_of(load_tail(bytes, left, flip) & inside, before), x);
    }
};

// Calls visit(edges, position of the word's first pixel) for each word of the scan that may have
// edges. Returns whether ink reaches the end of the last word.
template <class Visit>
HWY_INLINE bool visit_edges(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                            bool invert, Visit visit) {
    const hn::ScalableTag<std::uint8_t> d8;
    const std::int64_t block = 8 * static_cast<std::int64_t>(hn::Lanes(d8));
    EdgeScan scan(row, x_start, width, invert);
    while (scan.left >= 64) {
        std::int64_t words = 1;
        if (scan.left >= block && scan.inside == ~std::uint64_t{0}) {
            if (scan.is_uniform(d8)) {
                scan.advance(block);
                continue;
            }
            words = block / 64;
        }
        for (; words > 0; --words) scan.visit_word(visit);
    }
    if (scan.left == 0) return scan.before != 0;
    scan.visit_tail(visit);
    return false;
}

// Writes the positions of the edges of a word whose first pixel is x, and nothing beyond them.
HWY_INLINE std::int32_t* write_edges(std::uint64_t edges, std::int32_t x, std::int32_t* out) {
    while (edges != 0) {
        const int position = std::countl_zero(edges);
        *out++ = x + position;
        edges &= ~(std::uint64_t{1} << 63 >> position);
    }
    return out;
}

#if HWY_TARGET <= HWY_AVX3_DL

// The same, but may overwrite up to kRunSlack values from `out` on.
HWY_INLINE std::int32_t* write_edges_loosely(std::uint64_t edges, std::int32_t x,
                                             std::int32_t* out) {
    const hn::Full512<std::uint8_t> d8;
    const hn::Full512<std::int32_t> d32;
    const auto lane = hn::Iota(d8, 0);
    const int count = std::popcount(edges);
    // Compression starts from the least significant bit, the rightmost pixel: turn the order round.
    const auto from_right = hn::Sub(hn::Set(d8, 63), lane);
    const __m512i descending = _mm512_maskz_compress_epi8(edges, from_right.raw);
    const auto turned = hn::Sub(hn::Set(d8, static_cast<std::uint8_t>(count - 1)), lane);
    const __m512i ascending = _mm512_permutexvar_epi8(turned.raw, descending);
    const auto origin = hn::Set(d32, x);
    const auto store = [&](__m128i positions, std::int32_t* to) HWY_ATTR {
        const hn::Vec128<std::uint8_t> sixteen{positions};
        hn::StoreU(hn::Add(origin, hn::PromoteTo(d32, sixteen)), d32, to);
    };
    store(_mm512_castsi512_si128(ascending), out);
    if (HWY_UNLIKELY(count > 16)) {
        store(_mm512_extracti32x4_epi32(ascending, 1), out + 16);
        store(_mm512_extracti32x4_epi32(ascending, 2), out + 32);
        store(_mm512_extracti32x4_epi32(ascending, 3), out + 48);
    }
    return out + count;
}

#else

// The same, but may overwrite up to kRunSlack values from `out` on. Edges are written in groups of
// four, whose number changes rarely and so is easier to predict than that of single edges.
HWY_INLINE std::int32_t* write_edges_loosely(std::uint64_t edges, std::int32_t x,
                                             std::int32_t* out) {
    std::int32_t* const end = out + std::popcount(edges);
    while (out < end) {
        for (int i = 0; i < 4; ++i) {
            // Beyond the last edge the position is that of no pixel and will be overwritten.
            const int position = std::countl_zero(edges | 1);
            out[i] = x + position;
            edges &= ~(std::uint64_t{1} << 63 >> position);
        }
        out += 4;
    }
    return end;
}

#endif

std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                          bool invert, std::int32_t* out) {
    std::int32_t* end = out;
    // Negative for short rows: compared as a number, since there is no such place before `out`.
    const std::int64_t last_loose = std::int64_t{width} + 1 - std::int64_t{kRunSlack};
    const bool open =
        visit_edges(row, x_start, width, invert, [&](std::uint64_t edges, std::int32_t x) HWY_ATTR {
            if (edges == 0) return;
            end = end - out <= last_loose ? write_edges_loosely(edges, x, end)
                                          : write_edges(edges, x, end);
        });
    if (open) *end++ = x_start + width;
    return static_cast<std::int32_t>(end - out);
}

void count_runs(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                std::int32_t width, bool invert, std::size_t* offsets) {
    offsets[0] = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        std::size_t edges_in_row = 0;
        const bool open = visit_edges(
            rows + y * stride, 0, width, invert, [&](std::uint64_t edges, std::int32_t) HWY_ATTR {
                edges_in_row += static_cast<std::size_t>(std::popcount(edges));
            });
        offsets[y + 1] = offsets[y] + (edges_in_row + (open ? 1 : 0)) / 2;
    }
}

void extract_rows(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                  std::int32_t width, bool invert, std::int32_t* out) {
    for (std::int32_t y = 0; y < height; ++y) {
        const bool open = visit_edges(rows + y * stride, 0, width, invert,
                                      [&](std::uint64_t edges, std::int32_t x) HWY_ATTR {
                                          if (edges != 0) out = write_edges_loosely(edges, x, out);
                                      });
        if (open) *out++ = width;
    }
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(extract_runs);
HWY_EXPORT(count_runs);
HWY_EXPORT(extract_rows);

std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                          bool invert, std::int32_t* out) {
    return HWY_DYNAMIC_DISPATCH(extract_runs)(row, x_start, width, invert, out);
}

void count_runs(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                std::int32_t width, bool invert, std::size_t* offsets) {
    HWY_DYNAMIC_DISPATCH(count_runs)(rows, stride, height, width, invert, offsets);
}

void extract_rows(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                  std::int32_t width, bool invert, std::int32_t* out) {
    HWY_DYNAMIC_DISPATCH(extract_rows)(rows, stride, height, width, invert, out);
}

}  // namespace simd
#endif  // HWY_ONCE

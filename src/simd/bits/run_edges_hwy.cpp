// A row is read as 64-bit words with the leftmost pixel in the most significant bit. A word XOR
// itself moved right by one pixel (the last pixel of the word before moving in) has a 1 exactly
// where the colour changes, so the runs are the positions of those ones. The scan starts from paper
// and is followed by paper, which opens and closes the runs at its ends; vectors of one colour are
// skipped.
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

// The first `bits` (1 .. 63) pixels of the bytes, paper behind them.
HWY_INLINE std::uint64_t load_tail(const std::uint8_t* bytes, std::int64_t bits,
                                   std::uint64_t flip) {
    std::uint8_t padded[8] = {};
    std::memcpy(padded, bytes, static_cast<std::size_t>((bits + 7) / 8));
    return (common::load_big_endian(padded) ^ flip) & ~(~std::uint64_t{0} >> bits);
}

// Calls visit(edges, position of the word's first pixel) for each word of the scan; returns true
// when ink reaches the end of the last word.
template <class Visit>
HWY_INLINE bool visit_edges(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                            bool invert, Visit visit) {
    const std::int32_t skipped = x_start % 8;
    const std::uint8_t* bytes = row + x_start / 8;
    const std::int64_t bits = std::int64_t{skipped} + width;
    const std::uint64_t flip = invert ? ~std::uint64_t{0} : 0;
    std::uint64_t inside = ~std::uint64_t{0} >> skipped;
    std::uint64_t before = 0;  // the last pixel of the word before
    std::int32_t x = x_start - skipped;
    std::int64_t left = bits;
    const hn::ScalableTag<std::uint8_t> d8;
    const std::int64_t block = 8 * static_cast<std::int64_t>(hn::Lanes(d8));
    while (left >= 64) {
        std::int64_t words = 1;
        if (block >= 64 && left >= block && inside == ~std::uint64_t{0}) {
            // A vector of the colour that came before it has no edge.
            const std::uint64_t uniform = (std::uint64_t{0} - before) ^ flip;
            const auto same = hn::Set(d8, static_cast<std::uint8_t>(uniform));
            words = block / 64;
            if (hn::AllTrue(d8, hn::Eq(hn::LoadU(d8, bytes), same))) {
                bytes += block / 8;
                left -= block;
                if (left > 0) x += static_cast<std::int32_t>(block);
                continue;
            }
        }
        for (; words > 0; --words, bytes += 8, left -= 64) {
            const std::uint64_t word = (common::load_big_endian(bytes) ^ flip) & inside;
            visit(word ^ (word >> 1 | before << 63), x);
            inside = ~std::uint64_t{0};
            before = word & 1;
            if (left > 64) x += 64;
        }
    }
    if (left == 0) return before != 0;
    const std::uint64_t word = load_tail(bytes, left, flip) & inside;
    visit(word ^ (word >> 1 | before << 63), x);
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

// The same, but may overwrite up to kRunSlack values from `out` on: groups of four whose number
// rarely changes are easier to foresee than single edges.
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

// Vector forms of border_rows.h.
//
// Propagation along a row looks sequential: a pixel joins when its neighbour on the way has joined.
// But which pixels are within the limits (the open ones) does not depend on the marks. So 64 pixels
// are tested at once, and what is left is to fill runs of open pixels from those next to a mark. An
// addition does that towards the higher bits: the carry of a seed runs up through the ones of its
// run and stops behind them. Towards the lower bits the filled part of a run is doubled, six times.
//
// Grey values are (299 R + 587 G + 114 B) / 1000, taken in 16-bit lanes. An eighth of that sum,
// rounded down, is K = 37 R + 73 G + 14 B + (3 R + 3 G + 2 B) / 8, at most 31,875; the result is
// K / 125, and that is K * 33555 >> 22: 33555 = 2^22 / 125 + 0.568, and 31875 * 0.568 / 2^22 is
// less than 1 / 125.
#include "simd/pixels/border_rows.h"

#include <cstring>

#include "simd/pixels/plain/border_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/border_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

static_assert(kMaskBlock == 64);  // a number of full vectors
constexpr hn::CappedTag<std::uint64_t, 8> kMarks;

HWY_INLINE VecU16 u16(std::uint16_t value) {
    return hn::Set(kU16, value);
}

// The grey values of pixels that stand in lanes of 16 bits.
HWY_INLINE VecU16 weighted(VecU16 red, VecU16 green, VecU16 blue) {
    const VecU16 both = hn::Add(red, green);
    const VecU16 low = hn::Add(hn::Add(both, hn::Add(both, both)), hn::Add(blue, blue));
    const VecU16 high =
        hn::Add(hn::Add(hn::Mul(red, u16(37)), hn::Mul(green, u16(73))), hn::Mul(blue, u16(14)));
    const VecU16 eighth = hn::Add(high, hn::ShiftRight<3>(low));
    return hn::ShiftRight<6>(hn::MulHigh(eighth, u16(33555)));
}

HWY_INLINE VecU8 grey_vector(VecU8 red, VecU8 green, VecU8 blue) {
    const VecU16 even = weighted(even_bytes(red), even_bytes(green), even_bytes(blue));
    const VecU16 odd = weighted(odd_bytes(red), odd_bytes(green), odd_bytes(blue));
    return interleave(even, odd);
}

HWY_INLINE VecU8 load_grey(PixelLayout layout, const std::uint8_t* pixels) {
    if (layout == PixelLayout::kGrey) return hn::LoadU(kU8, pixels);
    VecU8 a, b, c, d;
    if (layout == PixelLayout::kXrgb) {
        hn::LoadInterleaved4(kU8, pixels, d, a, b, c);
        return grey_vector(a, b, c);
    }
    hn::LoadInterleaved3(kU8, pixels, a, b, c);
    return layout == PixelLayout::kRgb ? grey_vector(a, b, c) : grey_vector(c, b, a);
}

// Makes the grey values of a block and of one pixel on either side. The last block of a row, if it
// is shorter than the others, is made together with pixels before it; a row that is shorter than a
// block is made pixel by pixel.
void make_block(const RowShape& shape, GreyLine& line, std::size_t block) {
    const std::size_t bytes = pixel_bytes(shape.layout);
    const std::size_t begin = block * kMaskBlock;
    const auto make_plain = [&](std::size_t x) {
        line.grey[x] = plain::grey_value(shape.layout, line.pixels + x * bytes);
    };
    if (shape.width < kMaskBlock) {
        for (std::size_t x = 0; x < shape.width; ++x) make_plain(x);
    } else {
        const std::size_t start = std::min(begin, shape.width - kMaskBlock);
        for (std::size_t i = 0; i < kMaskBlock; i += hn::Lanes(kU8)) {
            const std::size_t x = start + i;
            hn::StoreU(load_grey(shape.layout, line.pixels + x * bytes), kU8, line.grey + x);
        }
        if (begin > 0) make_plain(begin - 1);
        if (begin + kMaskBlock < shape.width) make_plain(begin + kMaskBlock);
    }
    line.ready[block / 64] |= std::uint64_t{1} << (block % 64);
}

// The grey values of a block, which are made now if they have not been before.
HWY_INLINE const std::uint8_t* block_of(const RowShape& shape, GreyLine& line, std::size_t block) {
    if ((line.ready[block / 64] >> (block % 64) & 1) == 0) make_block(shape, line, block);
    return line.grey + block * kMaskBlock;
}

// A bit for each of 64 pixels for which test(offset) holds.
template <class Test>
HWY_INLINE std::uint64_t pixel_bits(const Test& test) {
    std::uint8_t stored[8 + 8];  // StoreMaskBits may write up to a word
    for (std::size_t i = 0; i < kMaskBlock; i += hn::Lanes(kU8)) {
        hn::StoreMaskBits(kU8, test(i), stored + i / 8);
    }
    std::uint64_t bits = 0;
    std::memcpy(&bits, stored, 8);
    return bits;
}

HWY_INLINE VecU8 difference(VecU8 a, VecU8 b) {
    return hn::Sub(hn::Max(a, b), hn::Min(a, b));
}

HWY_INLINE hn::Mask<U8> at_most(VecU8 values, VecU8 limit) {
    return hn::Eq(hn::Min(values, limit), values);
}

// The open pixels of a block. kBefore is where the pixel before one stands on the way of the pass.
template <std::ptrdiff_t kBefore>
HWY_INLINE std::uint64_t open_pixels(const std::uint8_t* row, const std::uint8_t* neighbour,
                                     const JoinLimits& limits) {
    const VecU8 lightest = hn::Set(kU8, limits.lightest);
    const VecU8 steepest = hn::Set(kU8, limits.steepest);
    return pixel_bits([&](std::size_t i) HWY_ATTR {
        const VecU8 here = hn::LoadU(kU8, row + i);
        const VecU8 largest = hn::Max(hn::Max(difference(here, hn::LoadU(kU8, row + i + kBefore)),
                                              difference(here, hn::LoadU(kU8, neighbour + i))),
                                      difference(here, hn::LoadU(kU8, neighbour + i + kBefore)));
        return hn::And(at_most(here, lightest), at_most(largest, steepest));
    });
}

HWY_INLINE std::uint64_t pixels_of_word(std::size_t word, const RowShape& shape) {
    const bool last = word + 1 == mask_words(shape.width);
    return last ? last_word_pixels(shape.width) : ~std::uint64_t{0};
}

void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest, std::uint64_t* marks) {
    const VecU8 limit = hn::Set(kU8, darkest);
    const std::size_t words = mask_words(shape.width);
    for (std::size_t b = 0; b < words; ++b) {
        const std::uint8_t* const grey = block_of(shape, line, b);
        const std::uint64_t dark = pixel_bits(
            [&](std::size_t i) HWY_ATTR { return at_most(hn::LoadU(kU8, grey + i), limit); });
        marks[b] |= dark & pixels_of_word(b, shape);
    }
}

// Whether a vector of words has no marks in either row.
HWY_INLINE bool blank(const std::uint64_t* neighbour_marks, const std::uint64_t* marks) {
    const auto both = hn::Or(hn::LoadU(kMarks, neighbour_marks), hn::LoadU(kMarks, marks));
    return hn::AllTrue(kMarks, hn::Eq(both, hn::Zero(kMarks)));
}

// A pass to the right goes up the bits and the words of a row.
struct PassRight {
    static constexpr std::ptrdiff_t kBefore = -1;

    // The first of the `count` words in memory that the pass meets from its word i on.
    static std::size_t place(std::size_t i, std::size_t /*count*/, std::size_t /*words*/) {
        return i;
    }
    // Each bit on the next pixel of the way; and the bit of the last pixel on the first one of the
    // next word.
    static std::uint64_t next(std::uint64_t bits) { return bits << 1; }
    static std::uint64_t next_word(std::uint64_t bits) { return bits >> 63; }

    // `seeds` and the open pixels that are reached from them through open ones; seeds are open.
    static std::uint64_t fill(std::uint64_t open, std::uint64_t seeds) {
        return seeds | (((open + seeds) ^ open) & open);
    }
    // The pixels of a word but the first one of the pass.
    static std::uint64_t joinable(std::size_t word, const RowShape& shape) {
        const std::uint64_t pixels = pixels_of_word(word, shape);
        return word == 0 ? pixels & ~std::uint64_t{1} : pixels;
    }
};

// A pass to the left goes down the bits and the words.
struct PassLeft {
    static constexpr std::ptrdiff_t kBefore = 1;

    static std::size_t place(std::size_t i, std::size_t count, std::size_t words) {
        return words - i - count;
    }
    static std::uint64_t next(std::uint64_t bits) { return bits >> 1; }
    static std::uint64_t next_word(std::uint64_t bits) { return bits << 63; }

    static std::uint64_t fill(std::uint64_t open, std::uint64_t seeds) {
        for (unsigned step = 1; step < 64; step *= 2) {
            seeds |= open & (seeds >> step);
            open &= open >> step;
        }
        return seeds;
    }
    static std::uint64_t joinable(std::size_t word, const RowShape& shape) {
        const std::uint64_t pixels = pixels_of_word(word, shape);
        return word + 1 == mask_words(shape.width) ? pixels >> 1 : pixels;
    }
};

// Words without a mark in either row are passed over, unless one has been left on the pixel before.
template <class Pass>
HWY_INLINE bool propagate(const RowShape& shape, const JoinLimits& limits, GreyLine& row,
                          GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                          std::uint64_t* marks) {
    const std::size_t words = mask_words(shape.width);
    const std::size_t lanes = hn::Lanes(kMarks);
    std::uint64_t changed = 0;
    std::uint64_t carry = 0;  // first pixel of a word: set where the one before is marked in a row
    for (std::size_t i = 0; i < words; ++i) {
        if (carry == 0) {
            while (i + lanes <= words && blank(neighbour_marks + Pass::place(i, lanes, words),
                                               marks + Pass::place(i, lanes, words))) {
                i += lanes;
            }
            if (i == words) break;
        }
        const std::size_t word = Pass::place(i, 1, words);
        const std::uint64_t beside = neighbour_marks[word];
        const std::uint64_t old = marks[word];
        const std::uint64_t joinable = Pass::joinable(word, shape);
        const std::uint64_t near = (beside | Pass::next(beside | old) | carry) & ~old & joinable;
        carry = Pass::next_word(beside | old);
        if (near == 0) continue;
        const std::uint64_t open =
            joinable & open_pixels<Pass::kBefore>(block_of(shape, row, word),
                                                  block_of(shape, neighbour, word), limits);
        const std::uint64_t filled = old | Pass::fill(open, open & near);
        marks[word] = filled;
        changed |= filled ^ old;
        carry |= Pass::next_word(filled);
    }
    return changed != 0;
}

bool propagate_marks(PassDirection direction, const RowShape& shape, const JoinLimits& limits,
                     GreyLine& row, GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks) {
    return (direction == PassDirection::kRight
                ? propagate<PassRight>
                : propagate<PassLeft>)(shape, limits, row, neighbour, neighbour_marks, marks);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(mark_dark);
HWY_EXPORT(propagate_marks);

void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest, std::uint64_t* marks) {
    HWY_DYNAMIC_DISPATCH(mark_dark)(shape, line, darkest, marks);
}

bool propagate_marks(PassDirection direction, const RowShape& shape, const JoinLimits& limits,
                     GreyLine& row, GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks) {
    return HWY_DYNAMIC_DISPATCH(propagate_marks)(direction, shape, limits, row, neighbour,
                                                 neighbour_marks, marks);
}

}  // namespace simd
#endif  // HWY_ONCE

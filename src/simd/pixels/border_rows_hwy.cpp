// Vector form of border_rows.h.
//
// Propagation along a row looks sequential: a pixel joins when its neighbour on the way has joined.
// But which pixels pass the limits (`open`) does not depend on the marks, so 64 of them are tested
// at once, and what is left is to fill runs of open pixels from those that lie next to a mark. An
// addition does that towards the higher bits: a seed's carry runs up through the ones of its run
// and stops behind them. Towards the lower bits the run is doubled in six steps.
//
// Grey values: (299 R + 587 G + 114 B) / 1000 in 16-bit lanes. With K = the sum / 8, which is
// 37 R + 73 G + 14 B + (3 R + 3 G + 2 B) / 8 and at most 31,875, the result is K / 125, and that is
// K * 33555 >> 22: 33555 = 2^22 / 125 + 0.568, and 31875 * 0.568 / 2^22 is below 1 / 125.
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

static_assert(kMaskBlock == 64);  // whole vectors of word_vectors.h
constexpr hn::CappedTag<std::uint64_t, 8> kMarks;

HWY_INLINE VecU16 u16(std::uint16_t value) {
    return hn::Set(kU16, value);
}

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

// A short last block is made together with the pixels before it, where there are any.
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

// Bits of the pixels of a block that pass the limits. kFrom: -1 or 1, towards where the walk comes
// from.
template <std::ptrdiff_t kFrom>
HWY_INLINE std::uint64_t open_pixels(const std::uint8_t* row, const std::uint8_t* neighbour,
                                     const JoinLimits& limits) {
    const VecU8 lightest = hn::Set(kU8, limits.lightest);
    const VecU8 steepest = hn::Set(kU8, limits.steepest);
    return pixel_bits([&](std::size_t i) HWY_ATTR {
        const VecU8 here = hn::LoadU(kU8, row + i);
        const VecU8 largest = hn::Max(hn::Max(difference(here, hn::LoadU(kU8, row + i + kFrom)),
                                              difference(here, hn::LoadU(kU8, neighbour + i))),
                                      difference(here, hn::LoadU(kU8, neighbour + i + kFrom)));
        return hn::And(at_most(here, lightest), at_most(largest, steepest));
    });
}

void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest, std::uint64_t* marks) {
    const VecU8 limit = hn::Set(kU8, darkest);
    const std::size_t words = mask_words(shape.width);
    for (std::size_t b = 0; b < words; ++b) {
        const std::uint8_t* const grey = block_of(shape, line, b);
        const std::uint64_t dark = pixel_bits(
            [&](std::size_t i) HWY_ATTR { return at_most(hn::LoadU(kU8, grey + i), limit); });
        marks[b] |= dark & (b + 1 == words ? last_word_pixels(shape.width) : ~std::uint64_t{0});
    }
}

// The bits of `open` that are reached from those of `seeds`, which are open, through open ones.
HWY_INLINE std::uint64_t fill_up(std::uint64_t open, std::uint64_t seeds) {
    return seeds | (((open + seeds) ^ open) & open);
}

HWY_INLINE std::uint64_t fill_down(std::uint64_t open, std::uint64_t seeds) {
    for (unsigned step = 1; step < 64; step *= 2) {
        seeds |= open & (seeds >> step);
        open &= open >> step;
    }
    return seeds;
}

// Whether a vector of words has no marks in either row.
HWY_INLINE bool blank(const std::uint64_t* neighbour_marks, const std::uint64_t* marks) {
    const auto both = hn::Or(hn::LoadU(kMarks, neighbour_marks), hn::LoadU(kMarks, marks));
    return hn::AllTrue(kMarks, hn::Eq(both, hn::Zero(kMarks)));
}

bool propagate_right(const RowShape& shape, const JoinLimits& limits, GreyLine& row,
                     GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks) {
    const std::size_t words = mask_words(shape.width);
    const std::size_t lanes = hn::Lanes(kMarks);
    std::uint64_t changed = 0;
    std::uint64_t carry = 0;  // marks of the pixel before the word, here or in the neighbour
    for (std::size_t b = 0; b < words; ++b) {
        if (carry == 0) {
            while (b + lanes <= words && blank(neighbour_marks + b, marks + b)) b += lanes;
            if (b == words) break;
        }
        const std::uint64_t beside = neighbour_marks[b];
        const std::uint64_t old = marks[b];
        const std::uint64_t both = beside | old;
        std::uint64_t near = (beside | both << 1 | carry) & ~old;
        carry = both >> 63;
        if (b == 0) near &= ~std::uint64_t{1};
        if (b + 1 == words) near &= last_word_pixels(shape.width);
        if (near == 0) continue;
        std::uint64_t open =
            open_pixels<-1>(block_of(shape, row, b), block_of(shape, neighbour, b), limits);
        if (b == 0) open &= ~std::uint64_t{1};
        if (b + 1 == words) open &= last_word_pixels(shape.width);
        const std::uint64_t filled = old | fill_up(open, open & near);
        marks[b] = filled;
        changed |= filled ^ old;
        carry |= filled >> 63;
    }
    return changed != 0;
}

bool propagate_left(const RowShape& shape, const JoinLimits& limits, GreyLine& row,
                    GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                    std::uint64_t* marks) {
    const std::size_t words = mask_words(shape.width);
    const std::size_t lanes = hn::Lanes(kMarks);
    // All pixels but the first of the walk.
    const std::uint64_t tail = last_word_pixels(shape.width) >> 1;
    std::uint64_t changed = 0;
    std::uint64_t carry = 0;
    for (std::size_t b = words; b-- > 0;) {
        if (carry == 0) {
            while (b + 1 >= lanes &&
                   blank(neighbour_marks + b + 1 - lanes, marks + b + 1 - lanes)) {
                if (b + 1 == lanes) return changed != 0;
                b -= lanes;
            }
        }
        const std::uint64_t beside = neighbour_marks[b];
        const std::uint64_t old = marks[b];
        const std::uint64_t both = beside | old;
        std::uint64_t near = (beside | both >> 1 | carry) & ~old;
        carry = both << 63;
        if (b + 1 == words) near &= tail;
        if (near == 0) continue;
        std::uint64_t open =
            open_pixels<1>(block_of(shape, row, b), block_of(shape, neighbour, b), limits);
        if (b + 1 == words) open &= tail;
        const std::uint64_t filled = old | fill_down(open, open & near);
        marks[b] = filled;
        changed |= filled ^ old;
        carry |= filled << 63;
    }
    return changed != 0;
}

bool propagate_marks(PassDirection direction, const RowShape& shape, const JoinLimits& limits,
                     GreyLine& row, GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks) {
    return (direction == PassDirection::kRight ? propagate_right : propagate_left)(
        shape, limits, row, neighbour, neighbour_marks, marks);
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

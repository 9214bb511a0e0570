// Vector forms of grey_rows.h.
//
// Luminance: products of 16 bits are added up in pairs to 32 bits. The weight of green is too large
// for that as it is, and taken in halves; it is even. Nothing crosses from one block of 16 bytes to
// another.
//
// Smoothing works on 16-bit lanes that hold two pixels, one in each byte: the even pixels are the
// low bytes, the odd pixels the high bytes, so that nothing has to be widened or packed. With d =
// neighbours - 8 * centre, (weight * neighbours + 8 * (128 - weight) * centre) / 1024 == centre +
// floor(weight * d / 1024), and floor(weight * d / 1024) is the high half of the 16-bit product (64
// * weight) * d; |d| <= 2040 and 64 * weight <= 8128.
//
// A row that is not a number of full vectors ends with a vector that overlaps the one before it:
// all four are functions of their input pixels alone (clamping twice changes nothing).
#include "simd/pixels/grey_rows.h"

#include "simd/pixels/plain/grey_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/grey_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

using I16 = hn::Repartition<std::int16_t, U8>;
constexpr I16 kI16;

using I32 = hn::Repartition<std::int32_t, U8>;
constexpr I32 kI32;

// What TableLookupBytesOr0() is told, a block of 16 bytes at a time.
struct ChannelShuffle {
    // From four pixels side by side: the first or the last channel and the green of each, as pairs
    // of 16 bits.
    alignas(16) std::uint8_t first_and_green[16] = {};
    alignas(16) std::uint8_t last_and_green[16] = {};
    // From the bytes 0, 8, 4, 12, 1, 9, 5, 13, ... to 0, 1, 2, ...
    alignas(16) std::uint8_t in_order[16] = {};

    constexpr ChannelShuffle() {
        constexpr std::uint8_t kZero = 0x80;
        for (std::uint8_t i = 0; i < 16; ++i) {
            const auto green = static_cast<std::uint8_t>(i / 4 * 3 + 1);
            first_and_green[i] = last_and_green[i] = kZero;
            if (i % 4 == 0) first_and_green[i] = static_cast<std::uint8_t>(green - 1);
            if (i % 4 == 0) last_and_green[i] = static_cast<std::uint8_t>(green + 1);
            if (i % 4 == 2) first_and_green[i] = last_and_green[i] = green;
            constexpr std::uint8_t kPlace[4] = {0, 2, 1, 3};
            in_order[i] = static_cast<std::uint8_t>(i % 4 * 4 + kPlace[i / 4]);
        }
    }
};

// Weights for products of pairs of 16 bits: of a channel and of green.
HWY_INLINE hn::Vec<I16> weight_pair(std::uint32_t channel, std::uint32_t green) {
    return hn::BitCast(kI16, hn::Set(kI32, static_cast<std::int32_t>(green << 16 | channel)));
}

// Half of the weight of green goes to each of the two sums.
static_assert(common::kGreenWeight % 2 == 0);

struct LuminanceWeights {
    hn::Vec<I16> first_and_green;
    hn::Vec<I16> last_and_green;

    HWY_INLINE explicit LuminanceWeights(ChannelOrder order) {
        const bool red_first = order == ChannelOrder::kRedFirst;
        const std::uint32_t half = common::kGreenWeight / 2;
        first_and_green = weight_pair(red_first ? common::kRedWeight : common::kBlueWeight, half);
        last_and_green = weight_pair(red_first ? common::kBlueWeight : common::kRedWeight, half);
    }

    // The luminances of the first sums in the lower halves of all lanes, of the second in the upper
    // ones.
    static HWY_INLINE hn::Vec<I16> two(hn::Vec<I32> first, hn::Vec<I32> second) {
        return hn::OddEven(hn::BitCast(kI16, second), hn::BitCast(kI16, hn::ShiftRight<16>(first)));
    }
};

// In weights of 1/1000. An eighth of the sum, rounded down, is at most 31,875, and a 125th of that
// is its product with 33555 >> 22: 33555 = 2^22 / 125 + 0.568, and 31875 * 0.568 / 2^22 < 1 / 125.
struct ThousandthWeights {
    hn::Vec<I16> first_and_green;
    hn::Vec<I16> last_and_green;

    HWY_INLINE explicit ThousandthWeights(ChannelOrder order) {
        const bool red_first = order == ChannelOrder::kRedFirst;
        first_and_green = weight_pair(red_first ? 299 : 114, 587);
        last_and_green = weight_pair(red_first ? 114 : 299, 0);
    }

    static HWY_INLINE hn::Vec<I16> two(hn::Vec<I32> first, hn::Vec<I32> second) {
        const auto eighths = hn::BitCast(
            kU16, hn::Or(hn::ShiftRight<3>(first), hn::ShiftLeft<16>(hn::ShiftRight<3>(second))));
        const VecU16 products = hn::MulHigh(eighths, hn::Set(kU16, std::uint16_t{33555}));
        return hn::BitCast(kI16, hn::ShiftRight<6>(products));
    }
};

// The sums of products of four of every 16 pixels, one block for each; four bytes of the block are
// of no use.
template <class Weights>
HWY_INLINE hn::Vec<I32> weighted_sums(const std::uint8_t* colour, const ChannelShuffle& shuffle,
                                      const Weights& weights) {
    const VecU8 pixels = load_blocks_apart(kU8, colour, 3 * 16);
    const auto pairs = [&](const std::uint8_t* table) HWY_ATTR {
        return hn::BitCast(kI16, hn::TableLookupBytesOr0(pixels, hn::LoadDup128(kU8, table)));
    };
    auto other = hn::Zero(kI32);
    auto sums = hn::ReorderWidenMulAccumulate(kI32, pairs(shuffle.first_and_green),
                                              weights.first_and_green, hn::Zero(kI32), other);
    sums = hn::ReorderWidenMulAccumulate(kI32, pairs(shuffle.last_and_green),
                                         weights.last_and_green, sums, other);
    return hn::RearrangeToOddPlusEven(sums, other);
}

// A vector of pixels, from the sums of pixels 0 .. 3 of every 16, of pixels 4 .. 7, and so on.
// Reads 4 bytes behind the pixels.
template <class Weights>
HWY_INLINE void luminance_vector(const std::uint8_t* colour, const Weights& weights,
                                 std::uint8_t* grey) {
    static constexpr ChannelShuffle kShuffle;
    const auto sums = [&](std::size_t i)
                          HWY_ATTR { return weighted_sums(colour + 12 * i, kShuffle, weights); };
    const auto all = hn::BitCast(kU8, hn::Or(Weights::two(sums(0), sums(1)),
                                             hn::ShiftLeft<8>(Weights::two(sums(2), sums(3)))));
    hn::StoreU(hn::TableLookupBytes(all, hn::LoadDup128(kU8, kShuffle.in_order)), kU8, grey);
}

// All pixels of a row but the last, which are as many as are returned: too near the end to load
// vectors from. In place, a vector of greys ends before the next colours to be read; the last
// vector, which overlaps the one before it, has to begin far enough from the start for that.
template <class Weights>
HWY_INLINE std::size_t luminance_vectors(const std::uint8_t* colour, std::size_t width,
                                         ChannelOrder order, std::uint8_t* grey) {
    const std::size_t lanes = hn::Lanes(kU8);
    constexpr std::size_t kReadAhead = 2;  // pixels
    const std::size_t least = colour == grey ? 2 * lanes : lanes + kReadAhead;
    if (width < least) return width;
    const Weights weights(order);
    const std::size_t last = width - kReadAhead - lanes;
    for (std::size_t x = 0; x < last; x += lanes) {
        luminance_vector(colour + 3 * x, weights, grey + x);
    }
    luminance_vector(colour + 3 * last, weights, grey + last);
    return kReadAhead;
}

void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                   std::uint8_t* grey) {
    const std::size_t rest = luminance_vectors<LuminanceWeights>(colour, width, order, grey);
    const std::size_t done = width - rest;
    plain::luminance_row(colour + 3 * done, rest, order, grey + done);
}

void luminance_in_place(std::uint8_t* row, std::size_t width, ChannelOrder order) {
    const std::size_t rest = luminance_vectors<ThousandthWeights>(row, width, order, row);
    const std::size_t done = width - rest;
    plain::luminance_in_thousandths(row + 3 * done, rest, order, row + done);
}

HWY_INLINE void clamp_vector(const std::uint8_t* colour, std::uint8_t* grey) {
    VecU8 first, second, third;
    hn::LoadInterleaved3(kU8, colour, first, second, third);
    const VecU8 chroma =
        hn::Sub(hn::Max(hn::Max(first, second), third), hn::Min(hn::Min(first, second), third));
    const VecU8 values = hn::LoadU(kU8, grey);
    const VecU8 clamped = hn::Min(values, hn::Set(kU8, std::uint8_t{kSaturatedMaximum}));
    const auto strong = hn::Gt(chroma, hn::Set(kU8, std::uint8_t{kSaturatedChroma}));
    hn::StoreU(hn::IfThenElse(strong, clamped, values), kU8, grey);
}

// Not zero where the difference is above the limit.
HWY_INLINE VecU8 excess(const std::uint8_t* first, const std::uint8_t* second, VecU8 limit) {
    const VecU8 a = hn::LoadU(kU8, first);
    const VecU8 b = hn::LoadU(kU8, second);
    const VecU8 difference = hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
    return hn::SaturatedSub(difference, limit);
}

// All ones for the bytes whose successor belongs to the same pixel, from the first byte of one on.
struct SamePixel {
    alignas(64) std::uint8_t bytes[3 * 64] = {};

    constexpr SamePixel() {
        for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = i % 3 == 2 ? 0 : 0xFF;
    }
};

// False only when none of the pixels from `colour` on can be strongly coloured, for either of two
// reasons: every channel is so light that no chroma above the limit fits under white, as on paper;
// or the green of every pixel differs from its red and from its blue by at most half of the limit,
// and the chroma is at most the sum of both. Reads one byte behind the pixels.
HWY_INLINE bool may_be_saturated(const std::uint8_t* colour, std::size_t lanes) {
    static constexpr SamePixel kSamePixel;
    const VecU8 darkest = hn::Min(hn::Min(hn::LoadU(kU8, colour), hn::LoadU(kU8, colour + lanes)),
                                  hn::LoadU(kU8, colour + 2 * lanes));
    const VecU8 light = hn::Set(kU8, std::uint8_t{255 - kSaturatedChroma});
    if (hn::AllTrue(kU8, hn::Eq(hn::Min(darkest, light), light))) return false;
    const auto found = [=](std::size_t at) HWY_ATTR {
        const VecU8 half = hn::Set(kU8, std::uint8_t{kSaturatedChroma / 2});
        return hn::And(hn::LoadU(kU8, kSamePixel.bytes + at),
                       excess(colour + at, colour + at + 1, half));
    };
    const VecU8 any = hn::Or(hn::Or(found(0), found(lanes)), found(2 * lanes));
    return !hn::AllTrue(kU8, hn::Eq(any, hn::Zero(kU8)));
}

// Most of most pages is paper and ink without colour, which the test above is quick to pass over:
// the grey row is not even fetched then.
void clamp_saturated(const std::uint8_t* colour, std::size_t width, std::uint8_t* grey) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width < lanes) return plain::clamp_saturated(colour, width, grey);
    for (std::size_t x = 0; x + lanes < width; x += lanes) {
        if (may_be_saturated(colour + 3 * x, lanes)) clamp_vector(colour + 3 * x, grey + x);
    }
    const std::size_t last = width - lanes;
    clamp_vector(colour + 3 * last, grey + last);
}

bool differs_above(const std::uint8_t* first, const std::uint8_t* second, std::size_t count,
                   std::uint8_t limit) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (count < lanes) return plain::differs_above(first, second, count, limit);
    const VecU8 limits = hn::Set(kU8, limit);
    const std::size_t last = count - lanes;
    VecU8 found = excess(first + last, second + last, limits);
    for (std::size_t x = 0; x < last; x += lanes) {
        found = hn::Or(found, excess(first + x, second + x, limits));
    }
    return !hn::AllTrue(kU8, hn::Eq(found, hn::Zero(kU8)));
}

// The weighted means; `sum` is of the nine pixels around and at `centre`.
HWY_INLINE VecU16 drawn_to_neighbours(VecU16 sum, VecU16 centre, hn::Vec<I16> scale) {
    const VecU16 nine = hn::Add(hn::ShiftLeft<3>(centre), centre);
    const auto difference = hn::BitCast(kI16, hn::Sub(sum, nine));
    return hn::Add(centre, hn::BitCast(kU16, hn::MulHigh(difference, scale)));
}

// Smooths a vector of pixels from `row` on. The rows are loaded from one pixel to the left on and
// from one to the right on. For the pixels x and x + 1 of a lane, x even, its bytes are x - 1 and x
// in the former, x + 1 and x + 2 in the latter: the columns that the two pixels need, two of them
// in common.
HWY_INLINE void smooth_vector(const std::uint8_t* above, const std::uint8_t* row,
                              const std::uint8_t* below, hn::Vec<I16> scale, std::uint8_t* out) {
    const VecU8 above_left = hn::LoadU(kU8, above - 1);
    const VecU8 above_right = hn::LoadU(kU8, above + 1);
    const VecU8 below_left = hn::LoadU(kU8, below - 1);
    const VecU8 below_right = hn::LoadU(kU8, below + 1);
    const VecU8 left = hn::LoadU(kU8, row - 1);
    const VecU8 right = hn::LoadU(kU8, row + 1);
    const VecU16 even_centre = odd_bytes(left);
    const VecU16 odd_centre = even_bytes(right);
    const VecU16 column0 =
        hn::Add(hn::Add(even_bytes(above_left), even_bytes(below_left)), even_bytes(left));
    const VecU16 column1 =
        hn::Add(hn::Add(odd_bytes(above_left), odd_bytes(below_left)), even_centre);
    const VecU16 column2 =
        hn::Add(hn::Add(even_bytes(above_right), even_bytes(below_right)), odd_centre);
    const VecU16 column3 =
        hn::Add(hn::Add(odd_bytes(above_right), odd_bytes(below_right)), odd_bytes(right));
    const VecU16 shared = hn::Add(column1, column2);
    const VecU16 even = drawn_to_neighbours(hn::Add(column0, shared), even_centre, scale);
    const VecU16 odd = drawn_to_neighbours(hn::Add(shared, column3), odd_centre, scale);
    hn::StoreU(interleave(even, odd), kU8, out);
}

void smooth_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                std::size_t width, NeighbourWeight weight, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width < lanes + 2) return plain::smooth_row(above, row, below, width, weight, out);
    const auto scale = hn::Set(kI16, static_cast<std::int16_t>(weight * 64));
    out[0] = row[0];
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) {
        smooth_vector(above + x, row + x, below + x, scale, out + x);
    }
    smooth_vector(above + last, row + last, below + last, scale, out + last);
    out[width - 1] = row[width - 1];
}

// Smooths a vector of pixels from `row` on; the columns are those of smooth_vector().
HWY_INLINE void gaussian_vector(const std::uint8_t* above, const std::uint8_t* row,
                                const std::uint8_t* below, std::uint8_t* out) {
    const auto columns = [=](std::ptrdiff_t from, VecU16& even, VecU16& odd) HWY_ATTR {
        const VecU8 a = hn::LoadU(kU8, above + from);
        const VecU8 b = hn::LoadU(kU8, row + from);
        const VecU8 c = hn::LoadU(kU8, below + from);
        even = one_two_one(even_bytes(a), even_bytes(b), even_bytes(c));
        odd = one_two_one(odd_bytes(a), odd_bytes(b), odd_bytes(c));
    };
    VecU16 column0, column1, column2, column3;
    columns(-1, column0, column1);
    columns(1, column2, column3);
    const auto mean = [](VecU16 sum) HWY_ATTR {
        return hn::ShiftRight<4>(hn::Add(sum, hn::Set(kU16, std::uint16_t{8})));
    };
    hn::StoreU(interleave(mean(one_two_one(column0, column1, column2)),
                          mean(one_two_one(column1, column2, column3))),
               kU8, out);
}

void gaussian_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width < lanes + 2) return plain::gaussian_row(above, row, below, width, out);
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) {
        gaussian_vector(above + x, row + x, below + x, out + x);
    }
    gaussian_vector(above + last, row + last, below + last, out + last);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(luminance_row);
HWY_EXPORT(luminance_in_place);
HWY_EXPORT(clamp_saturated);
HWY_EXPORT(differs_above);
HWY_EXPORT(smooth_row);
HWY_EXPORT(gaussian_row);

void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                   std::uint8_t* grey) {
    HWY_DYNAMIC_DISPATCH(luminance_row)(colour, width, order, grey);
}

void luminance_in_place(std::uint8_t* row, std::size_t width, ChannelOrder order) {
    HWY_DYNAMIC_DISPATCH(luminance_in_place)(row, width, order);
}

void clamp_saturated(const std::uint8_t* colour, std::size_t width, std::uint8_t* grey) {
    HWY_DYNAMIC_DISPATCH(clamp_saturated)(colour, width, grey);
}

bool differs_above(const std::uint8_t* first, const std::uint8_t* second, std::size_t count,
                   std::uint8_t limit) {
    return HWY_DYNAMIC_DISPATCH(differs_above)(first, second, count, limit);
}

void smooth_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                std::size_t width, NeighbourWeight weight, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(smooth_row)(above, row, below, width, weight, out);
}

void gaussian_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(gaussian_row)(above, row, below, width, out);
}

}  // namespace simd
#endif  // HWY_ONCE

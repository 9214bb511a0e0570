// Vector forms of grey_rows.h.
//
// Luminance: products of 16 bits are added up in pairs to 32 bits. The weight of green is too large
// for that as it is, and taken in halves; it is even.
//
// Smoothing works on 16-bit lanes that hold two pixels, one in each byte: the even pixels are the
// low bytes, the odd pixels the high bytes, so that nothing has to be widened or packed. With d =
// neighbours - 8 * centre, (weight * neighbours + 8 * (128 - weight) * centre) / 1024 == centre +
// floor(weight * d / 1024), and floor(weight * d / 1024) is the high half of the 16-bit product (64
// * weight) * d; |d| <= 2040 and 64 * weight <= 8128.
//
// A row that is not a whole number of vectors ends with a vector that overlaps the one before it:
// all four are functions of their input pixels alone (clamping twice changes nothing).
#include "simd/pixels/grey_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/pixels/grey_rows_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/bits/word_vectors.h"
#include "simd/fetch_ahead.h"

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using SignedWords = hn::Repartition<std::int16_t, Bytes>;
constexpr SignedWords kSignedWords;

using Quads = hn::Repartition<std::uint32_t, Bytes>;
using SignedQuads = hn::Repartition<std::int32_t, Bytes>;
constexpr Quads kQuads;
constexpr SignedQuads kSignedQuads;

// Where the bytes of pixels come to stand for the sums of products. A vector takes as many pixels
// as it has lanes of 32 bits: first every block of 16 bytes gets four of them, as three lanes of
// their bytes and one of no use, then each lane its pixel's channels as pairs of 16 bits.
struct PixelLayout {
    static constexpr int kLanes = static_cast<int>(hn::MaxLanes(kQuads));
    std::int32_t quads[kLanes] = {};
    alignas(16) std::uint8_t first_and_green[16] = {};
    alignas(16) std::uint8_t last_and_green[16] = {};

    constexpr PixelLayout() {
        for (int i = 0; i < kLanes; ++i) quads[i] = i / 4 * 3 + std::min(i % 4, 2);
        for (int i = 0; i < 4; ++i) {
            const auto first = static_cast<std::uint8_t>(3 * i);
            const auto green = static_cast<std::uint8_t>(3 * i + 1);
            const auto last = static_cast<std::uint8_t>(3 * i + 2);
            put(first_and_green, i, first, green);
            put(last_and_green, i, last, green);
        }
    }

  private:
    static constexpr void put(std::uint8_t (&table)[16], int pixel, std::uint8_t low,
                              std::uint8_t high) {
        constexpr std::uint8_t kZero = 0x80;
        table[4 * pixel] = low;
        table[4 * pixel + 1] = kZero;
        table[4 * pixel + 2] = high;
        table[4 * pixel + 3] = kZero;
    }
};

// Half of the weight of green goes to each of the two sums.
static_assert(common::kGreenWeight % 2 == 0);

struct LuminanceWeights {
    hn::Vec<SignedWords> first_and_green;
    hn::Vec<SignedWords> last_and_green;

    HWY_INLINE explicit LuminanceWeights(ChannelOrder order) {
        const auto pair = [](std::uint32_t channel) HWY_ATTR {
            return hn::BitCast(kSignedWords,
                               hn::Set(kQuads, (common::kGreenWeight / 2) << 16 | channel));
        };
        const bool red_first = order == ChannelOrder::kRedFirst;
        first_and_green = pair(red_first ? common::kRedWeight : common::kBlueWeight);
        last_and_green = pair(red_first ? common::kBlueWeight : common::kRedWeight);
    }
};

// The sums of products of as many pixels as there are lanes: the luminance is the third byte. Reads
// a whole vector.
HWY_INLINE WordVector weighted_sums(const std::uint8_t* colour, const LuminanceWeights& weights) {
    static constexpr PixelLayout kLayout;
    const auto pixels =
        hn::BitCast(kBytes, hn::TableLookupLanes(hn::BitCast(kQuads, hn::LoadU(kBytes, colour)),
                                                 hn::SetTableIndices(kQuads, kLayout.quads)));
    const auto pairs = [&](const std::uint8_t* table) HWY_ATTR {
        return hn::BitCast(kSignedWords,
                           hn::TableLookupBytesOr0(pixels, hn::LoadDup128(kBytes, table)));
    };
    auto other = hn::Zero(kSignedQuads);
    auto sums =
        hn::ReorderWidenMulAccumulate(kSignedQuads, pairs(kLayout.first_and_green),
                                      weights.first_and_green, hn::Zero(kSignedQuads), other);
    sums = hn::ReorderWidenMulAccumulate(kSignedQuads, pairs(kLayout.last_and_green),
                                         weights.last_and_green, sums, other);
    return hn::BitCast(kWords, hn::RearrangeToOddPlusEven(sums, other));
}

// A vector of pixels. Reads a quarter of a vector behind them.
HWY_INLINE void luminance_vector(const std::uint8_t* colour, const LuminanceWeights& weights,
                                 std::uint8_t* grey) {
    const std::size_t part = 3 * hn::Lanes(kQuads);
    const auto sums = [&](std::size_t i)
                          HWY_ATTR { return weighted_sums(colour + i * part, weights); };
    const ByteVector low = hn::BitCast(kBytes, hn::ConcatOdd(kWords, sums(1), sums(0)));
    const ByteVector high = hn::BitCast(kBytes, hn::ConcatOdd(kWords, sums(3), sums(2)));
    hn::StoreU(hn::ConcatEven(kBytes, high, low), kBytes, grey);
}

void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                   std::uint8_t* grey) {
    const std::size_t lanes = hn::Lanes(kBytes);
    const std::size_t read_ahead = (lanes / 4 + 2) / 3;
    if (width < lanes + read_ahead) return plain::luminance_row(colour, width, order, grey);
    const LuminanceWeights weights(order);
    const std::size_t last = width - read_ahead - lanes;
    for (std::size_t x = 0; x < last; x += lanes) {
        luminance_vector(colour + 3 * x, weights, grey + x);
    }
    luminance_vector(colour + 3 * last, weights, grey + last);
    const std::size_t end = width - read_ahead;
    plain::luminance_row(colour + 3 * end, read_ahead, order, grey + end);
}

HWY_INLINE void clamp_vector(const std::uint8_t* colour, std::uint8_t* grey) {
    ByteVector first, second, third;
    hn::LoadInterleaved3(kBytes, colour, first, second, third);
    const ByteVector chroma =
        hn::Sub(hn::Max(hn::Max(first, second), third), hn::Min(hn::Min(first, second), third));
    const ByteVector values = hn::LoadU(kBytes, grey);
    const ByteVector clamped = hn::Min(values, hn::Set(kBytes, std::uint8_t{kSaturatedMaximum}));
    const auto strong = hn::Gt(chroma, hn::Set(kBytes, std::uint8_t{kSaturatedChroma}));
    hn::StoreU(hn::IfThenElse(strong, clamped, values), kBytes, grey);
}

// Not zero where the difference is above the limit.
HWY_INLINE ByteVector excess(const std::uint8_t* first, const std::uint8_t* second,
                             ByteVector limit) {
    const ByteVector a = hn::LoadU(kBytes, first);
    const ByteVector b = hn::LoadU(kBytes, second);
    const ByteVector difference = hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
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
    const ByteVector darkest =
        hn::Min(hn::Min(hn::LoadU(kBytes, colour), hn::LoadU(kBytes, colour + lanes)),
                hn::LoadU(kBytes, colour + 2 * lanes));
    const ByteVector light = hn::Set(kBytes, std::uint8_t{255 - kSaturatedChroma});
    if (hn::AllTrue(kBytes, hn::Eq(hn::Min(darkest, light), light))) return false;
    const auto found = [=](std::size_t at) HWY_ATTR {
        const ByteVector half = hn::Set(kBytes, std::uint8_t{kSaturatedChroma / 2});
        return hn::And(hn::LoadU(kBytes, kSamePixel.bytes + at),
                       excess(colour + at, colour + at + 1, half));
    };
    const ByteVector any = hn::Or(hn::Or(found(0), found(lanes)), found(2 * lanes));
    return !hn::AllTrue(kBytes, hn::Eq(any, hn::Zero(kBytes)));
}

// Most of most pages is paper and ink without colour, which the test above is quick to pass over.
// The machine does not see then that the grey row will be wanted by who comes next.
void clamp_saturated(const std::uint8_t* colour, std::size_t width, std::uint8_t* grey) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width < lanes) return plain::clamp_saturated(colour, width, grey);
    for (std::size_t x = 0; x + lanes < width; x += lanes) {
        fetch_ahead(grey + x);
        if (may_be_saturated(colour + 3 * x, lanes)) clamp_vector(colour + 3 * x, grey + x);
    }
    const std::size_t last = width - lanes;
    clamp_vector(colour + 3 * last, grey + last);
}

bool differs_above(const std::uint8_t* first, const std::uint8_t* second, std::size_t count,
                   std::uint8_t limit) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (count < lanes) return plain::differs_above(first, second, count, limit);
    const ByteVector limits = hn::Set(kBytes, limit);
    const std::size_t last = count - lanes;
    ByteVector found = excess(first + last, second + last, limits);
    for (std::size_t x = 0; x < last; x += lanes) {
        found = hn::Or(found, excess(first + x, second + x, limits));
    }
    return !hn::AllTrue(kBytes, hn::Eq(found, hn::Zero(kBytes)));
}

// `sum` of the nine pixels around and at `centre`.
HWY_INLINE WordVector drawn_to_neighbours(WordVector sum, WordVector centre,
                                          hn::Vec<SignedWords> scale) {
    const WordVector nine = hn::Add(hn::ShiftLeft<3>(centre), centre);
    const auto difference = hn::BitCast(kSignedWords, hn::Sub(sum, nine));
    return hn::Add(centre, hn::BitCast(kWords, hn::MulHigh(difference, scale)));
}

// Lanes pixels from `row` on. With `left` the three rows one pixel to the left and `right` one
// pixel to the right, the even lane x has x - 1 and x in the bytes of `left`, x + 1 and x + 2 in
// those of `right`: the columns that the even and the odd pixel need, two of them in common.
HWY_INLINE void smooth_vector(const std::uint8_t* above, const std::uint8_t* row,
                              const std::uint8_t* below, hn::Vec<SignedWords> scale,
                              std::uint8_t* out) {
    const ByteVector above_left = hn::LoadU(kBytes, above - 1);
    const ByteVector above_right = hn::LoadU(kBytes, above + 1);
    const ByteVector below_left = hn::LoadU(kBytes, below - 1);
    const ByteVector below_right = hn::LoadU(kBytes, below + 1);
    const ByteVector left = hn::LoadU(kBytes, row - 1);
    const ByteVector right = hn::LoadU(kBytes, row + 1);
    const WordVector even_centre = odd_bytes(left);
    const WordVector odd_centre = even_bytes(right);
    const WordVector column0 =
        hn::Add(hn::Add(even_bytes(above_left), even_bytes(below_left)), even_bytes(left));
    const WordVector column1 =
        hn::Add(hn::Add(odd_bytes(above_left), odd_bytes(below_left)), even_centre);
    const WordVector column2 =
        hn::Add(hn::Add(even_bytes(above_right), even_bytes(below_right)), odd_centre);
    const WordVector column3 =
        hn::Add(hn::Add(odd_bytes(above_right), odd_bytes(below_right)), odd_bytes(right));
    const WordVector shared = hn::Add(column1, column2);
    const WordVector even = drawn_to_neighbours(hn::Add(column0, shared), even_centre, scale);
    const WordVector odd = drawn_to_neighbours(hn::Add(shared, column3), odd_centre, scale);
    hn::StoreU(interleave(even, odd), kBytes, out);
}

void smooth_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                std::size_t width, NeighbourWeight weight, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width < lanes + 2) return plain::smooth_row(above, row, below, width, weight, out);
    const auto scale = hn::Set(kSignedWords, static_cast<std::int16_t>(weight * 64));
    out[0] = row[0];
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) {
        smooth_vector(above + x, row + x, below + x, scale, out + x);
    }
    smooth_vector(above + last, row + last, below + last, scale, out + last);
    out[width - 1] = row[width - 1];
}

// Lanes pixels from `row` on; the columns are those of smooth_vector().
HWY_INLINE void gaussian_vector(const std::uint8_t* above, const std::uint8_t* row,
                                const std::uint8_t* below, std::uint8_t* out) {
    const auto columns = [=](std::ptrdiff_t from, WordVector& even, WordVector& odd) HWY_ATTR {
        const ByteVector a = hn::LoadU(kBytes, above + from);
        const ByteVector b = hn::LoadU(kBytes, row + from);
        const ByteVector c = hn::LoadU(kBytes, below + from);
        even = one_two_one(even_bytes(a), even_bytes(b), even_bytes(c));
        odd = one_two_one(odd_bytes(a), odd_bytes(b), odd_bytes(c));
    };
    WordVector column0, column1, column2, column3;
    columns(-1, column0, column1);
    columns(1, column2, column3);
    const auto mean = [](WordVector sum) HWY_ATTR {
        return hn::ShiftRight<4>(hn::Add(sum, hn::Set(kWords, std::uint16_t{8})));
    };
    hn::StoreU(interleave(mean(one_two_one(column0, column1, column2)),
                          mean(one_two_one(column1, column2, column3))),
               kBytes, out);
}

void gaussian_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width < lanes + 2) return plain::gaussian_row(above, row, below, width, out);
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) {
        gaussian_vector(above + x, row + x, below + x, out + x);
    }
    gaussian_vector(above + last, row + last, below + last, out + last);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(luminance_row);
HWY_EXPORT(clamp_saturated);
HWY_EXPORT(differs_above);
HWY_EXPORT(smooth_row);
HWY_EXPORT(gaussian_row);

void luminance_row(const std::uint8_t* colour, std::size_t width, ChannelOrder order,
                   std::uint8_t* grey) {
    HWY_DYNAMIC_DISPATCH(luminance_row)(colour, width, order, grey);
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

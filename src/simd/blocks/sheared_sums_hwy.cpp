// Vector forms of sheared_sums.h.
//
// The sums are taken a block at a time. The block stays in registers while every line that meets it
// is added from that line's offset, so that a vector of cells costs one unaligned load and one
// addition. Sums are of the width of a cell for as many lines as the largest cell allows (7 lines
// of bitonal edges), then of twice that width for many more (2047 of them), and doubles in the end,
// in which integers below 2^53 add exactly.
#include "simd/blocks/sheared_sums.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "simd/blocks/plain/sheared_sums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/sheared_sums_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Vectors of cells, and of sums that are twice as wide.
template <class Cell>
using Cells = hn::CappedTag<Cell, kLineMargin<Cell> / 4>;
template <class Cell>
using Sums = hn::RepartitionToWide<Cells<Cell>>;

// Where a line is read for a block of sums: at `cells + line * pitch + offset(line)`.
class Shear {
  public:
    template <class Cell>
    Shear(const CellLines<Cell>& image, int slope)
        : lines_(static_cast<std::int64_t>(image.lines)),
          length_(static_cast<std::int64_t>(image.length)),
          steepness_(slope < 0 ? -static_cast<std::int64_t>(slope) : slope),
          falling_(slope < 0),
          last_drift_(drift(lines_ - 1)) {}

    std::int64_t offset(std::int64_t first_sum, std::int64_t line) const {
        return falling_ ? first_sum - last_drift_ + drift(line) : first_sum - drift(line);
    }

    // The lines that meet the sums first_sum .. first_sum + block - 1: those whose offset is above
    // -block and below the length of a line. The drift never falls from line to line.
    std::int64_t first_line(std::int64_t first_sum, std::int64_t block) const {
        return drifting_from(falling_ ? last_drift_ - first_sum - block + 1
                                      : first_sum - length_ + 1);
    }
    std::int64_t end_line(std::int64_t first_sum, std::int64_t block) const {
        return drifting_from(falling_ ? length_ + last_drift_ - first_sum : first_sum + block);
    }

  private:
    std::int64_t drift(std::int64_t line) const {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(line * steepness_) /
                                         static_cast<std::uint64_t>(kSlopeScale));
    }

    // The first line that drifts by at least `least` cells, or the number of lines.
    std::int64_t drifting_from(std::int64_t least) const {
        if (least <= 0) return 0;
        if (least > last_drift_) return lines_;
        return (least * kSlopeScale + steepness_ - 1) / steepness_;
    }

    std::int64_t lines_;
    std::int64_t length_;
    std::int64_t steepness_;  // |slope|
    bool falling_;
    std::int64_t last_drift_;
};

// Sums of four vectors of cells, the even cells apart from the odd ones.
template <class Cell>
struct WideSums {
    HWY_ATTR WideSums() {}  // of the instruction set of its members

    hn::Vec<Sums<Cell>> even[4];
    hn::Vec<Sums<Cell>> odd[4];
};

// The sums of lines begin .. end - 1, which fit in the wide lanes.
template <class Cell>
HWY_INLINE WideSums<Cell> sum_lines(const CellLines<Cell>& image, const Shear& shear,
                                    std::int64_t first_sum, std::int64_t begin, std::int64_t end) {
    const Cells<Cell> d;
    const Sums<Cell> wide_d;
    constexpr int kBits = 8 * sizeof(Cell);
    const std::size_t lanes = hn::Lanes(d);
    const auto low_half = hn::Set(wide_d, std::numeric_limits<Cell>::max());
    // At most this many lines fit in narrow lanes.
    const std::int64_t most = std::numeric_limits<Cell>::max() / image.largest;
    const auto pitch = static_cast<std::int64_t>(image.pitch);

    WideSums<Cell> wide;
    for (int i = 0; i < 4; ++i) wide.even[i] = wide.odd[i] = hn::Zero(wide_d);
    for (std::int64_t line = begin; line < end;) {
        auto sum0 = hn::Zero(d), sum1 = sum0, sum2 = sum0, sum3 = sum0;
        const std::int64_t stop = std::min(end, line + most);
        for (; line < stop; ++line) {
            const Cell* from = image.cells + line * pitch + shear.offset(first_sum, line);
            sum0 = hn::Add(sum0, hn::LoadU(d, from));
            sum1 = hn::Add(sum1, hn::LoadU(d, from + lanes));
            sum2 = hn::Add(sum2, hn::LoadU(d, from + 2 * lanes));
            sum3 = hn::Add(sum3, hn::LoadU(d, from + 3 * lanes));
        }
        const hn::Vec<Sums<Cell>> pairs[4] = {hn::BitCast(wide_d, sum0), hn::BitCast(wide_d, sum1),
                                              hn::BitCast(wide_d, sum2), hn::BitCast(wide_d, sum3)};
        for (int i = 0; i < 4; ++i) {
            wide.even[i] = hn::Add(wide.even[i], hn::And(pairs[i], low_half));
            wide.odd[i] = hn::Add(wide.odd[i], hn::ShiftRight<kBits>(pairs[i]));
        }
    }
    return wide;
}

HWY_INLINE hn::Vec<hn::ScalableTag<double>> load_doubles(const std::uint16_t* from) {
    const hn::ScalableTag<double> d64;
    const hn::Rebind<std::int32_t, decltype(d64)> d32;
    const hn::Rebind<std::uint16_t, decltype(d64)> d16;
    return hn::PromoteTo(d64, hn::PromoteTo(d32, hn::LoadU(d16, from)));
}

HWY_INLINE hn::Vec<hn::ScalableTag<double>> load_doubles(const std::int32_t* from) {
    const hn::ScalableTag<double> d64;
    return hn::PromoteTo(d64, hn::LoadU(hn::Rebind<std::int32_t, decltype(d64)>(), from));
}

// Adds the wide sums to `sums`, in the order of the cells.
template <class Cell>
HWY_INLINE void add_to_doubles(const WideSums<Cell>& wide, double* sums) {
    // Wide sums of 16-bit cells leave the sign bit free: the conversion of signed values is
    // cheaper.
    using Wide = std::conditional_t<sizeof(Cell) == 1, std::uint16_t, std::int32_t>;
    const hn::Rebind<Wide, Sums<Cell>> wide_d;
    const hn::ScalableTag<double> d64;
    const std::size_t vector = 2 * hn::Lanes(wide_d);
    Wide in_order[kLineMargin<Cell>];
    for (std::size_t i = 0; i < 4; ++i)
        hn::StoreInterleaved2(hn::BitCast(wide_d, wide.even[i]), hn::BitCast(wide_d, wide.odd[i]),
                              wide_d, in_order + i * vector);
    for (std::size_t i = 0; i < 4 * vector; i += hn::Lanes(d64))
        hn::StoreU(hn::Add(hn::LoadU(d64, sums + i), load_doubles(in_order + i)), d64, sums + i);
}

template <class Cell>
HWY_INLINE void sum_sheared(const CellLines<Cell>& image, int slope, double* sums) {
    const Shear shear(image, slope);
    const auto block = static_cast<std::int64_t>(4 * hn::Lanes(Cells<Cell>()));
    const auto count = static_cast<std::int64_t>(sheared_length(image.lines, image.length, slope));
    // Wide sums hold this many lines, as signed values when they have 32 bits.
    constexpr std::uint32_t kWidest = sizeof(Cell) == 1 ? 0xFFFF : 0x7FFF'FFFF;
    const std::int64_t most = kWidest / image.largest;
    for (std::int64_t first_sum = 0; first_sum < count; first_sum += block) {
        double* out = sums + first_sum;
        std::fill_n(out, block, 0.0);
        const std::int64_t end = shear.end_line(first_sum, block);
        for (std::int64_t line = shear.first_line(first_sum, block); line < end; line += most) {
            const std::int64_t stop = std::min(end, line + most);
            add_to_doubles<Cell>(sum_lines(image, shear, first_sum, line, stop), out);
        }
    }
}

void sum_sheared_bytes(const CellLines<std::uint8_t>& image, int slope, double* sums) {
    sum_sheared(image, slope, sums);
}

void sum_sheared_words(const CellLines<std::uint16_t>& image, int slope, double* sums) {
    sum_sheared(image, slope, sums);
}

double sum_of_squares(const double* values, std::size_t count) {
    const hn::ScalableTag<double> d;
    const std::size_t lanes = hn::Lanes(d);
    auto sum0 = hn::Zero(d), sum1 = sum0;
    std::size_t i = 0;
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        const auto value0 = hn::LoadU(d, values + i);
        const auto value1 = hn::LoadU(d, values + i + lanes);
        sum0 = hn::Add(sum0, hn::Mul(value0, value0));
        sum1 = hn::Add(sum1, hn::Mul(value1, value1));
    }
    return hn::GetLane(hn::SumOfLanes(d, hn::Add(sum0, sum1))) +
           plain::sum_of_squares(values + i, count - i);
}

template <class Cell>
HWY_INLINE void add_2x2(const Cell* upper, const Cell* lower, std::size_t out_count, Cell* out) {
    const hn::ScalableTag<Cell> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= out_count; i += lanes) {
        hn::Vec<decltype(d)> upper_even, upper_odd, lower_even, lower_odd;
        hn::LoadInterleaved2(d, upper + 2 * i, upper_even, upper_odd);
        hn::LoadInterleaved2(d, lower + 2 * i, lower_even, lower_odd);
        hn::StoreU(hn::Add(hn::Add(upper_even, upper_odd), hn::Add(lower_even, lower_odd)), d,
                   out + i);
    }
    plain::add_cells_2x2(upper + 2 * i, lower + 2 * i, out_count - i, out + i);
}

void add_bytes_2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t out_count,
                   std::uint8_t* out) {
    add_2x2(upper, lower, out_count, out);
}

void add_words_2x2(const std::uint16_t* upper, const std::uint16_t* lower, std::size_t out_count,
                   std::uint16_t* out) {
    add_2x2(upper, lower, out_count, out);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(sum_sheared_bytes);
HWY_EXPORT(sum_sheared_words);
HWY_EXPORT(sum_of_squares);
HWY_EXPORT(add_bytes_2x2);
HWY_EXPORT(add_words_2x2);

void sum_sheared_lines(const CellLines<std::uint8_t>& image, int slope, double* sums) {
    HWY_DYNAMIC_DISPATCH(sum_sheared_bytes)(image, slope, sums);
}

void sum_sheared_lines(const CellLines<std::uint16_t>& image, int slope, double* sums) {
    HWY_DYNAMIC_DISPATCH(sum_sheared_words)(image, slope, sums);
}

double sum_of_squares(const double* values, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(sum_of_squares)(values, count);
}

void add_cells_2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t out_count,
                   std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(add_bytes_2x2)(upper, lower, out_count, out);
}

void add_cells_2x2(const std::uint16_t* upper, const std::uint16_t* lower, std::size_t out_count,
                   std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(add_words_2x2)(upper, lower, out_count, out);
}

}  // namespace simd
#endif  // HWY_ONCE

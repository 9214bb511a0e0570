// Vector form of block_fill.h. A pull runs along the row, each cell waiting for the one before:
// here sixteen cells are pulled in four steps over distances 1, 2, 4 and 8, which need not wait for
// the cells before them; those join as one value that reaches the first empty cells of the sixteen.
#include "simd/block_fill.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/block_fill_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class Tag>
HWY_INLINE hn::Vec<Tag> most_of_three(Tag d, const std::uint8_t* row) {
    return hn::Max(hn::Max(hn::LoadU(d, row - 1), hn::LoadU(d, row + 1)), hn::LoadU(d, row));
}

void widen_into_empty(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                      std::size_t width, std::uint8_t* out, std::uint8_t* was_empty) {
    if (width == 0) return;
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto none = hn::Zero(d);
    plain::mark_empty(row, 1, out, was_empty);
    std::size_t x = 1;
    for (; x + lanes + 1 <= width; x += lanes) {
        const auto cells = hn::LoadU(d, row + x);
        const auto around = hn::Max(hn::Max(most_of_three(d, above + x), most_of_three(d, row + x)),
                                    most_of_three(d, below + x));
        const auto widened = hn::IfThenElse(hn::Eq(cells, none), around, cells);
        const auto empty = hn::VecFromMask(d, hn::Eq(widened, none));
        hn::StoreU(empty, d, was_empty + x);
        hn::StoreU(hn::Or(widened, empty), d, out + x);
    }
    for (std::size_t at = x; at < width; ++at) {
        out[at] = at + 1 == width ? row[at] : plain::widened(above + at, row + at, below + at);
    }
    plain::mark_empty(out + x, width - x, out + x, was_empty + x);
}

using Sixteen = hn::FixedTag<std::uint8_t, 16>;
constexpr Sixteen kSixteen;

// The direction of a pull: where cells move to, and which one is the last of sixteen.
struct Forward {
    template <int kCells>
    static HWY_INLINE hn::Vec<Sixteen> move(hn::Vec<Sixteen> v) {
        return hn::ShiftLeftBytes<kCells>(kSixteen, v);
    }
    static constexpr std::uint8_t kLast = 15;
};

struct Backward {
    template <int kCells>
    static HWY_INLINE hn::Vec<Sixteen> move(hn::Vec<Sixteen> v) {
        return hn::ShiftRightBytes<kCells>(kSixteen, v);
    }
    static constexpr std::uint8_t kLast = 0;
};

// Each cell takes the cell kDistance before it unless that is blocked; `blocked` becomes what is
// blocked over twice the distance.
template <class Direction, int kDistance>
HWY_INLINE void step(hn::Vec<Sixteen>& cells, hn::Vec<Sixteen>& blocked) {
    cells = hn::Min(cells, hn::Or(Direction::template move<kDistance>(cells), blocked));
    blocked = hn::Or(blocked, Direction::template move<kDistance>(blocked));
}

// `cells` pulled along the row; `before` holds in all lanes the cell before the first one, and the
// last one afterwards.
template <class Direction>
HWY_INLINE hn::Vec<Sixteen> pull_sixteen(hn::Vec<Sixteen> cells, hn::Vec<Sixteen> filled,
                                         hn::Vec<Sixteen>& before) {
    // Nothing moves into the first cells, where a moved vector has zeros.
    const auto all = hn::Set(kSixteen, std::uint8_t{0xFF});
    auto blocked = hn::Or(filled, hn::Not(Direction::template move<1>(all)));
    step<Direction, 1>(cells, blocked);
    step<Direction, 2>(cells, blocked);
    step<Direction, 4>(cells, blocked);
    step<Direction, 8>(cells, blocked);
    filled = hn::Or(filled, Direction::template move<1>(filled));
    filled = hn::Or(filled, Direction::template move<2>(filled));
    filled = hn::Or(filled, Direction::template move<4>(filled));
    filled = hn::Or(filled, Direction::template move<8>(filled));
    cells = hn::Min(cells, hn::Or(before, filled));
    before = hn::TableLookupBytes(cells, hn::Set(kSixteen, Direction::kLast));
    return cells;
}

// Cells x .. x + 15 pulled from the next row and along their own.
template <class Direction>
HWY_INLINE void pull_cells(const std::uint8_t* near, const std::uint8_t* diagonal,
                           const std::uint8_t* was_empty, std::uint8_t* row,
                           hn::Vec<Sixteen>& before) {
    const auto filled = hn::Not(hn::LoadU(kSixteen, was_empty));
    const auto beside = hn::Min(hn::LoadU(kSixteen, near), hn::LoadU(kSixteen, diagonal));
    const auto cells = hn::Min(hn::LoadU(kSixteen, row), hn::Or(beside, filled));
    hn::StoreU(pull_sixteen<Direction>(cells, filled, before), kSixteen, row);
}

void pull_forward(const std::uint8_t* above, const std::uint8_t* was_empty, std::size_t width,
                  std::uint8_t* row) {
    if (width == 0) return;
    plain::pull_forward(above, was_empty, 0, 1, row);
    auto before = hn::Set(kSixteen, row[0]);
    std::size_t x = 1;
    for (; x + 16 <= width; x += 16) {
        pull_cells<Forward>(above + x, above + x - 1, was_empty + x, row + x, before);
    }
    plain::pull_forward(above, was_empty, x, width, row);
}

void pull_backward(const std::uint8_t* below, const std::uint8_t* was_empty, std::size_t width,
                   std::uint8_t* row) {
    if (width == 0) return;
    std::size_t end = width - 1;
    plain::pull_backward(below, was_empty, end, width, width, row);
    auto before = hn::Set(kSixteen, row[end]);
    for (; end >= 16; end -= 16) {
        const std::size_t x = end - 16;
        pull_cells<Backward>(below + x, below + x + 1, was_empty + x, row + x, before);
    }
    plain::pull_backward(below, was_empty, 0, end, width, row);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(widen_into_empty);
HWY_EXPORT(pull_forward);
HWY_EXPORT(pull_backward);

void widen_into_empty(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                      std::size_t width, std::uint8_t* out, std::uint8_t* was_empty) {
    HWY_DYNAMIC_DISPATCH(widen_into_empty)(above, row, below, width, out, was_empty);
}

void pull_forward(const std::uint8_t* above, const std::uint8_t* was_empty, std::size_t width,
                  std::uint8_t* row) {
    HWY_DYNAMIC_DISPATCH(pull_forward)(above, was_empty, width, row);
}

void pull_backward(const std::uint8_t* below, const std::uint8_t* was_empty, std::size_t width,
                   std::uint8_t* row) {
    HWY_DYNAMIC_DISPATCH(pull_backward)(below, was_empty, width, row);
}

}  // namespace simd
#endif  // HWY_ONCE

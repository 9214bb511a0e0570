// Vector form of block_fill.h. The minimum is propagated along the row, each cell waiting for the
// one before: here it crosses a vector in steps over distances 1, 2, 4, ..., which need not wait
// for the cells before them; those join as one value that reaches the first empty cells of the
// vector. Distances below 16 are taken inside blocks of sixteen cells, further ones from block to
// block.
//
// A row that is not a whole number of vectors ends with a vector that overlaps the one before it:
// propagating again changes nothing.
#include "simd/blocks/block_fill.h"

#include "simd/blocks/plain/block_fill.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/block_fill_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd::HWY_NAMESPACE {
namespace {

HWY_INLINE VecU8 most_of_three(const std::uint8_t* row) {
    return hn::Max(hn::Max(hn::LoadU(kU8, row - 1), hn::LoadU(kU8, row + 1)), hn::LoadU(kU8, row));
}

void dilate_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                       const std::uint8_t* below, std::size_t width, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width < lanes + 2) return plain::dilate_into_empty(above, row, below, width, out);
    const auto dilate = [=](std::size_t x) HWY_ATTR {
        const VecU8 cells = hn::LoadU(kU8, row + x);
        const VecU8 around = hn::Max(hn::Max(most_of_three(above + x), most_of_three(row + x)),
                                     most_of_three(below + x));
        hn::StoreU(hn::IfThenElse(hn::Eq(cells, hn::Zero(kU8)), around, cells), kU8, out + x);
    };
    out[0] = row[0];
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) dilate(x);
    dilate(last);
    out[width - 1] = row[width - 1];
}

// A block is what byte shifts and table lookups work on, whatever the size of the vector.
constexpr int kBlockCells = 16;
constexpr int kBlocks = static_cast<int>(hn::MaxLanes(kU8)) / kBlockCells;

using U32 = hn::Repartition<std::uint32_t, U8>;
constexpr U32 kU32;

struct BlockMove {
    static constexpr int kQuadsOfBlock = 4;
    static constexpr int kQuadsOfVector = kBlocks * kQuadsOfBlock;

    std::int32_t from[kQuadsOfVector] = {};
    std::uint32_t outside[kQuadsOfVector] = {};

    // Each block takes the one `distance` blocks behind it, or all take block `block`.
    constexpr explicit BlockMove(int distance, int block = -1) {
        for (int i = 0; i < kQuadsOfVector; ++i) {
            const int source = block < 0 ? i + distance * kQuadsOfBlock
                                         : block * kQuadsOfBlock + i % kQuadsOfBlock;
            const bool inside = 0 <= source && source < kQuadsOfVector;
            from[i] = inside ? source : 0;
            outside[i] = inside ? 0 : ~std::uint32_t{0};
        }
    }
};

// The direction: where cells move to, and which one is the last of a block.
struct Forward {
    template <int kCells>
    static HWY_INLINE VecU8 move(VecU8 v) {
        return hn::ShiftLeftBytes<kCells>(kU8, v);
    }
    template <int kDistance>
    static constexpr BlockMove kMove{-kDistance};
    static constexpr BlockMove kRepeatLast{0, kBlocks - 1};
    static constexpr std::uint8_t kLastCell = kBlockCells - 1;
};

struct Backward {
    template <int kCells>
    static HWY_INLINE VecU8 move(VecU8 v) {
        return hn::ShiftRightBytes<kCells>(kU8, v);
    }
    template <int kDistance>
    static constexpr BlockMove kMove{kDistance};
    static constexpr BlockMove kRepeatLast{0, 0};
    static constexpr std::uint8_t kLastCell = 0;
};

HWY_INLINE VecU8 outside_of(const BlockMove& move) {
    return hn::BitCast(kU8, hn::LoadU(kU32, move.outside));
}

HWY_INLINE VecU8 moved(VecU8 v, const BlockMove& move) {
    return hn::BitCast(
        kU8, hn::TableLookupLanes(hn::BitCast(kU32, v), hn::SetTableIndices(kU32, move.from)));
}

// Each cell takes the cell kDistance before it unless that is blocked; `blocked` becomes what is
// blocked over twice the distance.
template <class Direction, int kDistance>
HWY_INLINE void step(VecU8& cells, VecU8& blocked) {
    cells = hn::Min(cells, hn::Or(Direction::template move<kDistance>(cells), blocked));
    blocked = hn::Or(blocked, Direction::template move<kDistance>(blocked));
}

// The same for values of whole blocks. Nothing comes in from outside of the vector.
template <class Direction, int kDistance>
HWY_INLINE void block_step(VecU8& cells, VecU8& blocked) {
    constexpr const BlockMove& kMove = Direction::template kMove<kDistance>;
    const VecU8 outside = outside_of(kMove);
    cells = hn::Min(cells, hn::Or(hn::Or(moved(cells, kMove), outside), blocked));
    blocked = hn::Or(blocked, hn::AndNot(outside, moved(blocked, kMove)));
}

// `cells` with the minimum propagated along the row; `before` holds in all lanes the cell before
// the first one, and the last one afterwards.
template <class Direction>
HWY_INLINE VecU8 propagate_vector(VecU8 cells, VecU8 filled, VecU8& before) {
    // Nothing moves into the first cells of a block, where a moved vector has zeros.
    const VecU8 all = hn::Set(kU8, std::uint8_t{0xFF});
    VecU8 blocked = hn::Or(filled, hn::Not(Direction::template move<1>(all)));
    step<Direction, 1>(cells, blocked);
    step<Direction, 2>(cells, blocked);
    step<Direction, 4>(cells, blocked);
    step<Direction, 8>(cells, blocked);
    // From here on: a filled cell of the block up to this one.
    filled = hn::Or(filled, Direction::template move<1>(filled));
    filled = hn::Or(filled, Direction::template move<2>(filled));
    filled = hn::Or(filled, Direction::template move<4>(filled));
    filled = hn::Or(filled, Direction::template move<8>(filled));

    const VecU8 last_cell = hn::Set(kU8, Direction::kLastCell);
    VecU8 ends = hn::TableLookupBytes(cells, last_cell);
    VecU8 closed = hn::TableLookupBytes(filled, last_cell);
    if constexpr (kBlocks > 1) block_step<Direction, 1>(ends, closed);
    if constexpr (kBlocks > 2) block_step<Direction, 2>(ends, closed);

    if constexpr (kBlocks > 1) {
        constexpr const BlockMove& kNext = Direction::template kMove<1>;
        constexpr const BlockMove& kAll = Direction::kRepeatLast;
        const VecU8 outside = outside_of(kNext);
        const VecU8 entering = hn::Min(hn::Or(moved(ends, kNext), outside),
                                       hn::Or(before, hn::AndNot(outside, moved(closed, kNext))));
        cells = hn::Min(cells, hn::Or(entering, filled));
        before = hn::Min(moved(ends, kAll), hn::Or(before, moved(closed, kAll)));
    } else {
        cells = hn::Min(cells, hn::Or(before, filled));
        before = hn::Min(ends, hn::Or(before, closed));
    }
    return cells;
}

// A vector of cells, as they are now, after propagation from the next row and along their own.
template <class Direction>
HWY_INLINE VecU8 propagated(VecU8 now, VecU8 filled, const std::uint8_t* near,
                            const std::uint8_t* diagonal, VecU8& before) {
    const VecU8 beside = hn::Min(hn::LoadU(kU8, near), hn::LoadU(kU8, diagonal));
    return propagate_vector<Direction>(hn::Min(now, hn::Or(beside, filled)), filled, before);
}

HWY_INLINE VecU8 empty_among(VecU8 cells) {
    return hn::VecFromMask(kU8, hn::Eq(cells, hn::Zero(kU8)));
}

void propagate_forward(const std::uint8_t* cells, const std::uint8_t* above, std::size_t width,
                       std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width <= lanes) return plain::propagate_forward(cells, above, width, out);
    plain::propagate_forward(cells, above, 1, out);
    const auto propagate = [=](std::size_t x, VecU8& before) HWY_ATTR {
        const VecU8 own = hn::LoadU(kU8, cells + x);
        const VecU8 empty = empty_among(own);
        hn::StoreU(propagated<Forward>(hn::Or(own, empty), hn::Not(empty), above + x, above + x - 1,
                                       before),
                   kU8, out + x);
    };
    VecU8 before = hn::Set(kU8, out[0]);
    std::size_t x = 1;
    for (; x + lanes <= width; x += lanes) propagate(x, before);
    if (x == width) return;
    before = hn::Set(kU8, out[width - lanes - 1]);
    propagate(width - lanes, before);
}

void propagate_backward(const std::uint8_t* cells, const std::uint8_t* below, std::size_t width,
                        std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kU8);
    if (width <= lanes) return plain::propagate_backward(cells, below, width, out);
    const std::size_t first = width - 1;
    plain::propagate_backward(cells + first, below + first, 1, out + first);
    const auto propagate = [=](std::size_t x, VecU8& before) HWY_ATTR {
        const VecU8 filled = hn::Not(empty_among(hn::LoadU(kU8, cells + x)));
        hn::StoreU(
            propagated<Backward>(hn::LoadU(kU8, out + x), filled, below + x, below + x + 1, before),
            kU8, out + x);
    };
    VecU8 before = hn::Set(kU8, out[width - 1]);
    std::size_t end = width - 1;
    for (; end >= lanes; end -= lanes) propagate(end - lanes, before);
    if (end == 0) return;
    before = hn::Set(kU8, out[lanes]);
    propagate(0, before);
}

}  // namespace
}  // namespace simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace simd {

HWY_EXPORT(dilate_into_empty);
HWY_EXPORT(propagate_forward);
HWY_EXPORT(propagate_backward);

void dilate_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                       const std::uint8_t* below, std::size_t width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(dilate_into_empty)(above, row, below, width, out);
}

void propagate_forward(const std::uint8_t* cells, const std::uint8_t* above, std::size_t width,
                       std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(propagate_forward)(cells, above, width, out);
}

void propagate_backward(const std::uint8_t* cells, const std::uint8_t* below, std::size_t width,
                        std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(propagate_backward)(cells, below, width, out);
}

}  // namespace simd
#endif  // HWY_ONCE

// Vector forms of block_fill.h.
//
// Propagation along a row looks sequential: each empty cell waits for the one before it. Here a
// vector is crossed on three levels, none of which waits (drawn forwards, with `|` for the ends of
// blocks of 16 cells, which is what byte shifts and table lookups work in):
//
//     | . . . . |     inside every block, from cells 1, then 2, 4 and 8 away, so that each cell has
//       -> -> ->      met all cells before it;
//     |       e | |   then the value at the end of every block goes on over the next blocks, as far
//             ->  ->  as these are empty throughout;
//     b | . . . . |   last, the cell before the vector enters it up to its first filled cell.
//     ->
//
// A row that is not a number of full vectors ends with a vector that overlaps the one before it:
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

constexpr int kBlockCells = 16;
constexpr int kBlocks = static_cast<int>(hn::MaxLanes(kU8)) / kBlockCells;

using U32 = hn::Repartition<std::uint32_t, U8>;
constexpr U32 kU32;

// Where the blocks of a vector are taken from, in lanes of four cells.
struct BlockPermutation {
    static constexpr int kLanesOfBlock = 4;
    static constexpr int kLanes = kBlocks * kLanesOfBlock;

    std::int32_t from[kLanes] = {};
    std::uint32_t outside[kLanes] = {};  // all ones for blocks that are taken from no place

    // Every block takes the one `distance` blocks behind it.
    static constexpr BlockPermutation move(int distance) {
        BlockPermutation result;
        for (int i = 0; i < kLanes; ++i) {
            const int source = i + distance * kLanesOfBlock;
            const bool inside = 0 <= source && source < kLanes;
            result.from[i] = inside ? source : 0;
            result.outside[i] = inside ? 0 : ~std::uint32_t{0};
        }
        return result;
    }
    // Every block takes the same one.
    static constexpr BlockPermutation repeat(int block) {
        BlockPermutation result;
        for (int i = 0; i < kLanes; ++i) result.from[i] = block * kLanesOfBlock + i % kLanesOfBlock;
        return result;
    }

    HWY_INLINE VecU8 of(VecU8 v) const {
        const auto lanes = hn::SetTableIndices(kU32, from);
        return hn::BitCast(kU8, hn::TableLookupLanes(hn::BitCast(kU32, v), lanes));
    }
    HWY_INLINE VecU8 from_outside() const { return hn::BitCast(kU8, hn::LoadU(kU32, outside)); }
};

// A direction: how cells move inside of their blocks, the number of the block before each one
// relative to its own, and which block and which cell of a block are the last ones.
struct Forward {
    template <int kCells>
    static HWY_INLINE VecU8 move(VecU8 v) {
        return hn::ShiftLeftBytes<kCells>(kU8, v);
    }
    static constexpr int block_before() { return -1; }
    static constexpr int last_block() { return kBlocks - 1; }
    static constexpr std::uint8_t last_cell() { return kBlockCells - 1; }
};

struct Backward {
    template <int kCells>
    static HWY_INLINE VecU8 move(VecU8 v) {
        return hn::ShiftRightBytes<kCells>(kU8, v);
    }
    static constexpr int block_before() { return 1; }
    static constexpr int last_block() { return 0; }
    static constexpr std::uint8_t last_cell() { return 0; }
};

// Each cell takes the cell kDistance before it unless that is blocked; `blocked` becomes what is
// blocked over twice the distance.
template <class Direction, int kDistance>
HWY_INLINE void step(VecU8& cells, VecU8& blocked) {
    cells = hn::Min(cells, hn::Or(Direction::template move<kDistance>(cells), blocked));
    blocked = hn::Or(blocked, Direction::template move<kDistance>(blocked));
}

// The first level. Nothing moves into the first cells of a block, where a moved vector has zeros.
template <class Direction>
HWY_INLINE VecU8 propagate_in_blocks(VecU8 cells, VecU8 filled) {
    const VecU8 all = hn::Set(kU8, std::uint8_t{0xFF});
    VecU8 blocked = hn::Or(filled, hn::Not(Direction::template move<1>(all)));
    step<Direction, 1>(cells, blocked);
    step<Direction, 2>(cells, blocked);
    step<Direction, 4>(cells, blocked);
    step<Direction, 8>(cells, blocked);
    return cells;
}

// All ones from the first filled cell of each block on: what is before the block stops there.
template <class Direction>
HWY_INLINE VecU8 from_first_filled(VecU8 filled) {
    filled = hn::Or(filled, Direction::template move<1>(filled));
    filled = hn::Or(filled, Direction::template move<2>(filled));
    filled = hn::Or(filled, Direction::template move<4>(filled));
    return hn::Or(filled, Direction::template move<8>(filled));
}

// In all cells of each block, the value at its end; and all ones if it has a filled cell, so that
// nothing passes through.
struct BlockEnds {
    VecU8 values;
    VecU8 closed;
};

template <class Direction>
HWY_INLINE BlockEnds ends_of_blocks(VecU8 cells, VecU8 closed) {
    const VecU8 last_cell = hn::Set(kU8, Direction::last_cell());
    return {hn::TableLookupBytes(cells, last_cell), hn::TableLookupBytes(closed, last_cell)};
}

// step() for ends of blocks. Nothing comes in from outside of the vector.
template <class Direction, int kDistance>
HWY_INLINE void block_step(BlockEnds& ends) {
    static constexpr auto kMove = BlockPermutation::move(kDistance * Direction::block_before());
    const VecU8 outside = kMove.from_outside();
    const VecU8 arriving = hn::Or(kMove.of(ends.values), outside);
    ends.values = hn::Min(ends.values, hn::Or(arriving, ends.closed));
    ends.closed = hn::Or(ends.closed, hn::AndNot(outside, kMove.of(ends.closed)));
}

// The second level. Afterwards the ends tell of all blocks up to each one.
template <class Direction>
HWY_INLINE void propagate_over_blocks(BlockEnds& ends) {
    if constexpr (kBlocks > 1) block_step<Direction, 1>(ends);
    if constexpr (kBlocks > 2) block_step<Direction, 2>(ends);
}

// What enters each block: the end of the block before it, and `before` where that gets there.
template <class Direction>
HWY_INLINE VecU8 entering_blocks(const BlockEnds& ends, VecU8 before) {
    if constexpr (kBlocks == 1) {
        return before;
    } else {
        static constexpr auto kMove = BlockPermutation::move(Direction::block_before());
        const VecU8 outside = kMove.from_outside();
        return hn::Min(hn::Or(kMove.of(ends.values), outside),
                       hn::Or(before, hn::AndNot(outside, kMove.of(ends.closed))));
    }
}

// What leaves the vector.
template <class Direction>
HWY_INLINE VecU8 leaving_vector(const BlockEnds& ends, VecU8 before) {
    if constexpr (kBlocks == 1) {
        return hn::Min(ends.values, hn::Or(before, ends.closed));
    } else {
        static constexpr auto kLast = BlockPermutation::repeat(Direction::last_block());
        return hn::Min(kLast.of(ends.values), hn::Or(before, kLast.of(ends.closed)));
    }
}

// `cells` after propagation along the row. `before` has in all lanes the cell before the first one,
// and afterwards the last one.
template <class Direction>
HWY_INLINE VecU8 propagate_vector(VecU8 cells, VecU8 filled, VecU8& before) {
    cells = propagate_in_blocks<Direction>(cells, filled);
    const VecU8 closed = from_first_filled<Direction>(filled);
    BlockEnds ends = ends_of_blocks<Direction>(cells, closed);
    propagate_over_blocks<Direction>(ends);
    cells = hn::Min(cells, hn::Or(entering_blocks<Direction>(ends, before), closed));
    before = leaving_vector<Direction>(ends, before);
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

// Vector form of block_fill.h. The minimum is propagated along the row, each cell waiting for the
// one before: here it crosses a vector in steps over distances 1, 2, 4, ..., which need not wait
// for the cells before them; those join as one value that reaches the first empty cells of the
// vector. Distances below 16 are taken inside blocks of sixteen cells, further ones from block to
// block.
//
// A row that is not a whole number of vectors ends with a vector that overlaps the one before it:
// propagating again changes nothing.
#include "simd/blocks/block_fill.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/blocks/block_fill_hwy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/bits/word_vectors.h"

HWY_BEFORE_NAMESPACE();
namespace simd {
namespace HWY_NAMESPACE {

HWY_INLINE ByteVector most_of_three(const std::uint8_t* row) {
    return hn::Max(hn::Max(hn::LoadU(kBytes, row - 1), hn::LoadU(kBytes, row + 1)),
                   hn::LoadU(kBytes, row));
}

void dilate_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                       const std::uint8_t* below, std::size_t width, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width < lanes + 2) return plain::dilate_into_empty(above, row, below, width, out);
    const auto dilate = [=](std::size_t x) HWY_ATTR {
        const ByteVector cells = hn::LoadU(kBytes, row + x);
        const ByteVector around = hn::Max(hn::Max(most_of_three(above + x), most_of_three(row + x)),
                                          most_of_three(below + x));
        hn::StoreU(hn::IfThenElse(hn::Eq(cells, hn::Zero(kBytes)), around, cells), kBytes, out + x);
    };
    out[0] = row[0];
    const std::size_t last = width - 1 - lanes;
    for (std::size_t x = 1; x < last; x += lanes) dilate(x);
    dilate(last);
    out[width - 1] = row[width - 1];
}

// A block is what byte shifts and table lookups work on, whatever the size of the vector.
constexpr int kBlockCells = 16;
constexpr int kBlocks = static_cast<int>(hn::MaxLanes(kBytes)) / kBlockCells;

using Quads = hn::Repartition<std::uint32_t, Bytes>;
constexpr Quads kQuads;

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
    static HWY_INLINE ByteVector move(ByteVector v) {
        return hn::ShiftLeftBytes<kCells>(kBytes, v);
    }
    template <int kDistance>
    static constexpr BlockMove kMove{-kDistance};
    static constexpr BlockMove kRepeatLast{0, kBlocks - 1};
    static constexpr std::uint8_t kLastCell = kBlockCells - 1;
};

struct Backward {
    template <int kCells>
    static HWY_INLINE ByteVector move(ByteVector v) {
        return hn::ShiftRightBytes<kCells>(kBytes, v);
    }
    template <int kDistance>
    static constexpr BlockMove kMove{kDistance};
    static constexpr BlockMove kRepeatLast{0, 0};
    static constexpr std::uint8_t kLastCell = 0;
};

HWY_INLINE ByteVector outside_of(const BlockMove& move) {
    return hn::BitCast(kBytes, hn::LoadU(kQuads, move.outside));
}

HWY_INLINE ByteVector moved(ByteVector v, const BlockMove& move) {
    return hn::BitCast(kBytes, hn::TableLookupLanes(hn::BitCast(kQuads, v),
                                                    hn::SetTableIndices(kQuads, move.from)));
}

// Each cell takes the cell kDistance before it unless that is blocked; `blocked` becomes what is
// blocked over twice the distance.
template <class Direction, int kDistance>
HWY_INLINE void step(ByteVector& cells, ByteVector& blocked) {
    cells = hn::Min(cells, hn::Or(Direction::template move<kDistance>(cells), blocked));
    blocked = hn::Or(blocked, Direction::template move<kDistance>(blocked));
}

// The same for values of whole blocks. Nothing comes in from outside of the vector.
template <class Direction, int kDistance>
HWY_INLINE void block_step(ByteVector& cells, ByteVector& blocked) {
    constexpr const BlockMove& kMove = Direction::template kMove<kDistance>;
    const ByteVector outside = outside_of(kMove);
    cells = hn::Min(cells, hn::Or(hn::Or(moved(cells, kMove), outside), blocked));
    blocked = hn::Or(blocked, hn::AndNot(outside, moved(blocked, kMove)));
}

// `cells` with the minimum propagated along the row; `before` holds in all lanes the cell before
// the first one, and the last one afterwards.
template <class Direction>
HWY_INLINE ByteVector propagate_vector(ByteVector cells, ByteVector filled, ByteVector& before) {
    // Nothing moves into the first cells of a block, where a moved vector has zeros.
    const ByteVector all = hn::Set(kBytes, std::uint8_t{0xFF});
    ByteVector blocked = hn::Or(filled, hn::Not(Direction::template move<1>(all)));
    step<Direction, 1>(cells, blocked);
    step<Direction, 2>(cells, blocked);
    step<Direction, 4>(cells, blocked);
    step<Direction, 8>(cells, blocked);
    // From here on: a filled cell of the block up to this one.
    filled = hn::Or(filled, Direction::template move<1>(filled));
    filled = hn::Or(filled, Direction::template move<2>(filled));
    filled = hn::Or(filled, Direction::template move<4>(filled));
    filled = hn::Or(filled, Direction::template move<8>(filled));

    const ByteVector last_cell = hn::Set(kBytes, Direction::kLastCell);
    ByteVector ends = hn::TableLookupBytes(cells, last_cell);
    ByteVector closed = hn::TableLookupBytes(filled, last_cell);
    if constexpr (kBlocks > 1) block_step<Direction, 1>(ends, closed);
    if constexpr (kBlocks > 2) block_step<Direction, 2>(ends, closed);

    if constexpr (kBlocks > 1) {
        constexpr const BlockMove& kNext = Direction::template kMove<1>;
        constexpr const BlockMove& kAll = Direction::kRepeatLast;
        const ByteVector outside = outside_of(kNext);
        const ByteVector entering =
            hn::Min(hn::Or(moved(ends, kNext), outside),
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
HWY_INLINE ByteVector propagated(ByteVector now, ByteVector filled, const std::uint8_t* near,
                                 const std::uint8_t* diagonal, ByteVector& before) {
    const ByteVector beside = hn::Min(hn::LoadU(kBytes, near), hn::LoadU(kBytes, diagonal));
    return propagate_vector<Direction>(hn::Min(now, hn::Or(beside, filled)), filled, before);
}

HWY_INLINE ByteVector empty_among(ByteVector cells) {
    return hn::VecFromMask(kBytes, hn::Eq(cells, hn::Zero(kBytes)));
}

void propagate_forward(const std::uint8_t* cells, const std::uint8_t* above, std::size_t width,
                       std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width <= lanes) return plain::propagate_forward(cells, above, 0, width, out);
    plain::propagate_forward(cells, above, 0, 1, out);
    const auto propagate = [=](std::size_t x, ByteVector& before) HWY_ATTR {
        const ByteVector own = hn::LoadU(kBytes, cells + x);
        const ByteVector empty = empty_among(own);
        hn::StoreU(propagated<Forward>(hn::Or(own, empty), hn::Not(empty), above + x, above + x - 1,
                                       before),
                   kBytes, out + x);
    };
    ByteVector before = hn::Set(kBytes, out[0]);
    std::size_t x = 1;
    for (; x + lanes <= width; x += lanes) propagate(x, before);
    if (x == width) return;
    before = hn::Set(kBytes, out[width - lanes - 1]);
    propagate(width - lanes, before);
}

void propagate_backward(const std::uint8_t* cells, const std::uint8_t* below, std::size_t width,
                        std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(kBytes);
    if (width <= lanes) return plain::propagate_backward(cells, below, 0, width, width, out);
    plain::propagate_backward(cells, below, width - 1, width, width, out);
    const auto propagate = [=](std::size_t x, ByteVector& before) HWY_ATTR {
        const ByteVector filled = hn::Not(empty_among(hn::LoadU(kBytes, cells + x)));
        hn::StoreU(propagated<Backward>(hn::LoadU(kBytes, out + x), filled, below + x,
                                        below + x + 1, before),
                   kBytes, out + x);
    };
    ByteVector before = hn::Set(kBytes, out[width - 1]);
    std::size_t end = width - 1;
    for (; end >= lanes; end -= lanes) propagate(end - lanes, before);
    if (end == 0) return;
    before = hn::Set(kBytes, out[lanes]);
    propagate(0, before);
}

}  // namespace HWY_NAMESPACE
}  // namespace simd
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

// A byte for every 4 x 4 block of a page: where local thresholds are collected before they are
// applied.
//
// Use: auto blocks = BlockMap::of_page(height, width); blocks.row(i)[j] is the block of the pixels
// 4 i .. 4 i + 3 down and 4 j .. 4 j + 3 across. 0 is an empty block.
#pragma once

#include <cstddef>
#include <cstdint>

#include "binarization/blocks.h"
#include "frame/buffer.h"

namespace binarization {

struct BlockMap {
    std::size_t height = 0;  // blocks
    std::size_t width = 0;
    frame::Buffer<std::uint8_t> cells;

    // All blocks empty.
    static BlockMap of_page(int page_height, int page_width) {
        BlockMap map;
        map.height = blocks_along(static_cast<std::size_t>(page_height));
        map.width = blocks_along(static_cast<std::size_t>(page_width));
        map.cells = frame::Buffer<std::uint8_t>::zeroed(map.height * map.width);
        return map;
    }

    std::uint8_t* row(std::size_t i) { return cells.data() + i * width; }
    const std::uint8_t* row(std::size_t i) const { return cells.data() + i * width; }
};

}  // namespace binarization

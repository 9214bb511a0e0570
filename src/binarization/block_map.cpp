#include "binarization/block_map.h"

#include "simd/blocks/block_fill.h"

namespace binarization {

void propagate_lowest(const BlockMap& map, PaddedRows& scratch, BlockMap& out) {
    const std::size_t width = map.width();
    const std::size_t last = map.height() - 1;
    std::uint8_t* above = scratch.row(0);
    std::memset(above, 255, width);
    for (std::size_t i = 0; i <= last; ++i) {
        simd::propagate_forward(map.row(i), above, width, out.row(i));
        above = out.row(i);
    }
    for (std::size_t i = map.height(); i-- > 0;) {
        simd::propagate_backward(map.row(i), out.row(std::min(i + 1, last)), width, out.row(i));
    }
}

}  // namespace binarization

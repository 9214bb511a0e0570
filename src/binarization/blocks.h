// The blocks of 4 x 4 pixels that have thresholds of their own.
#pragma once

#include <cstddef>

namespace binarization {

constexpr std::size_t kBlockPixels = 4;  // along each side

// The last block of a row or column takes the pixels that are left.
constexpr std::size_t blocks_along(std::size_t pixels) {
    return (pixels + kBlockPixels - 1) / kBlockPixels;
}

}  // namespace binarization

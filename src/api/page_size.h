// Sizes of pages on their way out.
#pragma once

#include <cstdint>
#include <limits>

#include "api/guard.h"

namespace api {

// Stores a size that was computed in 64 bits, rows and pixels in a row; refuses one beyond int,
// storing nothing. Size: a type with the members height and width.
template <class Size>
int store_size(const Size& size, int* height, int* width) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    if (size.height > kMost || size.width > kMost) return kFailure;
    *height = static_cast<int>(size.height);
    *width = static_cast<int>(size.width);
    return kSuccess;
}

}  // namespace api

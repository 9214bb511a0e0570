// How arrays of records grow.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/buffer.h"

namespace ink {

// A buffer of `count` values, of which the first are those of `filled`; the others are
// uninitialised. Throws std::bad_alloc.
template <class T>
frame::Buffer<T> larger_buffer(const frame::Buffer<T>& filled, std::size_t count) {
    frame::Buffer<T> larger(count);
    std::copy_n(filled.begin(), filled.size(), larger.begin());
    return larger;
}

}  // namespace ink

// Bitonal pages combined byte by byte, and their copies. What buffer_logic.h does for buffers of
// one geometry, on the rows of pages that may differ in their strides.
//
// Only the bytes that have pixels are touched; padding bits among them take part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/page.h"
#include "common/views.h"
#include "ink/buffer_logic.h"

namespace ink {

// Each byte of a page becomes combine(it, the byte of the other), of which the low eight bits
// count. Other: a page of the same size, or what else has a row(y) of as many bytes.
template <class Other, class Combine>
void combine_pages(common::MutableBitonalView page, const Other& other, Combine combine) {
    const auto bytes = static_cast<std::size_t>(common::bitonal_bytes(page.width));
    for (std::int32_t y = 0; y < page.height; ++y) {
        combine_bytes(page.row(y), other.row(y), bytes, combine);
    }
}

inline void or_page(common::MutableBitonalView page, common::BitonalView other) {
    combine_pages(page, other, [](int a, int b) { return a | b; });
}

inline void and_page(common::MutableBitonalView page, common::BitonalView other) {
    combine_pages(page, other, [](int a, int b) { return a & b; });
}

// A copy with rows as short as its pixels allow. Throws std::bad_alloc.
inline common::BitonalPage copy_of(common::BitonalView page) {
    const auto bytes = static_cast<std::ptrdiff_t>(common::bitonal_bytes(page.width));
    common::BitonalPage copy(page.height, page.width, bytes);
    for (std::int32_t y = 0; y < page.height; ++y) {
        std::memcpy(copy.view().row(y), page.row(y), static_cast<std::size_t>(bytes));
    }
    return copy;
}

}  // namespace ink

// How much may be decoded or held beside a page.
#pragma once

#include <cstddef>
#include <cstdint>

#include "files/page_place.h"

namespace tool::files {

// Files state any size for their pieces. What is more than 16 MB and more than 8 bytes per pixel
// (four samples of 16 bits) is out of proportion to its page.
constexpr bool in_proportion(std::uint64_t bytes, const PagePlace& page) {
    constexpr std::uint64_t kAlwaysTaken = 16 << 20;
    constexpr std::uint64_t kBytesPerPixel = 8;
    return bytes <= kAlwaysTaken || bytes <= kBytesPerPixel *
                                                 static_cast<std::uint64_t>(page.width) *
                                                 static_cast<std::uint64_t>(page.height);
}

}  // namespace tool::files

// A hint to the processor that the bytes 4 KB ahead will be read soon. Its own prefetching ends
// with each page of memory, which is about a row of an image.
#pragma once

#include <hwy/cache_control.h>

#include <cstdint>

namespace simd {

// The address need not exist: nothing is read.
inline void fetch_ahead(const std::uint8_t* bytes) {
    constexpr std::uintptr_t kDistance = 4096;
    const auto place = reinterpret_cast<std::uintptr_t>(bytes) + kDistance;
    hwy::Prefetch(reinterpret_cast<const std::uint8_t*>(place));
}

}  // namespace simd

// Plain forms of bit_windows.h.
#pragma once

#include <functional>

#include "common/byte_order.h"
#include "simd/bits/bit_windows.h"

namespace simd::plain {

inline bool swap_word_bytes(std::uint64_t* words, std::size_t count) {
    bool any = false;
    for (std::size_t i = 0; i < count; ++i) {
        words[i] = common::swap_bytes(words[i]);
        any |= words[i] != 0;
    }
    return any;
}

// Combines each pixel with the one at x + distance, in the order in which that one is still as it
// was.
template <class Operation>
bool combine_with_moved(std::uint64_t* words, std::size_t count, std::ptrdiff_t distance,
                        const Operation& operation) {
    const auto ink = [=](std::ptrdiff_t x) { return (words[x >> 6] >> (63 - (x & 63)) & 1) != 0; };
    const auto pixels = static_cast<std::ptrdiff_t>(64 * count);
    bool any = false;
    for (std::ptrdiff_t i = 0; i < pixels; ++i) {
        const std::ptrdiff_t x = distance > 0 ? i : pixels - 1 - i;
        const bool combined = operation(ink(x), ink(x + distance));
        if (combined != ink(x)) words[x >> 6] ^= std::uint64_t{1} << (63 - (x & 63));
        any |= combined;
    }
    return any;
}

inline bool and_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved(words, count, static_cast<std::ptrdiff_t>(pixels),
                              std::logical_and<bool>());
}
inline bool and_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved(words, count, -static_cast<std::ptrdiff_t>(pixels),
                              std::logical_and<bool>());
}
inline bool or_following(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved(words, count, static_cast<std::ptrdiff_t>(pixels),
                              std::logical_or<bool>());
}
inline bool or_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels) {
    return combine_with_moved(words, count, -static_cast<std::ptrdiff_t>(pixels),
                              std::logical_or<bool>());
}

}  // namespace simd::plain

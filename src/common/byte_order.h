// The order of bytes in machine words. Bitonal rows have their leftmost pixel in the most
// significant bit of their first byte, so a word of pixels is a big-endian number; the kernels are
// written for little-endian machines, and everything else follows them.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace common {

static_assert(std::endian::native == std::endian::little,
              "the library is written for little-endian machines");

constexpr std::uint64_t swap_bytes(std::uint64_t word) {
    return __builtin_bswap64(word);
}
constexpr std::uint32_t swap_bytes(std::uint32_t word) {
    return __builtin_bswap32(word);
}

// Eight bytes as a number, the first byte in the most significant place: 64 pixels of a bitonal row
// with the leftmost one in the most significant bit.
inline std::uint64_t load_big_endian(const std::uint8_t* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return swap_bytes(word);
}

}  // namespace common

// Strings of pixels combined, in place, with themselves moved by some pixels: the steps that
// sliding windows along rows are built of. plain/bit_windows.h says what each of them computes.
//
// The pixels are the bits of 64-bit words, the first pixel in the most significant bit of the first
// word. Bitonal rows become words, and words rows, by swap_word_bytes().
//
// Keep true: `count` is a multiple of kWindowWords. Before and behind the words there are
// margin_words(pixels) more, which may be read; they hold the pixels beyond the ends of the string.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr std::size_t kWindowWords = 8;

constexpr std::size_t margin_words(std::size_t pixels) {
    return pixels / 64 + 1 + kWindowWords;
}

// Reverses the bytes of each word. Returns whether any bit is set.
bool swap_word_bytes(std::uint64_t* words, std::size_t count);

// Each pixel becomes the AND, or the OR, of itself and the pixel that stands `pixels` (at least 1)
// behind it (following) or before it (preceding). Returns whether any bit is set afterwards.
bool and_following(std::uint64_t* words, std::size_t count, std::size_t pixels);
bool and_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels);
bool or_following(std::uint64_t* words, std::size_t count, std::size_t pixels);
bool or_preceding(std::uint64_t* words, std::size_t count, std::size_t pixels);

}  // namespace simd

// One pixel at a time: the helpers that every slow model in this folder reads and writes images
// with.
//
// A bitonal row holds eight pixels per byte, the leftmost in the most significant bit; 1 is ink.
// The caller keeps the coordinates inside the buffer; bits beyond the width of a row are ordinary
// bits to these helpers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace model {

inline std::size_t offset(int row, int stride, int byte) {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(row) * stride + byte);
}

inline bool get_bit(const unsigned char* image, int stride, int x, int y) {
    return ((image[offset(y, stride, x / 8)] >> (7 - x % 8)) & 1) != 0;
}

inline void set_bit(unsigned char* image, int stride, int x, int y, bool ink) {
    unsigned char& byte = image[offset(y, stride, x / 8)];
    const int mask = 0x80 >> (x % 8);
    byte = static_cast<unsigned char>(ink ? byte | mask : byte & ~mask);
}

inline int ceil_div(int value, int by) {
    return value / by + (value % by > 0 ? 1 : 0);
}

// Bytes of a bitonal row padded to whole 32-bit words.
inline int word_stride(int width) {
    return 4 * ceil_div(width, 32);
}

// A picture of single pixels; everything outside its frame reads as paper, and ink set there is
// lost.
struct Bits {
    int height = 0;
    int width = 0;
    std::vector<char> pixels;

    Bits(int h, int w)
        : height(h),
          width(w),
          pixels(static_cast<std::size_t>(h) * static_cast<std::size_t>(w), 0) {}

    bool inside(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height; }
    std::size_t at(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
    bool get(int x, int y) const { return inside(x, y) && pixels[at(x, y)] != 0; }
    void set(int x, int y, bool ink) {
        if (inside(x, y)) pixels[at(x, y)] = ink ? 1 : 0;
    }
};

inline Bits unpack(const unsigned char* image, int height, int width, int stride) {
    Bits bits(height, width);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) bits.set(x, y, get_bit(image, stride, x, y));
    return bits;
}

}  // namespace model

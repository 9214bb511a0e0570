// The internal images and the ring of rows, on plain vectors.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <vector>

#include "pixels.h"

namespace model {

using Bytes = std::vector<unsigned char>;

// (right, bottom, left, top), right and bottom exclusive; all 0 without a white pixel. Every white
// pixel proposes the rectangle that hangs from the top of its white column down to it, as wide as
// it goes; the first of the largest wins, in raster order of the proposing pixels.
inline std::array<double, 4> largest_white_rectangle(const unsigned char* image, int height,
                                                     int width, int stride) {
    std::vector<int> run_above(static_cast<std::size_t>(width), 0);
    const auto whites = [&](int x) { return run_above[static_cast<std::size_t>(x)]; };
    std::array<double, 4> best{};
    long long best_area = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            run_above[static_cast<std::size_t>(x)] =
                get_bit(image, stride, x, y) ? 0 : whites(x) + 1;
        for (int x = 0; x < width; ++x) {
            if (whites(x) == 0) continue;
            int left = x;
            int right = x + 1;
            while (left > 0 && whites(left - 1) >= whites(x)) --left;
            while (right < width && whites(right) >= whites(x)) ++right;
            const long long area = static_cast<long long>(right - left) * whites(x);
            if (area > best_area) {
                best_area = area;
                best = {static_cast<double>(right), static_cast<double>(y + 1),
                        static_cast<double>(left), static_cast<double>(y - whites(x) + 1)};
            }
        }
    }
    return best;
}

// Bitonal rows whose pixel 0 is `bit_offset` bits into their first byte, as packed grey bytes.
inline Bytes grey_from_bitonal(const unsigned char* image, int height, int width, int stride,
                               int bit_offset = 0) {
    Bytes grey(offset(height, width, 0));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            grey[offset(y, width, x)] = get_bit(image, stride, bit_offset + x, y) ? 0 : 255;
    return grey;
}

// Black at or below the threshold; rows of whole 32-bit words with clear padding.
inline Bytes bitonal_from_grey(const Bytes& grey, int height, int width, int threshold) {
    Bytes bits(offset(height, word_stride(width), 0), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            set_bit(bits.data(), word_stride(width), x, y, grey[offset(y, width, x)] <= threshold);
    return bits;
}

// Type 1 takes the source where the mask's bits are 1, type 2 where they are 0; other types stay.
inline Bytes copy_where_mask_is_black(int type, const Bytes& target, const Bytes& source,
                                      const Bytes& mask) {
    Bytes result = target;
    for (std::size_t i = 0; i < target.size(); ++i)
        for (int bit = 0; bit < 8; ++bit) {
            const bool masked = get_bit(&mask[i], 0, bit, 0);
            const bool take = (type == 1 && masked) || (type == 2 && !masked);
            if (take) set_bit(&result[i], 0, bit, 0, get_bit(&source[i], 0, bit, 0));
        }
    return result;
}

inline unsigned int get_pixel(int type, const Bytes& image, int stride, int width, int x, int y) {
    const auto byte = [&](int bytes_per_pixel, int i) -> unsigned int {
        return image[offset(y, width * bytes_per_pixel, x * bytes_per_pixel + i)];
    };
    if (type == 1) return get_bit(image.data(), stride, x, y) ? 1 : 0;
    if (type == 2) return byte(1, 0);
    if (type == 3) return byte(3, 0) * 65536 + byte(3, 1) * 256 + byte(3, 2);
    return 0;
}

inline void set_pixel(int type, Bytes& image, int stride, int width, int x, int y,
                      unsigned int value) {
    const auto store = [&](int bytes_per_pixel, int i, unsigned int v) {
        image[offset(y, width * bytes_per_pixel, x * bytes_per_pixel + i)] =
            static_cast<unsigned char>(v % 256);
    };
    if (type == 1) set_bit(image.data(), stride, x, y, value != 0);
    if (type == 2) store(1, 0, value);
    if (type == 3) {
        store(3, 0, value / 65536);
        store(3, 1, value / 256);
        store(3, 2, value);
    }
}

// A ring of rows: the rows held, oldest first, and the slots (from 1) that the next push writes and
// the next pop drops. The slots that rows occupy follow from the number of pushes since the ring
// was last empty.
struct RingModel {
    int capacity;
    std::deque<std::vector<int>> rows;
    int write_index = 1;
    int oldest_index = 1;

    explicit RingModel(int c) : capacity(c) {}
    int count() const { return static_cast<int>(rows.size()); }
    int after(int index) const { return index % capacity + 1; }

    void push(const std::vector<int>& row) {
        rows.push_back(row);
        write_index = after(write_index);
        if (count() <= capacity) return;
        rows.pop_front();
        oldest_index = after(oldest_index);
    }

    void pop() {
        if (rows.empty()) return;
        rows.pop_front();
        oldest_index = rows.empty() ? 1 : after(oldest_index);
        if (rows.empty()) write_index = 1;
    }
};

}  // namespace model

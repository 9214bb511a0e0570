// Pictures and block maps of plain numbers for the slow models of adaptive binarization, and what
// they do with them: neighbourhoods, the filling of empty blocks, Sobel responses, bitonal rows.
//
// A missing threshold is 0. Missing neighbours at the border are left out, except by the Sobel
// operator, which repeats the nearest pixel.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "pixels.h"

namespace model {

struct Field {
    int height;
    int width;
    std::vector<int> values;

    Field(int h, int w)
        : height(h),
          width(w),
          values(static_cast<std::size_t>(h) * static_cast<std::size_t>(w), 0) {}

    int& at(int y, int x) { return values[offset(y, width, x)]; }
    int at(int y, int x) const { return values[offset(y, width, x)]; }
    int nearest(int y, int x) const {
        return at(std::clamp(y, 0, height - 1), std::clamp(x, 0, width - 1));
    }
    bool inside(int y, int x) const { return y >= 0 && y < height && x >= 0 && x < width; }
    bool interior(int y, int x) const { return inside(y - 1, x - 1) && inside(y + 1, x + 1); }
    bool is_grid() const { return height > 1 && width > 1; }
};

inline Field field_from_bytes(const unsigned char* bytes, int height, int width) {
    Field field(height, width);
    std::copy(bytes, bytes + field.values.size(), field.values.begin());
    return field;
}

template <typename Visit>
void for_each_cell(const Field& field, Visit visit) {
    for (int y = 0; y < field.height; ++y)
        for (int x = 0; x < field.width; ++x) visit(y, x);
}

template <typename Visit>
void for_each_cell_backwards(const Field& field, Visit visit) {
    for (int y = field.height - 1; y >= 0; --y)
        for (int x = field.width - 1; x >= 0; --x) visit(y, x);
}

// The cell and all cells around it up to `reach` rows and columns away.
inline std::vector<int> window(const Field& field, int y, int x, int reach) {
    std::vector<int> found;
    for (int v = y - reach; v <= y + reach; ++v)
        for (int u = x - reach; u <= x + reach; ++u)
            if (field.inside(v, u)) found.push_back(field.at(v, u));
    return found;
}

inline int lowest(const std::vector<int>& values) {
    return *std::min_element(values.begin(), values.end());
}

inline int highest(const std::vector<int>& values) {
    return *std::max_element(values.begin(), values.end());
}

inline int count_of_non_zero(const std::vector<int>& values) {
    return static_cast<int>(values.size()) -
           static_cast<int>(std::count(values.begin(), values.end(), 0));
}

// Rounded down; 0 when there is none.
inline int mean_of_non_zero(const std::vector<int>& values) {
    int sum = 0;
    for (int value : values) sum += value;
    const int n = count_of_non_zero(values);
    return n == 0 ? 0 : sum / n;
}

inline Field highest_of_each(const Field& a, const Field& b) {
    Field result = a;
    for_each_cell(a, [&](int y, int x) { result.at(y, x) = std::max(a.at(y, x), b.at(y, x)); });
    return result;
}

inline Field filled_from_neighbours(const Field& before) {
    Field after = before;
    for_each_cell(before, [&](int y, int x) {
        if (before.interior(y, x) && before.at(y, x) == 0)
            after.at(y, x) = mean_of_non_zero(window(before, y, x, 1));
    });
    return after;
}

// Every empty cell takes the lowest value that reaches it from the upper left, then from the lower
// right.
inline Field flood_lowest(const Field& before) {
    Field field = before;
    for (int& value : field.values)
        if (value == 0) value = 255;
    const auto lower = [&](int y, int x, int towards) {
        if (before.at(y, x) != 0) return;
        for (const auto& [v, u] :
             {std::pair{y, x + towards}, std::pair{y + towards, x}, {y + towards, x + towards}})
            if (field.inside(v, u)) field.at(y, x) = std::min(field.at(y, x), field.at(v, u));
    };
    for_each_cell(field, [&](int y, int x) { lower(y, x, -1); });
    for_each_cell_backwards(field, [&](int y, int x) { lower(y, x, 1); });
    return field;
}

inline bool has_any(const Field& field) {
    return count_of_non_zero(field.values) > 0;
}

// Positive where the picture grows lighter to the right.
inline int sobel_x(const Field& grey, int y, int x) {
    const auto step = [&](int v) { return grey.nearest(v, x + 1) - grey.nearest(v, x - 1); };
    return step(y - 1) + 2 * step(y) + step(y + 1);
}

// Positive where the picture grows lighter downwards.
inline int sobel_y(const Field& grey, int y, int x) {
    const auto step = [&](int u) { return grey.nearest(y + 1, u) - grey.nearest(y - 1, u); };
    return step(x - 1) + 2 * step(x) + step(x + 1);
}

inline void ink_below(const Field& grey, const Field& map, int floor, Bits& ink) {
    for_each_cell(grey, [&](int y, int x) {
        if (grey.at(y, x) < std::max(map.at(y / 4, x / 4), floor)) ink.set(x, y, true);
    });
}

inline void write_bits(const Bits& ink, unsigned char* out) {
    const int stride = word_stride(ink.width);
    std::memset(out, 0, offset(ink.height, stride, 0));
    for (int y = 0; y < ink.height; ++y)
        for (int x = 0; x < ink.width; ++x) set_bit(out, stride, x, y, ink.get(x, y));
}

}  // namespace model

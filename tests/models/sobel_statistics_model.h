// Binarization by the statistics of Sobel edges, one pixel and one block at a time.
//
// Statistics are taken of whole 4 x 4 blocks only, and only a block with whole blocks all around it
// gets a threshold of its own; the completion of the maps gives the others theirs.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "field.h"
#include "grey_model.h"
#include "pixels.h"

namespace model {

// Sums over pixels: of the greys of all, and of the edge pixels their number, the lowest and the
// highest greys around them, and the squares of these.
enum SobelSum { kGrey, kEdges, kLows, kHighs, kSquaredLows, kSquaredHighs, kSums };
using SobelSums = std::array<long long, kSums>;

inline void add(SobelSums& sums, const SobelSums& more) {
    for (std::size_t k = 0; k < kSums; ++k) sums[k] += more[k];
}

inline SobelSums sums_of_pixel(const Field& grey, int y, int x, int delta1, int delta2) {
    const long long value = grey.at(y, x);
    if (!grey.interior(y, x)) return {value};
    const int gx = sobel_x(grey, y, x);
    const int gy = sobel_y(grey, y, x);
    const int steep = 3 * delta1 + 20;
    const std::vector<int> around = window(grey, y, x, 1);
    const long long low = lowest(around);
    const long long high = highest(around);
    if (gx * gx + gy * gy < steep * steep || high - low < delta2) return {value};
    return {value, 1, low, high, low * low, high * high};
}

inline SobelSums sums_of_block(const Field& grey, int i, int j, int delta1, int delta2) {
    SobelSums sums{};
    for (int y = 4 * i; y < 4 * i + 4; ++y)
        for (int x = 4 * j; x < 4 * j + 4; ++x)
            add(sums, sums_of_pixel(grey, y, x, delta1, delta2));
    return sums;
}

// By the sums over the 3 x 3 blocks around one with edges.
inline int sobel_threshold(const SobelSums& around, int sigma) {
    const long long edges = around[kEdges];
    const auto deviation = [&](long long sum, long long squares) {
        return std::llround(sigma / 128.0 *
                            std::sqrt(static_cast<double>(edges * squares - sum * sum)));
    };
    const long long extremes = around[kLows] + around[kHighs];
    const long long deviations = deviation(around[kLows], around[kSquaredLows]) +
                                 deviation(around[kHighs], around[kSquaredHighs]);
    const bool dark = around[kGrey] / 16 <= extremes / (2 * edges);
    const long long t = (dark ? extremes - deviations : extremes + deviations) / (2 * edges);
    return static_cast<int>(std::clamp(t, 0LL, 255LL));
}

inline Field completed(const Field& map) {
    if (!has_any(map)) return map;
    Field grown = map;
    for_each_cell(map, [&](int i, int j) {
        if (map.interior(i, j) && map.at(i, j) == 0) grown.at(i, j) = highest(window(map, i, j, 1));
    });
    return flood_lowest(grown);
}

inline Field sobel_threshold_map(const Field& grey, int delta1, int delta2, int black1, int sigma) {
    const int rows = grey.height / 4;
    const int columns = grey.width / 4;
    std::vector<SobelSums> blocks;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j)
            blocks.push_back(sums_of_block(grey, i, j, delta1, delta2));
    Field by_edges(ceil_div(grey.height, 4), ceil_div(grey.width, 4));
    Field by_edges_and_darkness = by_edges;
    for (int i = 1; i <= rows - 2; ++i)
        for (int j = 1; j <= columns - 2; ++j) {
            const SobelSums& own = blocks[offset(i, columns, j)];
            SobelSums around{};
            for (int v = i - 1; v <= i + 1; ++v)
                for (int u = j - 1; u <= j + 1; ++u) add(around, blocks[offset(v, columns, u)]);
            if (own[kEdges] >= 1 && around[kEdges] > 8)
                by_edges.at(i, j) = by_edges_and_darkness.at(i, j) = sobel_threshold(around, sigma);
            if (own[kEdges] == 0 && own[kGrey] <= 16 * black1)
                by_edges_and_darkness.at(i, j) = black1;
        }
    return highest_of_each(completed(by_edges), completed(by_edges_and_darkness));
}

// black1 and black2 are grey levels. Pictures below 13 x 13 pixels are split by Otsu's threshold.
inline int sobel_variant(const unsigned char* grey, int height, int width, int delta1, int delta2,
                         int black1, int black2, int sigma, unsigned char* out) {
    const Field field = field_from_bytes(grey, height, width);
    Bits ink(height, width);
    const Field empty(ceil_div(height, 4), ceil_div(width, 4));
    if (height < 13 || width < 13)
        ink_below(field, empty, otsu_threshold(Grey(grey, grey + field.values.size())), ink);
    else
        ink_below(field, sobel_threshold_map(field, delta1, delta2, black1, sigma), black2, ink);
    write_bits(ink, out);
    return 0;
}

}  // namespace model

// Gradient binarization, one pixel and one block at a time: edges by Canny's method (A
// computational approach to edge detection, 1986), a threshold for every 4 x 4 block from the greys
// beside them, and the fill of dark areas.
//
// Every step makes a new field from the old one unless it is meant to see its own results.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "field.h"
#include "pixels.h"

namespace model {

struct GradientParameters {
    int fill_mean;
    int gaussian;
    int delta1;
    int delta2;
    int black1;
    int black2;
    int normalize;  // 0: off, 1: scale the gradient, 2: scale the thresholds
};

inline Field fill_with_lowest(const Field& before) {
    const bool has_threshold = std::any_of(before.values.begin(), before.values.end(),
                                           [](int value) { return value >= 1 && value <= 254; });
    return has_threshold ? flood_lowest(before) : before;
}

inline Field fill_with_means(Field field) {
    for (int pass = 0; pass < 8 && field.is_grid(); ++pass) field = filled_from_neighbours(field);
    const auto take_mean = [&](int y, int x) {
        if (field.at(y, x) == 0) field.at(y, x) = mean_of_non_zero(window(field, y, x, 2));
    };
    for_each_cell(field, take_mean);
    for_each_cell_backwards(field, take_mean);
    return field;
}

inline Field fill(const Field& map, int fill_mean) {
    return fill_mean ? fill_with_means(map) : fill_with_lowest(map);
}

inline Field gaussian_smoothed(const Field& grey) {
    Field result(grey.height, grey.width);
    for_each_cell(grey, [&](int y, int x) {
        double sum = 0;
        double weights = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                if (!grey.inside(y + dy, x + dx)) continue;
                const double weight = 0.25 / ((1 + std::abs(dy)) * (1 + std::abs(dx)));
                sum += weight * grey.at(y + dy, x + dx);
                weights += weight;
            }
        result.at(y, x) = static_cast<int>(std::lround(sum / weights));
    });
    return result;
}

struct Gradient {
    Field gx;
    Field gy;
    Field magnitude;
};

inline void measure_magnitude(Gradient& gradient, double scale) {
    for_each_cell(gradient.magnitude, [&](int y, int x) {
        const int gx = gradient.gx.at(y, x);
        const int gy = gradient.gy.at(y, x);
        const auto root = static_cast<double>(std::lround(std::sqrt(gx * gx + gy * gy)));
        gradient.magnitude.at(y, x) = static_cast<int>(std::lround(root * scale));
    });
}

inline Gradient gradient_of(const Field& grey) {
    const Field empty(grey.height, grey.width);
    Gradient gradient{empty, empty, empty};
    for_each_cell(grey, [&](int y, int x) {
        gradient.gx.at(y, x) = std::clamp(sobel_x(grey, y, x) / 4, -127, 127);
        gradient.gy.at(y, x) = std::clamp(sobel_y(grey, y, x) / 4, -127, 127);
    });
    measure_magnitude(gradient, 1.0);
    return gradient;
}

inline int sign(int value) {
    return (value > 0) - (value < 0);
}

// No smaller than the magnitudes on both sides along the gradient, each taken between a straight
// and a diagonal neighbour; both sides of the comparison are multiplied by the longer component.
inline bool is_local_maximum(const Gradient& gradient, int y, int x) {
    const int gx = gradient.gx.at(y, x);
    const int gy = gradient.gy.at(y, x);
    const int a = std::max(std::abs(gx), std::abs(gy));
    const int b = std::min(std::abs(gx), std::abs(gy));
    const bool sideways = std::abs(gx) > std::abs(gy);
    const Field& m = gradient.magnitude;
    for (const int side : {-1, 1}) {
        const int dx = side * sign(gx);
        const int dy = side * sign(gy);
        const int straight = sideways ? m.at(y, x + dx) : m.at(y + dy, x);
        const int diagonal = m.at(y + dy, x + dx);
        if (m.at(y, x) * a < (a - b) * straight + b * diagonal) return false;
    }
    return true;
}

constexpr int kCandidate = 128;
constexpr int kEdge = 255;

inline Field edge_candidates(const Gradient& gradient, int low) {
    const Field& m = gradient.magnitude;
    Field candidates(m.height, m.width);
    for_each_cell(m, [&](int y, int x) {
        if (m.interior(y, x) && m.at(y, x) >= low && is_local_maximum(gradient, y, x))
            candidates.at(y, x) = kCandidate;
    });
    return candidates;
}

inline void trace_edge(Field& edges, const Field& magnitude, int delta2, int y, int x, int depth) {
    if (depth > 64) return;
    for (int v = y - 1; v <= y + 1; ++v)
        for (int u = x - 1; u <= x + 1; ++u)
            if (edges.at(v, u) == kCandidate && magnitude.at(v, u) > delta2) {
                edges.at(v, u) = kEdge;
                trace_edge(edges, magnitude, delta2, v, u, depth + 1);
            }
}

inline Field edges_by_hysteresis(const Field& candidates, const Field& magnitude, int delta1,
                                 int delta2) {
    Field edges = candidates;
    for_each_cell(edges, [&](int y, int x) {
        if (candidates.at(y, x) == 0 || magnitude.at(y, x) < delta1) return;
        edges.at(y, x) = kEdge;
        trace_edge(edges, magnitude, delta2, y, x, 0);
    });
    for (int& value : edges.values)
        if (value != kEdge) value = 0;
    return edges;
}

// 255 on edges. Scales the deltas of `p` when they are to be normalised. False without a candidate.
inline bool find_edges(const Field& grey, GradientParameters& p, Field& edges) {
    Gradient gradient = gradient_of(p.gaussian ? gaussian_smoothed(grey) : grey);
    const int low = p.normalize == 2 ? p.delta2 / 2 : p.delta2;
    Field candidates = edge_candidates(gradient, low);
    const int strongest = highest(gradient.magnitude.values);
    const double scale = strongest == 0 ? 4.0 : std::min(4.0, 181.0 / strongest);
    if (p.normalize == 1 && strongest <= 180) {
        measure_magnitude(gradient, scale);
        candidates = edge_candidates(gradient, low);
    }
    if (p.normalize == 2 && strongest <= 180) {
        p.delta1 = static_cast<int>(std::lround(p.delta1 / scale));
        p.delta2 = static_cast<int>(std::lround(p.delta2 / scale));
    }
    edges = edges_by_hysteresis(candidates, gradient.magnitude, p.delta1, p.delta2);
    return has_any(candidates);
}

template <typename Counts>
Field block_map(const Field& pixels, Counts counts) {
    Field map(ceil_div(pixels.height, 4), ceil_div(pixels.width, 4));
    for_each_cell(map, [&](int i, int j) {
        int n = 0;
        int sum = 0;
        for (int y = 4 * i; y < std::min(4 * i + 4, pixels.height); ++y)
            for (int x = 4 * j; x < std::min(4 * j + 4, pixels.width); ++x)
                if (counts(y, x)) {
                    ++n;
                    sum += pixels.at(y, x);
                }
        map.at(i, j) = n == 0 ? 0 : sum / n;
    });
    return map;
}

inline Field without_lonely_blocks(const Field& before) {
    if (!before.is_grid()) return before;
    Field after(before.height, before.width);
    for_each_cell(before, [&](int i, int j) {
        if (before.at(i, j) == 0 || !before.interior(i, j)) return;
        const std::vector<int> around = window(before, i, j, 1);
        if (count_of_non_zero(around) >= 3) after.at(i, j) = mean_of_non_zero(around);
    });
    return after;
}

inline Field where_contrast(const Field& map, const Field& contrast, int factor, int limit) {
    Field kept = map;
    for_each_cell(map, [&](int i, int j) {
        if (contrast.at(i, j) * factor <= limit) kept.at(i, j) = 0;
    });
    return kept;
}

// Midpoints between the lightest and the darkest block around each block without a high-contrast
// threshold.
inline Field block_midpoints(const Field& grey, const Field& high_contrast, int delta1) {
    const Field means = block_map(grey, [](int, int) { return true; });
    Field midpoints(means.height, means.width);
    for_each_cell(means, [&](int i, int j) {
        const std::vector<int> around = window(means, i, j, 1);
        const int high = highest(around);
        const int low = lowest(around);
        if (high_contrast.at(i, j) == 0 && 3 * (high - low) > 2 * delta1)
            midpoints.at(i, j) = (high + low) >> 1;
    });
    return midpoints;
}

inline Field spread_grid(const Field& map) {
    return map.is_grid() ? filled_from_neighbours(map) : map;
}

// From the thresholds at edge pixels and the contrast there, by the (raised or scaled) delta1.
inline Field blocks_from_edges(const Field& grey, const Field& thresholds, const Field& contrast,
                               const GradientParameters& p) {
    const auto at_edge = [&](int y, int x) { return contrast.at(y, x) != 0; };
    const Field block_contrast = block_map(contrast, at_edge);
    Field map = without_lonely_blocks(block_map(thresholds, at_edge));
    Field high = where_contrast(map, block_contrast, 12, 17 * p.delta1);
    Field midpoints = block_midpoints(grey, high, p.delta1);
    map = spread_grid(map);
    high = spread_grid(high);
    for_each_cell(map, [&](int i, int j) {
        if (map.at(i, j) != 0) midpoints.at(i, j) = map.at(i, j);
    });
    map = highest_of_each(fill(map, p.fill_mean), fill(high, p.fill_mean));
    map = highest_of_each(map, fill(midpoints, p.fill_mean));
    for (const auto& [factor, limit] : {std::pair{3, 5 * p.delta1}, {1, 2 * p.delta1}}) {
        const Field higher = spread_grid(where_contrast(high, block_contrast, factor, limit));
        map = highest_of_each(map, fill(higher, p.fill_mean));
    }
    return map;
}

// The threshold of every block; 0 where edges give none. Inks the dark pixels beside edges.
inline Field threshold_map(const Field& grey, GradientParameters p, Bits& ink) {
    const Field empty(ceil_div(grey.height, 4), ceil_div(grey.width, 4));
    if (p.delta1 >= 247 || grey.height < 2 || grey.width < 2) return empty;
    p.delta1 += 8;
    Field edges(grey.height, grey.width);
    if (!find_edges(grey, p, edges)) return empty;
    Field thresholds(grey.height, grey.width);
    Field contrast(grey.height, grey.width);
    for_each_cell(edges, [&](int y, int x) {
        if (edges.at(y, x) == 0) return;
        const std::vector<int> around = window(grey, y, x, 1);
        thresholds.at(y, x) = (highest(around) + lowest(around)) >> 1;
        contrast.at(y, x) = highest(around) - lowest(around);
    });
    thresholds = filled_from_neighbours(thresholds);
    for_each_cell(grey, [&](int y, int x) {
        if (grey.at(y, x) < thresholds.at(y, x)) ink.set(x, y, true);
    });
    return blocks_from_edges(grey, thresholds, contrast, p);
}

inline void fill_dark_areas(const Field& grey, int black1, Bits& ink) {
    for_each_cell(grey, [&](int y, int x) {
        if (!grey.interior(y, x) || grey.at(y, x) >= black1) return;
        int sum = 0;
        for (int value : window(grey, y, x, 1)) sum += value;
        if (sum < 9 * black1) ink.set(x, y, true);
    });
}

inline Bits gradient_band(const Field& grey, const GradientParameters& p) {
    Bits ink(grey.height, grey.width);
    const Field map = threshold_map(grey, p, ink);
    ink_below(grey, map, p.black2, ink);
    fill_dark_areas(grey, p.black1, ink);
    return ink;
}

inline int white_level(const std::vector<int>& pixels) {
    if (pixels.empty()) return 255;
    long long histogram[256] = {};
    for (int value : pixels) ++histogram[value];
    const auto n = static_cast<long long>(pixels.size());
    const int darkest = lowest(pixels);
    long long lightest = histogram[255];
    if (n < 16 * lightest) return (darkest + 256) >> 1;
    int level = 255;
    do lightest += histogram[--level];
    while (level > darkest && n >= 16 * lightest);
    return (level + darkest + 1) >> 1;
}

inline std::vector<int> without_margins(const Field& grey) {
    const int top = grey.height / 12;
    const int left = grey.width / 12;
    std::vector<int> kept;
    for_each_cell(grey, [&](int y, int x) {
        if (y >= top && y < grey.height - top && x >= left && x < grey.width - left)
            kept.push_back(grey.at(y, x));
    });
    return kept;
}

// From settings in which 128 stands for white to grey levels.
inline void rescale_dark_levels(const Field& grey, GradientParameters& p) {
    const int relative = p.black1;
    if (relative == 0) {
        p.black2 = 0;
        return;
    }
    const int inner_white = white_level(without_margins(grey));
    const int white = relative < inner_white ? white_level(grey.values) : inner_white;
    const int q = white * p.black2 / relative * relative;
    p.black1 = relative * white >= 32768 ? 255 : (relative * white) >> 7;
    p.black2 = q > 32767 ? 255 : q >> 7;
}

inline Field some_rows(const Field& grey, int first, int end) {
    Field rows(end - first, grey.width);
    for_each_cell(rows, [&](int y, int x) { rows.at(y, x) = grey.at(first + y, x); });
    return rows;
}

inline Bits gradient_in_bands(const Field& grey, GradientParameters p, int bands) {
    p.fill_mean = p.gaussian = p.normalize = 0;
    Bits ink(grey.height, grey.width);
    const int band_height = grey.height / bands;
    for (int band = 0; band < bands; ++band) {
        const int first = band * band_height;
        const int end = band == bands - 1 ? grey.height : first + band_height;
        const int seen = std::max(first - 4, 0);
        const Field rows = some_rows(grey, seen, std::min(end + 4, grey.height));
        const Bits band_ink = gradient_band(rows, p);
        for (int y = first; y < end; ++y)
            for (int x = 0; x < grey.width; ++x) ink.set(x, y, band_ink.get(x, y - seen));
    }
    return ink;
}

// The bands that the library works on side by side are done one after the other.
inline int bi_grey_gradl(const unsigned char* grey, int height, int width, GradientParameters p,
                         int nb_threads, unsigned char* out) {
    const Field field = field_from_bytes(grey, height, width);
    rescale_dark_levels(field, p);
    const int bands = std::min(nb_threads, height / 50);
    write_bits(bands < 2 ? gradient_band(field, p) : gradient_in_bands(field, p, bands), out);
    return 0;
}

}  // namespace model

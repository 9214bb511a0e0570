// Skew of a bitonal page, measured by plain sheared projections of full-size edge images.
//
// The trace, if wanted, goes to the stream that the caller passes; no file is made. Everything else
// behaves as the exported functions: outputs preset before the checks, sizes written on success
// only.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <vector>

#include "field.h"
#include "pixels.h"

namespace model {

inline Field count_cells(const unsigned char* src, int height, int width, int stride,
                         int cell_height, int cell_width) {
    Field counts(height / cell_height, 8 * stride / cell_width);
    for (int y = 0; y < counts.height * cell_height; ++y)
        for (int x = 0; x < width / 8 * 8; ++x)
            counts.at(y / cell_height, x / cell_width) += get_bit(src, stride, x, y) ? 1 : 0;
    return counts;
}

// Differences from the cell that is so many rows up and columns to the left, where there is one.
inline Field edges_from(const Field& counts, int up, int left) {
    Field edges(counts.height, counts.width);
    for_each_cell(counts, [&](int r, int c) {
        if (counts.inside(r - up, c - left))
            edges.at(r, c) = std::abs(counts.at(r, c) - counts.at(r - up, c - left));
    });
    return edges;
}

inline Field reduce_cells(const Field& full) {
    Field half(full.height / 2, full.width / 2);
    for_each_cell(full, [&](int r, int c) {
        if (half.inside(r / 2, c / 2)) half.at(r / 2, c / 2) += full.at(r, c);
    });
    return half;
}

inline double skew_degrees(int skew) {
    const double x = skew / 512.0;
    double angle = x / (1 + 0.28 * (x * x));
    if (!(x < 1 && x > -1)) {
        angle = 1.570796325 - x / (x * x + 0.28);
        if (skew < 0) angle -= 3.14159265;
    }
    return 180 * angle / 3.14159265;
}

inline void trace_angle(std::ostream& trace, int skew) {
    trace << "corresponds to angle: " << skew_degrees(skew) << " degrees\n\n";
}

enum class Along { kRows, kColumns };

struct SearchResult {
    int best;
    double best_power;
    int worst;
    double worst_power;
};

inline SearchResult skew_search(const Field& image, Along along, int centre, int range, int step,
                                std::ostream* trace) {
    const bool rows = along == Along::kRows;
    std::vector<int> candidates;
    for (int o = 0; o <= range; o += step) candidates.push_back(centre + o);
    for (int o = step; o <= range; o += step) candidates.push_back(centre - o);
    int largest = 0;
    for (int s : candidates) largest = std::max(largest, std::abs(s));
    const int margin = static_cast<int>(static_cast<long long>(largest) *
                                        (rows ? image.width : image.height) / 64);
    const int bins = (rows ? image.height : image.width) + 2 * margin;

    SearchResult found{candidates[0], 0.0, candidates[0], 0.0};
    if (trace) *trace << "line projections:\n";
    for (int s : candidates) {
        std::vector<long long> bin(static_cast<std::size_t>(bins), 0);
        int lo = bins;
        int hi = -1;
        for_each_cell(image, [&](int r, int c) {
            const int k = (rows ? r + s * c / 64 : c + s * r / 64) + margin;
            bin.at(static_cast<std::size_t>(k)) += image.at(r, c);
            lo = std::min(lo, k);
            hi = std::max(hi, k);
        });
        double power = 0.0;
        if (trace) *trace << "yskew :" << s << " : ";
        for (int k = lo + 1; k <= (rows ? hi : hi - 1); ++k) {
            const double value = static_cast<double>(bin[static_cast<std::size_t>(k)]);
            power += value * value;
            if (trace) *trace << value << ", ";
        }
        if (trace) *trace << "\npower:" << power << "\n";
        if (power > found.best_power) {
            found.best = s;
            found.best_power = power;
        }
        if (s == candidates[0] || power < found.worst_power) {
            found.worst = s;
            found.worst_power = power;
        }
    }
    if (trace) {
        const char* where = rows ? "rows" : "cols";
        *trace << "\nworst yskew on " << where << ": " << found.worst
               << " with power: " << found.worst_power << "\n"
               << "best yskew on " << where << ": " << found.best
               << " with power: " << found.best_power << "\n";
        trace_angle(*trace, found.best);
    }
    return found;
}

// Where nothing has edges, the not-a-number that x86 makes of 0 / 0.
inline double confidence_of(double best, double worst) {
    return best == 0 && worst == 0 ? -std::nan("") : best / worst;
}

struct SkewEstimate {
    int skew;
    double power;
    double confidence;
};

inline SkewEstimate skew_along(const Field& edges, Along along, std::ostream* trace) {
    const char* lines = along == Along::kRows ? "rows" : "columns";
    const char* where = along == Along::kRows ? "rows" : "cols";
    if (trace) *trace << "rough estimation on " << lines << "\n";
    const SearchResult rough = skew_search(reduce_cells(edges), along, 0, 92, 4, trace);
    if (trace)
        *trace << "confidence on " << where << ": "
               << confidence_of(rough.best_power, rough.worst_power) << "\n";
    if (trace) *trace << "fine estimation on " << lines << "\n";
    const SearchResult fine = skew_search(edges, along, rough.best, 4, 1, trace);
    if (trace) *trace << "fine estimation of the confidence\n";
    const SearchResult base = skew_search(edges, along, rough.worst, 4, 1, trace);
    const double confidence = confidence_of(fine.best_power, base.worst_power);
    if (trace && along == Along::kRows) *trace << "confidence on rows: " << confidence << "\n";
    return {fine.best, fine.best_power, confidence};
}

// The skew on rows, or that on columns the other way round, whichever is surer; 0 when neither is
// sure.
inline int surer_skew(const SkewEstimate& rows, const SkewEstimate& columns, double* confidence,
                      std::ostream* trace) {
    const bool on_rows = rows.confidence > columns.confidence;
    const int skew = on_rows ? rows.skew : -columns.skew;
    *confidence = on_rows ? rows.confidence : columns.confidence;
    if (trace) {
        *trace << "choose the skew associated with the best confidence\n\n";
        *trace << "best yskew_rows: " << rows.skew << " with power: " << rows.power << "\n";
        trace_angle(*trace, rows.skew);
        *trace << "best yskew_cols: " << columns.skew << " with power: " << columns.power << "\n";
        trace_angle(*trace, columns.skew);
        *trace << "confidence on rows: " << rows.confidence
               << "\nconfidence on cols: " << columns.confidence << "\n";
        *trace << "best yskew is on " << (on_rows ? "rows: " : "columns: ") << skew << "\n";
        trace_angle(*trace, skew);
        if (*confidence < 1.5) *trace << "skew set to 0 because confidence < " << 1.5 << "\n";
    }
    return *confidence < 1.5 ? 0 : skew;
}

inline int estimate_skew_of_binary_image(std::ostream* trace, const unsigned char* src, int height,
                                         int width, int bytes_per_line, int* yskew, int* scale,
                                         double* confidence, int* out_height, int* out_width) {
    *yskew = 0;
    *scale = 512;
    *confidence = 1.0;
    if (bytes_per_line % 4 != 0 || bytes_per_line / 4 < ceil_div(width, 32)) return -1;
    if (height < 32 || bytes_per_line < 4 || width < 32) return -1;

    const Field wide_cells = count_cells(src, height, width, bytes_per_line, 2, 16);
    const SkewEstimate rows = skew_along(edges_from(wide_cells, 1, 0), Along::kRows, trace);
    const Field tall_cells = count_cells(src, height, width, bytes_per_line, 16, 2);
    const SkewEstimate columns = skew_along(edges_from(tall_cells, 0, 1), Along::kColumns, trace);

    const int skew = surer_skew(rows, columns, confidence, trace);
    *yskew = skew;

    *out_width = width + static_cast<int>(std::llabs(static_cast<long long>(height) * skew / 512));
    const int words = ceil_div(*out_width, 32);
    *out_height = height + static_cast<int>(std::llabs(4LL * words * skew / 64));
    return 0;
}

}  // namespace model

// Skew of a grey or colour page that is read row by row, measured as that of bitonal pages is on
// sums of grey values in place of counts of ink.
//
// The trace, if wanted, goes to the stream that the caller passes; no file is made. Everything else
// behaves as the exported functions: the reader is asked for the same rows, and outputs are preset
// before the format is looked at.
#pragma once

#include <cstdlib>
#include <ostream>
#include <vector>

#include "field.h"
#include "skew_model.h"

namespace model {

using RowReader = int (*)(void* user, int next, unsigned char* row);

// The page reduced to sums of grey values, of as many whole cells as fit.
inline Field sum_cells(RowReader read_row, void* user, int format, int height, int width,
                       int cell_height, int cell_width) {
    Field sums(height / cell_height, width / cell_width);
    std::vector<unsigned char> row(static_cast<std::size_t>(width) * (format == 1 ? 1 : 3));
    for (int y = 0; y < sums.height * cell_height; ++y) {
        read_row(user, y == 0 ? 0 : 1, row.data());
        for (int x = 0; x < sums.width * cell_width; ++x) {
            const unsigned char* const p = &row[offset(0, 0, format == 1 ? x : 3 * x)];
            const int grey = format == 1   ? p[0]
                             : format == 2 ? (114 * p[0] + 587 * p[1] + 299 * p[2]) / 1000
                                           : (299 * p[0] + 587 * p[1] + 114 * p[2]) / 1000;
            sums.at(y / cell_height, x / cell_width) += grey;
        }
    }
    return sums;
}

inline int estimate_skew_of_color_image(std::ostream* trace, RowReader read_row, void* user,
                                        int format, int height, int width, int* yskew, int* scale,
                                        double* confidence) {
    if (height < 32 || width < 32) return -1;
    *yskew = 0;
    *scale = 512;
    *confidence = 1.0;
    if (format < 1 || format > 3) return -1;

    const Field wide_cells = sum_cells(read_row, user, format, height, width, 2, 16);
    const SkewEstimate rows = skew_along(edges_from(wide_cells, 1, 0), Along::kRows, trace);
    const Field tall_cells = sum_cells(read_row, user, format, height, width, 16, 2);
    const SkewEstimate columns = skew_along(edges_from(tall_cells, 0, 1), Along::kColumns, trace);
    *yskew = surer_skew(rows, columns, confidence, trace);
    return 0;
}

}  // namespace model

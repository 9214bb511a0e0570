// How a threaded operation cuts an image into horizontal bands of whole rows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace threads {

// Below this many rows a thread is not worth its start.
constexpr std::int32_t kRowsPerThread = 50;

// Rows first <= y < last.
struct Band {
    std::int32_t first;
    std::int32_t last;
};

// Threads to use: at least 1; 1 means inline on the calling thread.
constexpr std::int32_t effective_threads(std::int32_t requested, std::int32_t rows) {
    return std::max(1, std::min(requested, rows / kRowsPerThread));
}

// Bands of rows / n rows from the top, and one shorter band for rows that remain. With fewer rows
// than n it is a single band.
std::vector<Band> open_bands(std::int32_t rows, std::int32_t n);

// Exactly n bands; the last one takes the rows that remain. n <= rows.
std::vector<Band> closed_bands(std::int32_t rows, std::int32_t n);

}  // namespace threads

#include "threads/bands.h"

namespace threads {

std::vector<Band> open_bands(std::int32_t rows, std::int32_t n) {
    const std::int32_t height = rows / n > 0 ? rows / n : rows;
    std::vector<Band> bands;
    bands.reserve(static_cast<std::size_t>(n) + 1);
    for (std::int32_t first = 0; first < rows; first += std::min(height, rows - first)) {
        bands.push_back({first, first + std::min(height, rows - first)});
    }
    return bands;
}

std::vector<Band> closed_bands(std::int32_t rows, std::int32_t n) {
    const std::int32_t height = rows / n;
    std::vector<Band> bands;
    bands.reserve(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) {
        bands.push_back({i * height, i + 1 < n ? (i + 1) * height : rows});
    }
    return bands;
}

}  // namespace threads

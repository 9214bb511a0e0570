// Ink counts of a bitonal page in small cells, in the two shapes that the skew search looks at.
// plain/cell_counts.h says what each function computes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr std::size_t kBandRows = 16;
constexpr std::size_t kBandPairs = kBandRows / 2;
// The kernel works on blocks of at most this many bytes; what it writes may run over the end of a
// row up to a multiple of it.
constexpr std::size_t kCountBlock = 64;

// Sixteen rows of a page, and where their counts go.
struct CountBand {
    const std::uint8_t* rows[kBandRows];  // only the first `bytes` bytes of each are read
    std::size_t bytes;                    // at least 1

    // Cells of 2 rows x 16 pixels: the absolute difference between a cell's count and that of the
    // cell above goes to row_edges[column * pitch + pair], for the 8 pairs of rows and for
    // `columns` columns, which are at most half of `bytes` rounded up to a multiple of 4. Pixels
    // beyond the bytes count as paper.
    std::uint8_t* row_edges;
    std::size_t pitch;
    std::size_t columns;
    // The counts of the pair of rows above the band, replaced by those of its last pair; there is
    // room for half of `bytes` rounded up to kCountBlock. They are not read for the first band of a
    // page, whose first pair has edges of 0.
    std::uint16_t* above;
    bool first;

    // Cells of 16 rows x 2 pixels: four counts per byte. There is room for 4 times `bytes` rounded
    // up to kCountBlock; counts beyond the bytes are written as 0 or not at all.
    std::uint8_t* tall_cells;
};

void count_band(const CountBand& band);

// out[i] = |values[i] - values[i - 1]| for i = 0 .. count - 1; values[-1] exists.
void adjacent_differences(const std::uint8_t* values, std::size_t count, std::uint8_t* out);

}  // namespace simd

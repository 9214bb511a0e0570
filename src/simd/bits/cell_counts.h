// Ink counts of a bitonal page in small cells, in both of the shapes that the skew search looks at.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr std::size_t kBandRows = 16;
constexpr std::size_t kBandPairs = kBandRows / 2;
// The largest block of bytes that the kernel works on: what it writes may run over the end of a row
// up to a multiple of it.
constexpr std::size_t kCountBlock = 64;

// Sixteen rows of a page and where their counts go.
struct CountBand {
    const std::uint8_t* rows[kBandRows];  // `bytes` bytes each are read
    std::size_t bytes;                    // at least 1

    // Cells of 2 rows x 16 pixels: the absolute difference to the cell above goes to
    // row_edges[column * pitch + pair], for 8 pairs of rows and `columns` columns: at most half of
    // `bytes` rounded up to a multiple of 4. Ink beyond the bytes counts 0.
    std::uint8_t* row_edges;
    std::size_t pitch;
    std::size_t columns;
    // The counts of the pair of rows above, replaced by those of the last pair: room for half of
    // `bytes` rounded up to kCountBlock. Not read for the first band of a page, whose first pair
    // has edges of 0.
    std::uint16_t* above;
    bool first;

    // Cells of 16 rows x 2 pixels: 4 counts a byte. Room for 4 times `bytes` rounded up to
    // kCountBlock; counts beyond the bytes are written as 0 or not at all.
    std::uint8_t* tall_cells;
};

void count_band(const CountBand& band);

// out[i] = |values[i] - values[i - 1]| for i = 0 .. count - 1; values[-1] exists.
void adjacent_differences(const std::uint8_t* values, std::size_t count, std::uint8_t* out);

}  // namespace simd

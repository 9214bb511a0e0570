// Sums of grey values in the cells that the skew search of grey pages looks at, and their
// differences. plain/cell_sums.h says what each function computes.
//
// Keep true: nothing is read or written beyond the cells; sums stay within 16 bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Adds every 16 pixels of a row to the sum of their cell.
void add_sixteens(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums);

// Adds every 2 pixels of a row to the sum of their cell.
void add_pairs(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums);

// out[i] = |a[i] - b[i]|; the output may be either of them.
void absolute_differences(const std::uint16_t* a, const std::uint16_t* b, std::size_t count,
                          std::uint16_t* out);

}  // namespace simd

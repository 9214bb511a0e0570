// Where ink begins and ends along bitonal rows. plain/run_edges.h says what each function computes.
//
// Positions are written in pairs: the first pixel of a run of ink, and the one after its last
// pixel. `invert` makes 0-bits the ink. Only the bytes that contain the scanned pixels are read.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Values that extract_rows() may overwrite beyond its result.
constexpr std::size_t kRunSlack = 64;

// The runs among pixels x_start .. x_start + width - 1 of a row; width >= 1. Returns the number of
// values written. `out` has room for width + 1 values, all of which may be overwritten.
std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                          bool invert, std::int32_t* out);

// The number of runs in each row's first `width` pixels, summed up: offsets[y] is the number of
// runs above row y, offsets[height] that of all rows. `offsets` has room for height + 1 values.
void count_runs(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                std::int32_t width, bool invert, std::size_t* offsets);

// The runs of every row, one row's after the other's: as many pairs as count_runs() says. `out` has
// room for kRunSlack values beyond them.
void extract_rows(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                  std::int32_t width, bool invert, std::int32_t* out);

}  // namespace simd

// Where ink begins and ends along bitonal rows.
//
// Positions are written in pairs: first ink pixel, one past the last. `invert` makes 0-bits the
// ink. Only the bytes that hold the scanned pixels are read.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Values that extract_rows() may overwrite beyond its result.
constexpr std::size_t kRunSlack = 64;

// The runs of pixels x_start .. x_start + width - 1 of a row. Returns the number of values written.
// `out` has room for width + 1 values, all of which may be overwritten. width >= 1.
std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                          bool invert, std::int32_t* out);

// The number of runs of each row's first `width` pixels, summed up: offsets[y] is the number of
// runs above row y, offsets[height] that of all. `offsets` has room for height + 1 values.
void count_runs(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                std::int32_t width, bool invert, std::size_t* offsets);

// The runs of every row, one row's after the other's: as many pairs as count_runs() says. `out` has
// kRunSlack values of room beyond them.
void extract_rows(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                  std::int32_t width, bool invert, std::int32_t* out);

namespace plain {

// extract_runs() a pixel at a time.
std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                          bool invert, std::int32_t* out);

}  // namespace plain

}  // namespace simd

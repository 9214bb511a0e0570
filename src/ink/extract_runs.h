// The runs of ink of one bitonal row.
#pragma once

#include <cstdint>

namespace ink {

// Scans the `width` pixels from pixel `x_start` on and writes each run of ink as two positions in
// the row: its first pixel and one past its last, left to right. Returns the number of values
// written, twice the number of runs. `ink_value` 0 makes 1-bits the ink, any other value 0-bits.
// A run that reaches the end of the scan ends at x_start + width.
//
// Reads the bytes of the scanned pixels and no others. `out` has room for width + 1 values;
// those beyond the result may be overwritten. x_start >= 0; a width below 1 gives 0.
std::int32_t extract_runs(int ink_value, const std::uint8_t* row, std::int32_t x_start,
                          std::int32_t width, std::int32_t* out);

}  // namespace ink

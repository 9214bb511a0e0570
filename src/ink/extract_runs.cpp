#include "ink/extract_runs.h"

#include "simd/bits/run_edges.h"

namespace ink {

std::int32_t extract_runs(int ink_value, const std::uint8_t* row, std::int32_t x_start,
                          std::int32_t width, std::int32_t* out) {
    if (width <= 0) return 0;
    return simd::extract_runs(row, x_start, width, ink_value != 0, out);
}

}  // namespace ink

#include "simd/gradient_rows.h"
namespace simd {
void gradient_row(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                  std::size_t width, const GradientRow& out) {
    plain::gradient_row(above, row, below, width, out);
}
bool local_maxima_row(const MagnitudeRows& magnitudes, const GradientRow& gradient,
                      std::size_t width, const EdgeThresholds& thresholds, std::uint64_t* start,
                      std::uint64_t* follow) {
    return plain::local_maxima_row(magnitudes, gradient, width, thresholds, start, follow);
}
}  // namespace simd

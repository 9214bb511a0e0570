#include "simd/pixels/blend_rows.h"

#include "simd/pixels/plain/blend_rows.h"

namespace simd {

void weigh_rows(const Neighbours& rows, const WholeWeights& weights, std::size_t width,
                std::uint8_t* out) {
    plain::weigh_rows(rows, weights, width, out);
}

void linear_rows(const Neighbours& rows, double t, std::size_t width, std::uint8_t* out) {
    plain::linear_rows(rows, t, width, out);
}

void cubic_rows(const Neighbours& rows, double t, std::size_t width, std::uint8_t* out) {
    plain::cubic_rows(rows, t, width, out);
}

}  // namespace simd

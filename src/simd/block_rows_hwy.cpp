#include "simd/block_rows.h"
namespace simd {
void spread_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    plain::spread_row(map, width, out);
}
void clean_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    plain::clean_row(map, width, out);
}
void fill_forward_row(const std::uint8_t* map, const std::uint8_t* above, std::size_t width,
                      std::uint8_t* filled) {
    plain::fill_forward_row(map, above, width, filled);
}
void fill_backward_row(const std::uint8_t* map, const std::uint8_t* below, std::size_t width,
                       std::uint8_t* filled) {
    plain::fill_backward_row(map, below, width, filled);
}
}  // namespace simd

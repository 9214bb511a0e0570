#include "simd/block_threshold_bits.h"
namespace simd {
void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits) {
    plain::set_below_blocks(grey, thresholds, words, bits);
}
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits) {
    plain::set_dark_areas(grey, width, level, bits);
}
}  // namespace simd

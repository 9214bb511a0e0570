#include "simd/midpoint_rows.h"
namespace simd {
bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                  std::uint8_t* midpoint, std::uint8_t* contrast) {
    return plain::midpoint_row(grey, edges, words, midpoint, contrast);
}
void mark_row(const ThreeRows& midpoints, const std::uint8_t* grey, std::size_t width,
              std::uint64_t* marks) {
    plain::mark_row(midpoints, grey, width, marks);
}
}  // namespace simd

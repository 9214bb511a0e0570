// Turns of bitonal pages by right angles as the exported functions make them: with their refusals.
#pragma once

#include <cstdint>

#include "geometry/right_angle.h"

namespace api {

// `dst_size` bytes are at dst. Returns kSuccess, or kFailure with nothing written.
int turn_bitonal(geometry::Turn turn, const unsigned char* src, int width, int height,
                 int bytes_per_line, unsigned char* dst, std::int64_t dst_size,
                 unsigned int* out_bytes_per_line);

}  // namespace api

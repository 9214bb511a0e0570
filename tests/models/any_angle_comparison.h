// Rotation by any angle beside its models, for tests and fuzz targets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "any_angle_model.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/geometry.h"

namespace model {

struct AngleSizes {
    int height, width, stride;
    int dst_height, dst_width, dst_stride;

    std::size_t dst_bytes() const {
        return dst_height > 0 && dst_stride > 0 ? offset(dst_height, dst_stride, 0) : 0;
    }
};

inline bool angle_sizes_agree(int height, int width, double angle) {
    int out[2] = {-7, -7};
    int expected[2] = {-7, -7};
    return ::rotate_image_dim(height, width, &out[0], &out[1], angle) ==
               model::rotate_image_dim(height, width, &expected[0], &expected[1], angle) &&
           std::equal(out, out + 2, expected);
}

// Whether the function returns what its model returns, and leaves the same bytes. Quarter turns
// have their work area, in which anything may be left behind the result.
inline bool bitonal_angles_agree(const std::vector<std::uint8_t>& src, const AngleSizes& s,
                                 double angle) {
    std::size_t size = s.dst_bytes();
    if (quarter_turns(angle) % 2 == 1 && s.stride > 0 && s.dst_stride > 0)
        size = std::max(size, offset(8 * s.stride, s.dst_stride, 0));
    support::GuardedBuffer dst(size);
    std::vector<std::uint8_t> expected = dst.contents();
    const int status = ::rotate_bitonal(src.data(), s.height, s.width, s.stride, dst.data(),
                                        s.dst_height, s.dst_width, s.dst_stride, angle);
    const int expected_status =
        model::rotate_bitonal(src.data(), s.height, s.width, s.stride, expected.data(),
                              s.dst_height, s.dst_width, s.dst_stride, angle);
    std::vector<std::uint8_t> left = dst.contents();
    if (status == 0) {
        left.resize(s.dst_bytes());
        expected.resize(s.dst_bytes());
    }
    return status == expected_status && left == expected && dst.guards_intact();
}

inline bool colour_angles_agree(int bytes_per_pixel, const unsigned char* background,
                                const std::vector<std::uint8_t>& src, const AngleSizes& s,
                                double angle) {
    support::GuardedBuffer dst(s.dst_bytes());
    std::vector<std::uint8_t> expected = dst.contents();
    return ::rotate_color(bytes_per_pixel, background, src.data(), s.height, s.width, s.stride,
                          dst.data(), s.dst_height, s.dst_width, s.dst_stride, angle) ==
               model::rotate_color(bytes_per_pixel, background, src.data(), s.height, s.width,
                                   s.stride, expected.data(), s.dst_height, s.dst_width,
                                   s.dst_stride, angle) &&
           dst.contents() == expected && dst.guards_intact();
}

}  // namespace model

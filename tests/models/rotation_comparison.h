// Right-angle turns beside their models, for tests and fuzz targets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "rotation_model.h"
#include "vemoprepro/geometry.h"

namespace model {

using TurnBytes = std::vector<std::uint8_t>;

// Known bytes for a destination of `size`, and behind it as many as show what is written there.
inline TurnBytes guarded(std::size_t size) {
    return TurnBytes(size + 64, 0x5C);
}

// Whether a turn into `dst_size` bytes does what its model does, or does nothing.
inline bool bitonal_turns_agree(int mode, const TurnBytes& src, int height, int width, int stride,
                                int dst_size) {
    TurnBytes dst = guarded(static_cast<std::size_t>(dst_size));
    TurnBytes expected = dst;
    unsigned out = 0;
    unsigned expected_out = 0;
    const int status =
        ::kyd_rotate_bitmap(mode, src.data(), height, width, stride, dst.data(), dst_size, &out);
    if (status == 0 && mode >= PREPRO_TURN_COUNTER_CLOCKWISE && mode <= PREPRO_TURN_CLOCKWISE) {
        model::kyd_rotate_bitmap(mode, src.data(), height, width, stride, expected.data(), dst_size,
                                 &expected_out);
        // What lies behind the rows is work area.
        const int rows = mode == PREPRO_TURN_HALF ? height : width;
        const std::ptrdiff_t written = static_cast<std::ptrdiff_t>(rows) * out;
        std::copy(expected.begin() + written, expected.begin() + dst_size, dst.begin() + written);
    }
    return dst == expected && out == expected_out;
}

// The same for packed pixels, into a destination of the size of the source.
inline bool packed_turns_agree(int mode, int pixel_bytes, const TurnBytes& src, int height,
                               int width) {
    TurnBytes dst = guarded(src.size());
    TurnBytes expected = dst;
    int size[2] = {};
    int expected_size[2] = {};
    if (::kyd_rotate_color(mode, pixel_bytes, src.data(), height, width, dst.data(), &size[0],
                           &size[1]) == 0) {
        model::kyd_rotate_color(mode, pixel_bytes, src.data(), height, width, expected.data(),
                                &expected_size[0], &expected_size[1]);
    }
    return dst == expected && std::equal(size, size + 2, expected_size);
}

}  // namespace model

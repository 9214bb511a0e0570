// A bitonal page to draw on and to count ink in.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "models/pixels.h"

namespace support {

struct BitonalPage {
    int height;
    int width;
    int stride;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(model::offset(height, stride, 0));

    // What of columns x0 <= x < x1 and rows y0 <= y < y1 lies on the page.
    void fill(int x0, int x1, int y0, int y1, bool ink = true) {
        for (int y = std::max(y0, 0); y < std::min(y1, height); ++y)
            for (int x = std::max(x0, 0); x < std::min(x1, width); ++x)
                model::set_bit(bytes.data(), stride, x, y, ink);
    }
    int ink(int x0, int x1, int y0, int y1) const {
        int count = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) count += model::get_bit(bytes.data(), stride, x, y);
        return count;
    }
    int ink() const { return ink(0, 8 * stride, 0, height); }
};

}  // namespace support

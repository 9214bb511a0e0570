// The box of an 8-connected component and its ink.
#pragma once

#include <algorithm>
#include <cstdint>

#include "ink/run.h"

namespace ink {

struct ComponentBox {
    std::int32_t x0;
    std::int32_t x1;  // exclusive
    std::int32_t y0;
    std::int32_t y1;    // exclusive
    std::int64_t area;  // ink pixels

    static ComponentBox of(const PixelRun& run, std::int32_t y) {
        return {run.x0, run.x1, y, y + 1, run.length()};
    }

    std::int32_t width() const { return x1 - x0; }
    std::int32_t height() const { return y1 - y0; }

    // Adds a run of row y, which is no row above the last one.
    void add(const PixelRun& run, std::int32_t y) {
        x0 = std::min(x0, run.x0);
        x1 = std::max(x1, run.x1);
        y1 = y + 1;
        area += run.length();
    }

    void add(const ComponentBox& other) {
        x0 = std::min(x0, other.x0);
        x1 = std::max(x1, other.x1);
        y0 = std::min(y0, other.y0);
        y1 = std::max(y1, other.y1);
        area += other.area;
    }
};

}  // namespace ink

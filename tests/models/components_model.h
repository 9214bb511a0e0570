// Connected components by flood fill.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "pixels.h"

namespace model {

struct Run {
    int x0;
    int x1;  // exclusive
    int y;
    bool operator==(const Run&) const = default;
};

struct Component {
    int x0;
    int y0;
    int x1;  // exclusive
    int y1;  // exclusive
    long long area;
    std::vector<Run> runs;  // by row, then by column
    bool operator==(const Component&) const = default;
};

// Takes the component that holds (x, y) out of the picture.
inline Component take_component(Bits& bits, int x, int y) {
    std::vector<std::pair<int, int>> pixels;  // (y, x): the natural order is the raster order
    std::vector<std::pair<int, int>> open{{y, x}};
    bits.set(x, y, false);
    while (!open.empty()) {
        const auto [py, px] = open.back();
        open.pop_back();
        pixels.push_back({py, px});
        for (int ny = py - 1; ny <= py + 1; ++ny)
            for (int nx = px - 1; nx <= px + 1; ++nx)
                if (bits.get(nx, ny)) {
                    bits.set(nx, ny, false);
                    open.push_back({ny, nx});
                }
    }
    std::sort(pixels.begin(), pixels.end());
    Component c{x, y, x + 1, y + 1, static_cast<long long>(pixels.size()), {}};
    for (const auto& [py, px] : pixels) {
        c.x0 = std::min(c.x0, px);
        c.y0 = std::min(c.y0, py);
        c.x1 = std::max(c.x1, px + 1);
        c.y1 = std::max(c.y1, py + 1);
        if (!c.runs.empty() && c.runs.back().y == py && c.runs.back().x1 == px)
            ++c.runs.back().x1;
        else
            c.runs.push_back({px, px + 1, py});
    }
    return c;
}

// The 8-connected pieces of ink, ordered by their first pixel in raster order.
inline std::vector<Component> components(Bits bits) {
    std::vector<Component> found;
    for (int y = 0; y < bits.height; ++y)
        for (int x = 0; x < bits.width; ++x)
            if (bits.get(x, y)) found.push_back(take_component(bits, x, y));
    return found;
}

inline std::vector<Component> components(const unsigned char* image, int height, int width,
                                         int stride) {
    return components(unpack(image, height, width, stride));
}

}  // namespace model

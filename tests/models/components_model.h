// Connected components by flood fill, and the order rules of the index-linked list as plain arrays.
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

// The list's slots, kept as the order of the linked ones, the marks of the used ones and the stack
// of released ones. The caller of insert_node(position >= 0) and erase_node names linked slots,
// that of append_existing an unlinked one.
struct ListModel {
    std::vector<int> order;
    std::vector<bool> used;
    std::vector<int> released;  // the next one to hand out is at the back

    int count() const { return static_cast<int>(order.size()); }
    int first() const { return order.empty() ? -1 : order.front(); }
    int last() const { return order.empty() ? -1 : order.back(); }
    int free_head() const { return released.empty() ? -1 : released.back(); }
    bool in_use(int slot) const {
        return slot >= 0 && slot < static_cast<int>(used.size()) &&
               used[static_cast<std::size_t>(slot)];
    }
    std::vector<int>::iterator find(int slot) {
        return std::find(order.begin(), order.end(), slot);
    }

    int insert_node(int position) {
        const bool at_end = position == -2;
        const bool at_front = position == -1;
        if (!at_end && !at_front && !in_use(position)) return -1;
        if (released.empty()) {
            released.push_back(static_cast<int>(used.size()));
            used.push_back(false);
        }
        const int slot = released.back();
        released.pop_back();
        used[static_cast<std::size_t>(slot)] = true;
        order.insert(at_end ? order.end() : at_front ? order.begin() : find(position), slot);
        return slot;
    }

    int erase_node(int slot) {
        if (!in_use(slot)) return -1;
        order.erase(find(slot));
        used[static_cast<std::size_t>(slot)] = false;
        released.push_back(slot);
        return 0;
    }

    int append_existing(int slot) {
        if (!in_use(slot)) return -1;
        order.push_back(slot);
        return 0;
    }
};

}  // namespace model

// The labellings of the library beside the flood fill, for tests and fuzz targets.
#pragma once

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include "components_model.h"
#include "ink/component_engine.h"
#include "ink/run_labels.h"
#include "ink/run_windows.h"

namespace model {

// Keeps a copy of every finished component; erases those of at most `erase_up_to` pixels from an
// image; ends the step in which `last` have been found.
struct CollectingRule {
    int ink_value = 0;
    std::uint8_t* image = nullptr;
    std::ptrdiff_t stride = 0;
    std::uint32_t erase_up_to = 0;
    std::uint32_t settled_above = UINT32_MAX;
    std::size_t last = SIZE_MAX;
    std::vector<Component> found{};

    bool finished(ink::ComponentEngine& engine, std::int32_t slot) {
        using ink::unsigned_coordinate;
        const ink::component& c = engine.components[slot];
        Component copy{unsigned_coordinate(c.x0),
                       unsigned_coordinate(c.y0),
                       unsigned_coordinate(c.x1),
                       unsigned_coordinate(c.y1),
                       c.area,
                       {}};
        engine.for_each_run(slot, [&](const ink::run& r) {
            copy.runs.push_back(
                {unsigned_coordinate(r.x0), unsigned_coordinate(r.x1), unsigned_coordinate(r.y)});
        });
        std::sort(copy.runs.begin(), copy.runs.end(), [](const auto& a, const auto& b) {
            return std::tie(a.y, a.x0) < std::tie(b.y, b.x0);
        });
        found.push_back(std::move(copy));
        if (c.area <= erase_up_to) engine.erase_ink(slot, ink_value, image, stride);
        return found.size() != last;
    }
    bool settled(const ink::component& open) const { return open.area > settled_above; }
};

// Whether the engine finds the components, in the order of their last rows, and erases those of at
// most `most` pixels. Of settled ones the rule sees no runs.
inline bool engine_finds(common::BitonalView page, int ink_value, std::uint32_t most, bool settle,
                         const std::vector<Component>& expected) {
    const auto stride = static_cast<int>(page.stride);
    const std::size_t size = offset(page.height - 1, stride, (page.width + 7) / 8);
    std::vector<std::uint8_t> image(page.data, page.data + size);
    std::vector<std::uint8_t> left = image;
    for (const Component& c : expected)
        for (const Run& r : c.runs)
            for (int x = r.x0; x < r.x1 && c.area <= most; ++x)
                set_bit(left.data(), stride, x, r.y, ink_value != 0);
    CollectingRule rule{ink_value, image.data(), stride, most, settle ? most : UINT32_MAX};
    ink::scan_components(page, 0, page.width, ink_value, nullptr, rule);
    if (image != left) return false;
    if (settle) return rule.found.size() == expected.size();
    const auto ends_above = [](const auto& a, const auto& b) { return a.y1 < b.y1; };
    if (!std::is_sorted(rule.found.begin(), rule.found.end(), ends_above)) return false;
    std::sort(rule.found.begin(), rule.found.end(), [](const auto& a, const auto& b) {
        return std::tie(a.y0, a.runs.front().x0) < std::tie(b.y0, b.runs.front().x0);
    });
    return rule.found == expected;
}

inline bool boxes_are(common::BitonalView page, int ink_value,
                      const std::vector<Component>& expected) {
    const ink::PageComponents found = ink::find_components(page, ink_value);
    if (found.count != static_cast<std::int32_t>(expected.size())) return false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const ink::ComponentBox& c = found.components[i];
        if (Component{c.x0, c.y0, c.x1, c.y1, c.area, expected[i].runs} != expected[i])
            return false;
    }
    return true;
}

// Whether the windows cover the page's runs once, from the top down, and give each the box of its
// component, or a part of that of so many rows that it counts as tall.
inline bool windows_give(common::BitonalView page, std::int32_t tall, std::size_t runs_at_once,
                         const std::vector<Component>& expected) {
    std::vector<std::pair<Run, const Component*>> runs;
    for (const Component& c : expected)
        for (const Run& r : c.runs) runs.emplace_back(r, &c);
    std::sort(runs.begin(), runs.end(), [](const auto& a, const auto& b) {
        return std::tie(a.first.y, a.first.x0) < std::tie(b.first.y, b.first.x0);
    });
    std::size_t next = 0;
    std::int32_t end = 0;
    ink::RunWindows windows(page, tall, runs_at_once);
    for (; windows.next(); end = windows.end()) {
        if (windows.begin() != end) return false;
        for (std::int32_t y = windows.begin(); y < windows.end(); ++y) {
            const ink::RowRuns row = windows.row(y);
            for (std::size_t i = 0; i < row.count; ++i, ++next) {
                if (next == runs.size()) return false;
                const auto& [run, c] = runs[next];
                if (Run{row.runs[i].x0, row.runs[i].x1, y} != run) return false;
                const ink::ComponentBox box = windows.component(windows.root(row.labels[i]));
                const Component seen{box.x0, box.y0, box.x1, box.y1, box.area, c->runs};
                const bool part = box.height() >= tall && c->y1 - c->y0 > box.height();
                if (seen != *c && !part) return false;
            }
        }
    }
    return end == page.height && next == runs.size();
}

// All of it for a page of at least one row, of which the last may end with its pixels. Null, or
// what differs.
inline const char* differing_components(common::BitonalView page, int ink_value, std::uint32_t most,
                                        bool settle) {
    Bits bits = unpack(page.data, page.height, page.width, static_cast<int>(page.stride));
    for (char& pixel : bits.pixels) pixel = static_cast<char>((pixel != 0) == (ink_value == 0));
    const std::vector<Component> expected = components(bits);
    if (!engine_finds(page, ink_value, most, settle, expected)) return "component engine";
    if (!boxes_are(page, ink_value, expected)) return "components of a page";
    if (ink_value != 0) return nullptr;
    const auto tall = static_cast<std::int32_t>(most) + 1;
    return windows_give(page, tall, page.height % 2 == 0 ? 100 : 0, expected) ? nullptr
                                                                              : "windows of runs";
}

}  // namespace model

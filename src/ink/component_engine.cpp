// One pass over the runs of two neighbouring rows. A run joins the segment of the first run above
// that it touches; the components of further ones are merged into that one's.
//
// The segments of a component are a tree besides a chain: a merge hangs the root of the one tree
// below the root of the other, which names the component, so that no chain is followed. Each row of
// a page may merge all that there is.

#include "ink/component_engine.h"

#include <algorithm>

#include "ink/logged_status.h"

namespace ink {
namespace {

std::int16_t smaller(std::int16_t a, std::int16_t b) {
    return unsigned_coordinate(a) < unsigned_coordinate(b) ? a : b;
}

std::int16_t larger(std::int16_t a, std::int16_t b) {
    return unsigned_coordinate(a) < unsigned_coordinate(b) ? b : a;
}

template <class Record>
std::int32_t new_slot(KydListT<Record>& list) {
    const std::int32_t slot = list.insert_node(kAtEnd);
    if (slot < 0) throw std::bad_alloc();
    return slot;
}

}  // namespace

struct ComponentEngine::Labels {
    ComponentEngine& engine;

    std::int32_t start(const PixelRun& first, std::int32_t r) {
        const std::int32_t run_slot = engine.add_run(first, r, kNoSlot);
        const std::int32_t slot = new_slot(engine.segments);
        const std::int32_t owner = new_slot(engine.components);
        engine.runs[run_slot].owner = slot;
        engine.segments[slot] =
            segment{static_cast<std::uint16_t>(r + 1), owner, kNoSlot, run_slot, run_slot, 1, slot};
        engine.components[owner] = component{stored_coordinate(first.x0),
                                             stored_coordinate(first.x1),
                                             stored_coordinate(r),
                                             stored_coordinate(r + 1),
                                             static_cast<std::uint32_t>(first.length()),
                                             slot,
                                             1,
                                             slot};
        return slot;
    }

    std::int32_t root(std::int32_t slot) { return engine.root_of(slot); }

    std::int32_t unite(std::int32_t root, std::int32_t other) {
        engine.merge_components(engine.segments[root].component, engine.segments[other].component);
        engine.segments[other].parent = root;
        return root;
    }

    std::int32_t extend(std::int32_t slot, std::int32_t root, const PixelRun& added,
                        std::int32_t r) {
        const std::int32_t run_slot = engine.add_run(added, r, slot);
        segment& joined = engine.segments[slot];
        (joined.last_run == kNoSlot ? joined.first_run : engine.runs[joined.last_run].next) =
            run_slot;
        joined.last_run = run_slot;
        ++joined.run_count;
        joined.last_row = static_cast<std::uint16_t>(r + 1);
        component& grown = engine.components[engine.segments[root].component];
        grown.x0 = smaller(grown.x0, stored_coordinate(added.x0));
        grown.x1 = larger(grown.x1, stored_coordinate(added.x1));
        grown.y1 = stored_coordinate(r + 1);
        grown.area += static_cast<std::uint32_t>(added.length());
        return slot;
    }

    void pass(std::int32_t) {}
};

std::int32_t ComponentEngine::begin(std::int32_t stride) {
    return logged_status(logger_, diag::kNoMemoryCode, [&] {
        current_ = LabelledRuns(8 * stride);
        previous_ = LabelledRuns(8 * stride);
    });
}

std::int32_t ComponentEngine::label_row(std::int32_t r) {
    return logged_status(logger_, diag::kNoMemoryCode, [&] {
        Labels labels{*this};
        ink::label_row(previous_.runs(), current_.runs(), r, labels);
    });
}

std::int32_t ComponentEngine::root_of(std::int32_t segment_slot) {
    return find_root(segment_slot,
                     [this](std::int32_t s) -> std::int32_t& { return segments[s].parent; });
}

std::int32_t ComponentEngine::component_of(std::int32_t segment_slot) {
    return segments[root_of(segment_slot)].component;
}

std::int32_t ComponentEngine::add_run(const PixelRun& added, std::int32_t r,
                                      std::int32_t segment_slot) {
    const std::int32_t slot = new_slot(runs);
    runs[slot] = run{stored_coordinate(added.x0), stored_coordinate(added.x1), stored_coordinate(r),
                     segment_slot, kNoSlot};
    return slot;
}

void ComponentEngine::merge_components(std::int32_t into, std::int32_t from) {
    component& kept = components[into];
    const component& merged = components[from];
    kept.x0 = smaller(kept.x0, merged.x0);
    kept.x1 = larger(kept.x1, merged.x1);
    kept.y0 = smaller(kept.y0, merged.y0);
    kept.y1 = larger(kept.y1, merged.y1);
    kept.area += merged.area;
    segments[kept.last_segment].next = merged.first_segment;
    kept.last_segment = merged.last_segment;
    kept.segment_count += merged.segment_count;
    components.erase_node(from);
}

void ComponentEngine::release_runs(segment& emptied) {
    for (std::int32_t i = emptied.first_run; i != kNoSlot;) {
        const std::int32_t next = runs[i].next;
        runs.erase_node(i);
        i = next;
    }
    emptied.first_run = kNoSlot;
    emptied.last_run = kNoSlot;
    emptied.run_count = 0;
}

void ComponentEngine::release_component(std::int32_t slot) {
    for (std::int32_t s = components[slot].first_segment; s != kNoSlot;) {
        const std::int32_t next = segments[s].next;
        release_runs(segments[s]);
        segments.erase_node(s);
        s = next;
    }
    components.erase_node(slot);
}

// Segments that row r did not reach can be touched by no further run; an open component has one
// that row r did reach. The first of those becomes the root.
void ComponentEngine::settle_component(std::int32_t slot, std::int32_t r) {
    component& settled = components[slot];
    std::int32_t next = settled.first_segment;
    settled.first_segment = kNoSlot;
    settled.segment_count = 0;
    while (next != kNoSlot) {
        const std::int32_t s = next;
        next = segments[s].next;
        release_runs(segments[s]);
        if (segments[s].last_row != static_cast<std::uint16_t>(r + 1)) {
            segments.erase_node(s);
            continue;
        }
        (settled.first_segment == kNoSlot ? settled.first_segment
                                          : segments[settled.last_segment].next) = s;
        settled.last_segment = s;
        ++settled.segment_count;
        segments[s].next = kNoSlot;
        segments[s].parent = settled.first_segment;
        segments[s].component = slot;
    }
}

void ComponentEngine::erase_ink(std::int32_t component_slot, int ink_value, std::uint8_t* image,
                                std::ptrdiff_t stride) const {
    const int white = ink_value == 0 ? 0 : 1;
    for_each_run(component_slot, [&](const run& r) {
        paint_span(image + unsigned_coordinate(r.y) * stride, unsigned_coordinate(r.x0),
                   unsigned_coordinate(r.x1) - unsigned_coordinate(r.x0), white);
    });
}

}  // namespace ink

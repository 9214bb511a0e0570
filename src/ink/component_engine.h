// The component engine: 8-connected components of a bitonal image, labelled row by row and handed
// to a removal rule as soon as no further row can touch them. Memory grows with the width and with
// the runs of the components that are still open.
//
// Use, for a whole page:
//     Rule rule{...};
//     if (scan_components(page, 0, page.width, ink_value, logger, rule) < 0) return -1;
// or in steps, for r = 0 .. height - 1:
//     engine.begin(stride); engine.extract_row(...); engine.label_row(r);
//     engine.finish_components(r, rule); engine.next_row();
// and after the last row engine.finish_components(height, rule). Every step may fail with -1; the
// engine is then released, not used further. Nothing throws unless the rule does.
//
// A removal rule has two members:
//     std::int32_t finished(ComponentEngine& engine, std::int32_t slot);
//         decides about a finished component, in the order of the component list: it may paint over
//         its runs (erase_ink), copy them, or leave them. 0 goes on. Anything else ends the step
//         with that result before the component is released: below 0 as a failure.
//     bool settled(const component& open);
//         true for an open component that stays whatever comes. Its runs are released at once, so
//         that finished() finds none.
//
// Keep true: coordinates below 65,536; fields hold them as 16-bit patterns (run.h).
#pragma once

#include <cstdint>

#include "common/views.h"
#include "diag/logger.h"
#include "ink/buffer_logic.h"
#include "ink/kyd_list.h"
#include "ink/run.h"
#include "ink/try_buffer.h"

namespace ink {

// Runs that hang below one another: the label of a run is its segment.
struct segment {
    std::uint16_t last_row;  // one past the row of the newest run
    std::int32_t component;  // the owner, as ComponentEngine::component_of() resolves it
    std::int32_t next;       // next segment of the same component
    std::int32_t first_run;
    std::int32_t last_run;
    std::int32_t run_count;
};

struct component {
    std::int16_t x0;
    std::int16_t x1;  // exclusive
    std::int16_t y0;
    std::int16_t y1;     // exclusive
    std::uint32_t area;  // ink pixels
    std::int32_t first_segment;
    std::int32_t segment_count;

    std::int32_t width() const { return unsigned_coordinate(x1) - unsigned_coordinate(x0); }
    std::int32_t height() const { return unsigned_coordinate(y1) - unsigned_coordinate(y0); }
};

class ComponentEngine {
  public:
    explicit ComponentEngine(diag::LoggerSlot logger = nullptr) : logger_(logger) {}

    KydListT<run> runs;
    KydListT<segment> segments;
    KydListT<component> components;

    // Makes the row arrays for rows of `stride` bytes; the row above the first one is empty.
    std::int32_t begin(std::int32_t stride);

    // Takes the runs of ink of `width` pixels of a row from pixel `x_start` on.
    std::int32_t extract_row(int ink_value, const std::uint8_t* row, std::int32_t x_start,
                             std::int32_t width);

    // Labels the extracted runs as row r.
    std::int32_t label_row(std::int32_t r);

    // Hands the components that end above row r to the rule, and releases them.
    template <class Rule>
    std::int32_t finish_components(std::int32_t r, Rule& rule);

    // Makes the current row the previous one.
    void next_row();

    // Gives all memory back.
    void release();

    // The slot of the component that a segment belongs to.
    std::int32_t component_of(std::int32_t segment_slot) const {
        return owners_[segments[segment_slot].component].component;
    }

    // Calls visit(run) for the runs of a component, segment by segment.
    template <class Visit>
    void for_each_run(std::int32_t component_slot, Visit visit) const;

    // Paints the component's runs white: 0 for an `ink_value` of 0, 1 for others.
    void erase_ink(std::int32_t component_slot, int ink_value, std::uint8_t* image,
                   std::ptrdiff_t stride) const;

  private:
    // Segments name their component by a number of its own, so that a merge renumbers the smaller
    // of two chains whichever component stays: n segments cost n log n, not n * n. Entry i holds
    // the number of component slot i and the component slot of number i: two inverse permutations.
    struct Owner {
        std::int32_t number;
        std::int32_t component;
        std::int32_t last_segment;  // of component slot i
    };

    struct Row {
        TryBuffer<std::int32_t> ends;    // start and end of each run
        TryBuffer<std::int32_t> labels;  // segment of each run
        std::int32_t values = 0;         // two a run
    };

    std::int32_t out_of_memory() const;
    std::int32_t add_run(std::int32_t x0, std::int32_t x1, std::int32_t r);
    std::int32_t start_component(std::int32_t run_slot, std::int32_t r);
    void extend_component(std::int32_t segment_slot, std::int32_t run_slot, std::int32_t r);
    void merge_components(std::int32_t into, std::int32_t from);
    bool grow_owners();
    void release_runs(segment& emptied);
    void release_component(std::int32_t slot);
    void settle_component(std::int32_t slot, std::int32_t r);

    diag::LoggerSlot logger_;
    GrowableArray<Owner> owners_;
    Row current_;
    Row previous_;
};

template <class Rule>
std::int32_t ComponentEngine::finish_components(std::int32_t r, Rule& rule) {
    std::int32_t next = kNoSlot;
    for (std::int32_t slot = components.first; slot != kNoSlot; slot = next) {
        next = components.next(slot);
        if (unsigned_coordinate(components[slot].y1) > r) {
            if (rule.settled(components[slot])) settle_component(slot, r);
            continue;
        }
        const std::int32_t result = rule.finished(*this, slot);
        if (result != 0) return result;
        release_component(slot);
    }
    return 0;
}

template <class Visit>
void ComponentEngine::for_each_run(std::int32_t component_slot, Visit visit) const {
    for (std::int32_t s = components[component_slot].first_segment; s != kNoSlot;
         s = segments[s].next) {
        for (std::int32_t i = segments[s].first_run; i != kNoSlot; i = runs[i].next) {
            visit(runs[i]);
        }
    }
}

// Columns x_start .. x_end - 1 of all rows. Returns 0, -1 on a failure (also for a page whose
// coordinates do not fit), or what the rule ended with.
template <class Rule>
std::int32_t scan_components(common::BitonalView page, std::int32_t x_start, std::int32_t x_end,
                             int ink_value, diag::LoggerSlot logger, Rule& rule) {
    if (page.height > kMaxRunCoordinate || x_end > kMaxRunCoordinate) return -1;
    ComponentEngine engine(logger);
    if (engine.begin(static_cast<std::int32_t>(common::bitonal_bytes(x_end))) < 0) return -1;
    for (std::int32_t r = 0; r < page.height; ++r) {
        engine.extract_row(ink_value, page.row(r), x_start, x_end - x_start);
        if (engine.label_row(r) < 0) return -1;
        const std::int32_t result = engine.finish_components(r, rule);
        if (result != 0) return result;
        engine.next_row();
    }
    return engine.finish_components(page.height, rule);
}

}  // namespace ink

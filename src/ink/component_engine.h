// The component engine: 8-connected components of a bitonal image, labelled row by row and handed
// to a removal rule as soon as no further row can touch them. Memory grows with the width and with
// the runs of the components that are still open.
//
// Use: scan_components() for the columns of a page, or in steps
//
//     begin (extract_row label_row finish_components next_row)* finish_components
//
// with the number of the row from 0 on, and in the last step the number of rows. begin() and
// label_row() do not throw: they are fixed to return 0, or -1 with a record in the error log where
// there is no memory. The engine is of no further use then.
//
// A removal rule has two members:
//     bool finished(ComponentEngine& engine, std::int32_t slot);
//         decides about a finished component, in the order of the component list: it may paint over
//         its runs (erase_ink), copy them, or leave them. False ends the step before the component
//         is released; the next step hands it over again.
//     bool settled(const component& open);
//         true for an open component that stays whatever comes. Its runs are released at once, so
//         that finished() finds none.
//
// Passes that only erase or keep take component_stream.h, which keeps no runs; those of the library
// are all like that.
//
// Keep true: coordinates below 65,536; fields are 16-bit patterns of them (run.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <utility>

#include "common/views.h"
#include "diag/logger.h"
#include "ink/buffer_logic.h"
#include "ink/kyd_list.h"
#include "ink/row_labels.h"
#include "ink/run.h"

namespace ink {

// Runs that hang below one another: the label of a run is its segment.
struct segment {
    std::uint16_t last_row;  // one past the row of the newest run
    std::int32_t component;  // the owner; read it through ComponentEngine::component_of()
    std::int32_t next;       // next segment of the same component
    std::int32_t first_run;
    std::int32_t last_run;
    std::int32_t run_count;
    std::int32_t parent;  // a segment of the same component; itself in the one that names the owner
};

struct component {
    std::int16_t x0;
    std::int16_t x1;  // exclusive
    std::int16_t y0;
    std::int16_t y1;     // exclusive
    std::uint32_t area;  // ink pixels
    std::int32_t first_segment;
    std::int32_t segment_count;
    std::int32_t last_segment;

    std::int32_t width() const { return unsigned_coordinate(x1) - unsigned_coordinate(x0); }
    std::int32_t height() const { return unsigned_coordinate(y1) - unsigned_coordinate(y0); }
};

class ComponentEngine {
  public:
    explicit ComponentEngine(diag::LoggerSlot logger = nullptr) : logger_(logger) {}

    KydListT<run> runs;
    KydListT<segment> segments;
    KydListT<component> components;

    // Makes room for rows of `stride` bytes; the row above the first one is empty.
    std::int32_t begin(std::int32_t stride);

    // Takes the runs of ink of `width` pixels of a row from pixel `x_start` on.
    void extract_row(int ink_value, const std::uint8_t* row, std::int32_t x_start,
                     std::int32_t width) {
        current_.extract(ink_value, row, x_start, width);
    }

    // Labels the extracted runs as row r.
    std::int32_t label_row(std::int32_t r);

    // Hands the components that end above row r to the rule, and releases them.
    template <class Rule>
    void finish_components(std::int32_t r, Rule& rule);

    // Makes the current row the previous one.
    void next_row() { std::swap(current_, previous_); }

    // The slot of the component that a segment belongs to.
    std::int32_t component_of(std::int32_t segment_slot);

    // Calls visit(run) for the runs of a component, segment by segment.
    template <class Visit>
    void for_each_run(std::int32_t component_slot, Visit visit) const;

    // Paints the component's runs white: 0 for an `ink_value` of 0, 1 for others.
    void erase_ink(std::int32_t component_slot, int ink_value, std::uint8_t* image,
                   std::ptrdiff_t stride) const;

  private:
    // The labels of row_labels.h are segments. They throw std::bad_alloc.
    struct Labels;

    std::int32_t root_of(std::int32_t segment_slot);
    std::int32_t add_run(const PixelRun& added, std::int32_t r, std::int32_t segment_slot);
    void merge_components(std::int32_t into, std::int32_t from);
    void release_runs(segment& emptied);
    void release_component(std::int32_t slot);
    void settle_component(std::int32_t slot, std::int32_t r);

    diag::LoggerSlot logger_;
    LabelledRuns current_;
    LabelledRuns previous_;
};

template <class Rule>
void ComponentEngine::finish_components(std::int32_t r, Rule& rule) {
    std::int32_t next = kNoSlot;
    for (std::int32_t slot = components.first; slot != kNoSlot; slot = next) {
        next = components.next(slot);
        if (unsigned_coordinate(components[slot].y1) > r) {
            if (rule.settled(components[slot])) settle_component(slot, r);
            continue;
        }
        if (!rule.finished(*this, slot)) return;
        release_component(slot);
    }
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

// Columns x_start .. x_end - 1 of all rows. Throws std::bad_alloc, and std::length_error for a page
// whose coordinates do not fit.
template <class Rule>
void scan_components(common::BitonalView page, std::int32_t x_start, std::int32_t x_end,
                     int ink_value, diag::LoggerSlot logger, Rule& rule) {
    if (page.height > kMaxRunCoordinate || x_end > kMaxRunCoordinate) {
        throw std::length_error("components of a page beyond 65535 pixels");
    }
    ComponentEngine engine(logger);
    if (engine.begin(static_cast<std::int32_t>(common::bitonal_bytes(x_end))) < 0) {
        throw std::bad_alloc();
    }
    for (std::int32_t r = 0; r < page.height; ++r) {
        engine.extract_row(ink_value, page.row(r), x_start, x_end - x_start);
        if (engine.label_row(r) < 0) throw std::bad_alloc();
        engine.finish_components(r, rule);
        engine.next_row();
    }
    engine.finish_components(page.height, rule);
}

}  // namespace ink

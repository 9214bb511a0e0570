// The 8-connected components of a page, found row by row and erased as they end, where a rule
// decides so: what component_engine.h does, for passes that erase or keep and nothing else, in less
// time and memory. The engine remains for rules that look at a component's runs, take white for
// ink, or end a step before its last component.
//
// Use: stream_components() for all rows of a page, or in steps
//
//     add_row* finish
//
// with the rows in order. The ink's rows may be the page's, or the page's with changes: erasing
// always happens in the page.
//
// A rule has three members:
//     static constexpr bool kInOrder;
//         whether the rule is asked about components that end in the same row in the order in which
//         they began. A component that several have become is as old as the one that the leftmost
//         of their runs above the meeting belongs to.
//     bool settled(const OpenComponent& open) const;
//         is true for a component that will not be erased whatever comes. Its runs are released.
//     bool erases(const OpenComponent& ended);
//         decides about a finished component. It is erased before the next decision.
//
// Memory: two rows of runs, a record for each open component (fewer than width + 3), and 12 bytes
// for each run of an open component that may yet be erased.
//
// Keep true: width and height are at most 65,535. Throws std::bad_alloc and what the rule throws.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"
#include "ink/component_box.h"
#include "ink/row_labels.h"
#include "ink/run_chains.h"

namespace ink {

struct OpenComponent : ComponentBox {
    std::uint32_t sequence;  // the number of components that began before it
    std::int32_t parent;     // the component that it has become part of; its own label until then
    bool ended;
    RunChains::Chain runs;
};

// The open components of a page, under labels that are used again.
class OpenComponents {
  public:
    // Records for the most components that two rows can have.
    explicit OpenComponents(std::int32_t width)
        : components_(static_cast<std::size_t>(width) + 3),
          free_labels_(static_cast<std::size_t>(width) + 3) {}

    OpenComponent& operator[](std::int32_t label) {
        return components_[static_cast<std::size_t>(label)];
    }

    std::int32_t add(const PixelRun& run, std::int32_t y) {
        const std::int32_t label =
            free_count_ > 0 ? free_labels_[--free_count_] : static_cast<std::int32_t>(used_++);
        (*this)[label] = {ComponentBox::of(run, y), sequence_++, label, false, RunChains::kEmpty};
        return label;
    }

    void release(std::int32_t label) { free_labels_[free_count_++] = label; }

    // The label of the component that the label's own has become part of.
    std::int32_t root(std::int32_t label) {
        return find_root(label,
                         [this](std::int32_t i) -> std::int32_t& { return (*this)[i].parent; });
    }

  private:
    frame::Buffer<OpenComponent> components_;
    frame::Buffer<std::int32_t> free_labels_;
    std::size_t free_count_ = 0;
    std::size_t used_ = 0;
    std::uint32_t sequence_ = 0;
};

template <class Rule>
class ComponentStream {
  public:
    ComponentStream(common::MutableBitonalView page, Rule& rule)
        : page_(page),
          rule_(rule),
          open_(page.width),
          row_(page.width),
          above_(page.width),
          merged_(static_cast<std::size_t>(page.width) / 2 + 1),
          ended_(static_cast<std::size_t>(page.width) / 2 + 1) {}

    // Takes row y of the ink.
    void add_row(const std::uint8_t* ink, std::int32_t y) {
        row_.extract(0, ink, 0, page_.width);
        if (row_.runs().count == 0 && above_.runs().count == 0) return;
        label_row_and_decide(y);
        drop_merged();
        std::swap(row_, above_);
    }

    void finish() {
        row_.clear();
        label_row_and_decide(page_.height);
    }

  private:
    struct Labels;

    void label_row_and_decide(std::int32_t y);
    void add_run(OpenComponent& grown, const PixelRun& run, std::int32_t y);
    void decide_about_ended(std::int32_t y);
    void drop_merged();

    common::MutableBitonalView page_;
    Rule& rule_;
    OpenComponents open_;
    RunChains chains_;
    LabelledRuns row_;
    LabelledRuns above_;
    frame::Buffer<std::int32_t> merged_;  // labels that this row has merged into others
    std::size_t merged_count_ = 0;
    frame::Buffer<std::int32_t> ended_;  // labels of runs above that nothing touches
    std::size_t ended_count_ = 0;
};

// What label_row() calls.
template <class Rule>
struct ComponentStream<Rule>::Labels {
    ComponentStream& stream;

    std::int32_t start(const PixelRun& run, std::int32_t y) {
        const std::int32_t label = stream.open_.add(run, y);
        stream.add_run(stream.open_[label], run, y);
        return label;
    }

    std::int32_t root(std::int32_t label) { return stream.open_.root(label); }

    std::int32_t unite(std::int32_t root, std::int32_t other) {
        OpenComponent& kept = stream.open_[root];
        OpenComponent& merged = stream.open_[other];
        kept.add(merged);
        merged.parent = root;
        stream.merged_[stream.merged_count_++] = other;
        stream.chains_.append(kept.runs, merged.runs);
        return root;
    }

    std::int32_t extend(std::int32_t, std::int32_t root, const PixelRun& run, std::int32_t y) {
        OpenComponent& grown = stream.open_[root];
        grown.add(run, y);
        stream.add_run(grown, run, y);
        return root;
    }

    void pass(std::int32_t label) { stream.ended_[stream.ended_count_++] = label; }
};

template <class Rule>
void ComponentStream<Rule>::label_row_and_decide(std::int32_t y) {
    ended_count_ = 0;
    Labels labels{*this};
    label_row(above_.runs(), row_.runs(), y, labels);
    decide_about_ended(y);
}

template <class Rule>
void ComponentStream<Rule>::add_run(OpenComponent& grown, const PixelRun& run, std::int32_t y) {
    if (rule_.settled(grown)) {
        chains_.release(grown.runs);
    } else {
        chains_.add(grown.runs, run, y);
    }
}

template <class Rule>
void ComponentStream<Rule>::decide_about_ended(std::int32_t y) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < ended_count_; ++i) {
        const std::int32_t label = open_.root(ended_[i]);
        OpenComponent& found = open_[label];
        // Another of its runs may go on, or have brought it here already.
        if (found.y1 > y || found.ended) continue;
        found.ended = true;
        ended_[count++] = label;
    }
    if (Rule::kInOrder && count > 1) {
        std::sort(ended_.data(), ended_.data() + count, [this](std::int32_t a, std::int32_t b) {
            return open_[a].sequence < open_[b].sequence;
        });
    }
    for (std::size_t i = 0; i < count; ++i) {
        OpenComponent& done = open_[ended_[i]];
        if (!rule_.settled(done) && rule_.erases(done)) {
            chains_.for_each(done.runs, [this](const RunChains::Link& run) {
                paint_span(page_.row(run.y), run.x0, run.x1 - run.x0, 0);
            });
        }
        chains_.release(done.runs);
        open_.release(ended_[i]);
    }
}

// Only the runs of the row that comes next name a merged label: once they name its root, the label
// is free.
template <class Rule>
void ComponentStream<Rule>::drop_merged() {
    if (merged_count_ == 0) return;
    const RowRuns row = row_.runs();
    for (std::size_t i = 0; i < row.count; ++i) row.labels[i] = open_.root(row.labels[i]);
    while (merged_count_ > 0) open_.release(merged_[--merged_count_]);
}

// All rows of a page.
template <class Rule>
void stream_components(common::MutableBitonalView page, Rule rule) {
    ComponentStream<Rule> stream(page, rule);
    for (std::int32_t y = 0; y < page.height; ++y) stream.add_row(page.row(y), y);
    stream.finish();
}

}  // namespace ink

// The 8-connected components of a page, found row by row and erased as they end, where a rule
// decides so: what component_engine.h does, for passes that erase or keep and nothing else, in less
// time and memory. The engine remains for rules that look at a component's runs or end a step
// before its last component.
//
// Use: stream_components(PageInk(page), rule);
//
// The ink is one as component_eraser.h describes it, with two members more:
//     std::int32_t height() const;
//     void extract(std::int32_t y, LabelledRuns& row);
//         the runs of a row: called for each row once, from the top down.
//
// A rule has two members:
//     static constexpr bool kInOrder;
//         whether the rule is asked about components that end in the same row in the order in which
//         they began. A component that several have become is as old as the one that the leftmost
//         of their runs above the meeting belongs to.
//     bool erases(const OpenComponent& ended);
//         decides about a finished component. It is erased before the next decision.
//
// Memory: two rows of runs, a record for each open component (fewer than width + 3), and what
// component_eraser.h takes. Runs are not kept: those of a component that is erased are found again.
//
// Keep true: width and height are at most 65,535. Throws std::bad_alloc and what the rule throws.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/buffer.h"
#include "ink/component_box.h"
#include "ink/component_eraser.h"
#include "ink/page_ink.h"
#include "ink/row_labels.h"

namespace ink {

struct OpenComponent : ComponentBox {
    std::uint32_t sequence;  // the number of components that began before it
    std::int32_t parent;     // the component that it has become part of; its own label until then
    std::int32_t newest;     // first pixel of the run that was added last, in row y1 - 1
    bool ended;
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
        (*this)[label] = {ComponentBox::of(run, y), sequence_++, label, run.x0, false};
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

template <class Ink, class Rule>
class ComponentStream {
  public:
    ComponentStream(Ink& ink, Rule& rule)
        : ink_(ink),
          rule_(rule),
          eraser_(ink),
          open_(ink.x_end()),
          row_(ink.x_end()),
          above_(ink.x_end()),
          merged_(static_cast<std::size_t>(ink.x_end()) / 2 + 1),
          ended_(static_cast<std::size_t>(ink.x_end()) / 2 + 1) {}

    void run() {
        for (std::int32_t y = 0; y < ink_.height(); ++y) {
            ink_.extract(y, row_);
            if (row_.runs().count == 0 && above_.runs().count == 0) continue;
            label_row_and_decide(y);
            drop_merged();
            std::swap(row_, above_);
        }
        row_.clear();
        label_row_and_decide(ink_.height());
    }

  private:
    struct Labels;

    void label_row_and_decide(std::int32_t y);
    void decide_about_ended(std::int32_t y);
    void drop_merged();

    Ink& ink_;
    Rule& rule_;
    ComponentEraser<Ink> eraser_;
    OpenComponents open_;
    LabelledRuns row_;
    LabelledRuns above_;
    frame::Buffer<std::int32_t> merged_;  // labels that this row has merged into others
    std::size_t merged_count_ = 0;
    frame::Buffer<std::int32_t> ended_;  // labels of runs above that nothing touches
    std::size_t ended_count_ = 0;
};

// What label_row() calls.
template <class Ink, class Rule>
struct ComponentStream<Ink, Rule>::Labels {
    ComponentStream& stream;

    std::int32_t start(const PixelRun& run, std::int32_t y) { return stream.open_.add(run, y); }

    std::int32_t root(std::int32_t label) { return stream.open_.root(label); }

    std::int32_t unite(std::int32_t root, std::int32_t other) {
        OpenComponent& merged = stream.open_[other];
        stream.open_[root].add(merged);
        merged.parent = root;
        stream.merged_[stream.merged_count_++] = other;
        return root;
    }

    std::int32_t extend(std::int32_t, std::int32_t root, const PixelRun& run, std::int32_t y) {
        OpenComponent& grown = stream.open_[root];
        grown.add(run, y);
        grown.newest = run.x0;
        return root;
    }

    void pass(std::int32_t label) { stream.ended_[stream.ended_count_++] = label; }
};

template <class Ink, class Rule>
void ComponentStream<Ink, Rule>::label_row_and_decide(std::int32_t y) {
    ended_count_ = 0;
    Labels labels{*this};
    label_row(above_.runs(), row_.runs(), y, labels);
    decide_about_ended(y);
}

template <class Ink, class Rule>
void ComponentStream<Ink, Rule>::decide_about_ended(std::int32_t y) {
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
        const OpenComponent& done = open_[ended_[i]];
        if (rule_.erases(done)) eraser_.erase(done, done.newest, done.y1 - 1);
        open_.release(ended_[i]);
    }
}

// Only the runs of the row that comes next name a merged label: once they name its root, the label
// is free.
template <class Ink, class Rule>
void ComponentStream<Ink, Rule>::drop_merged() {
    if (merged_count_ == 0) return;
    const RowRuns row = row_.runs();
    for (std::size_t i = 0; i < row.count; ++i) row.labels[i] = open_.root(row.labels[i]);
    while (merged_count_ > 0) open_.release(merged_[--merged_count_]);
}

template <class Ink, class Rule>
void stream_components(Ink&& ink, Rule&& rule) {
    ComponentStream<std::remove_reference_t<Ink>, std::remove_reference_t<Rule>>(ink, rule).run();
}

}  // namespace ink

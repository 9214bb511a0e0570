// The 8-connected components of a page, found row by row and erased as they end, where the pass
// decides so: what component_engine.h does, for passes that erase or keep and nothing else, in a
// fraction of the time. The engine remains for rules that look at a component's runs, take white
// for ink, or end a step before its last component, which is then decided about again.
//
// Use:
//     ComponentStream<Rule> stream(page, rule);
//     for (y = 0 .. height - 1) stream.add_row(row y of the ink, y);
//     stream.finish();
// The ink's rows may be the page's, or the page's with changes: erasing always happens in the page.
//
// A rule has three members:
//     static constexpr bool kInOrder;
//         components that end in the same row are decided about in the order in which they began;
//         one made of several began where the leftmost run above the meeting did
//     bool stays(const OpenComponent&) const;
//         true for one that will not be erased whatever comes: its runs are let go
//     bool erases(const OpenComponent&);
//         decides about a finished one, which is erased before the next decision
//
// Memory: two rows of runs, a record for each open component (fewer than width + 3), and 12 bytes
// for each run of an open component that may yet be erased.
//
// Keep true: width and height are at most 65,535. Throws std::bad_alloc and what the rule throws.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"
#include "ink/run_labels.h"
#include "simd/bits/run_edges.h"

namespace ink {

struct OpenComponent {
    std::int32_t x0;
    std::int32_t x1;  // exclusive
    std::int32_t y0;
    std::int32_t y1;         // exclusive
    std::uint32_t area;      // ink pixels
    std::uint32_t sequence;  // rank of its first run among those that touched nothing above
    std::int32_t joined;     // the component that it has become part of; its own label until then
    std::int32_t first_run;  // chain in RunChains
    std::int32_t last_run;
    bool ended;

    std::int32_t width() const { return x1 - x0; }
    std::int32_t height() const { return y1 - y0; }
};

// Runs in chains that are joined and released whole.
class RunChains {
  public:
    static constexpr std::int32_t kEnd = -1;

    struct Link {
        std::uint16_t x0;
        std::uint16_t x1;
        std::uint16_t y;
        std::int32_t next;
    };

    const Link& operator[](std::int32_t index) const {
        return links_[static_cast<std::size_t>(index)];
    }

    std::int32_t add(std::int32_t x0, std::int32_t x1, std::int32_t y) {
        std::int32_t index = released_;
        if (index != kEnd) {
            released_ = link(index).next;
        } else {
            if (static_cast<std::size_t>(used_) == links_.size()) grow();
            index = used_++;
        }
        link(index) = {static_cast<std::uint16_t>(x0), static_cast<std::uint16_t>(x1),
                       static_cast<std::uint16_t>(y), kEnd};
        return index;
    }

    void join(std::int32_t last, std::int32_t first) { link(last).next = first; }

    void release(std::int32_t first, std::int32_t last) {
        link(last).next = released_;
        released_ = first;
    }

  private:
    Link& link(std::int32_t index) { return links_[static_cast<std::size_t>(index)]; }

    void grow() {
        const std::size_t capacity = std::max<std::size_t>(kFirstCapacity, 2 * links_.size());
        if (capacity > kMostLinks) throw std::bad_alloc();
        frame::Buffer<Link> larger(capacity);
        std::copy_n(links_.begin(), links_.size(), larger.begin());
        links_ = std::move(larger);
    }

    static constexpr std::size_t kFirstCapacity = 1024;
    static constexpr std::size_t kMostLinks = std::size_t{1} << 31;

    frame::Buffer<Link> links_;
    std::int32_t used_ = 0;
    std::int32_t released_ = kEnd;
};

// The open components of a page, under labels that are used again.
class OpenComponents {
  public:
    // Records for the most components that two rows can hold.
    explicit OpenComponents(std::int32_t width)
        : components_(static_cast<std::size_t>(width) + 3),
          free_labels_(static_cast<std::size_t>(width) + 3) {}

    OpenComponent& operator[](std::int32_t label) {
        return components_[static_cast<std::size_t>(label)];
    }

    std::int32_t add(std::int32_t x0, std::int32_t x1, std::int32_t y) {
        const std::int32_t label =
            free_count_ > 0 ? free_labels_[--free_count_] : static_cast<std::int32_t>(used_++);
        (*this)[label] = {x0,
                          x1,
                          y,
                          y + 1,
                          static_cast<std::uint32_t>(x1 - x0),
                          sequence_++,
                          label,
                          RunChains::kEnd,
                          RunChains::kEnd,
                          false};
        return label;
    }

    void release(std::int32_t label) { free_labels_[free_count_++] = label; }

    // The component that a label's has become part of.
    std::int32_t whole(std::int32_t label) {
        while ((*this)[label].joined != label) {
            (*this)[label].joined = (*this)[(*this)[label].joined].joined;
            label = (*this)[label].joined;
        }
        return label;
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
          current_(page.width),
          above_(page.width),
          joined_(most_runs(page.width)),
          ended_(most_runs(page.width)) {}

    // Takes row y of the ink, the rows in order.
    void add_row(const std::uint8_t* ink, std::int32_t y) {
        current_.count = static_cast<std::size_t>(simd::extract_runs(ink, 0, page_.width, false,
                                                                     &current_.runs.data()->x0)) /
                         2;
        if (current_.count == 0 && above_.count == 0) return;
        label_row(y);
        decide_about_ended(y);
        drop_joined();
        std::swap(current_, above_);
    }

    void finish() {
        current_.count = 0;
        label_row(page_.height);
        decide_about_ended(page_.height);
    }

  private:
    static std::size_t most_runs(std::int32_t width) {
        return static_cast<std::size_t>(width) / 2 + 1;
    }

    struct Row {
        explicit Row(std::int32_t width)
            : runs(most_runs(width) + simd::kRunSlack), labels(most_runs(width)) {}
        frame::Buffer<PixelRun> runs;
        frame::Buffer<std::int32_t> labels;
        std::size_t count = 0;
    };

    void label_row(std::int32_t y);
    void extend(std::int32_t label, std::int32_t x0, std::int32_t x1, std::int32_t y);
    void join(std::int32_t into, std::int32_t from);
    void add_run(OpenComponent& grown, std::int32_t x0, std::int32_t x1, std::int32_t y);
    void let_go_of_runs(OpenComponent& holder);
    void decide_about_ended(std::int32_t y);
    void erase(const OpenComponent& erased);
    void drop_joined();

    common::MutableBitonalView page_;
    Rule& rule_;
    OpenComponents open_;
    RunChains chains_;
    Row current_;
    Row above_;
    frame::Buffer<std::int32_t> joined_;  // labels that this row has joined to others
    std::size_t joined_count_ = 0;
    frame::Buffer<std::int32_t> ended_;  // labels of runs above that nothing touches
    std::size_t ended_count_ = 0;
};

template <class Rule>
void ComponentStream<Rule>::label_row(std::int32_t y) {
    ended_count_ = 0;
    std::size_t a = 0;
    bool touched = false;  // run a of the row above
    const auto pass_run_above = [&] {
        if (!touched) ended_[ended_count_++] = above_.labels[a];
        touched = false;
        ++a;
    };
    for (std::size_t i = 0; i < current_.count; ++i) {
        const auto [x0, x1] = current_.runs[i];
        while (a < above_.count && above_.runs[a].x1 < x0) pass_run_above();
        if (a == above_.count || above_.runs[a].x0 > x1) {
            const std::int32_t label = open_.add(x0, x1, y);
            add_run(open_[label], x0, x1, y);
            current_.labels[i] = label;
            continue;
        }
        touched = true;
        const std::int32_t label = open_.whole(above_.labels[a]);
        // The last run above that touches this one may touch the next one too.
        while (a + 1 < above_.count && above_.runs[a + 1].x0 <= x1) {
            const std::int32_t other = open_.whole(above_.labels[++a]);
            if (other != label) join(label, other);
        }
        extend(label, x0, x1, y);
        current_.labels[i] = label;
    }
    while (a < above_.count) pass_run_above();
}

template <class Rule>
void ComponentStream<Rule>::add_run(OpenComponent& grown, std::int32_t x0, std::int32_t x1,
                                    std::int32_t y) {
    if (rule_.stays(grown)) return let_go_of_runs(grown);
    const std::int32_t added = chains_.add(x0, x1, y);
    if (grown.first_run == RunChains::kEnd) {
        grown.first_run = added;
    } else {
        chains_.join(grown.last_run, added);
    }
    grown.last_run = added;
}

template <class Rule>
void ComponentStream<Rule>::let_go_of_runs(OpenComponent& holder) {
    if (holder.first_run == RunChains::kEnd) return;
    chains_.release(holder.first_run, holder.last_run);
    holder.first_run = RunChains::kEnd;
}

template <class Rule>
void ComponentStream<Rule>::extend(std::int32_t label, std::int32_t x0, std::int32_t x1,
                                   std::int32_t y) {
    OpenComponent& grown = open_[label];
    grown.x0 = std::min(grown.x0, x0);
    grown.x1 = std::max(grown.x1, x1);
    grown.y1 = y + 1;
    grown.area += static_cast<std::uint32_t>(x1 - x0);
    add_run(grown, x0, x1, y);
}

template <class Rule>
void ComponentStream<Rule>::join(std::int32_t into, std::int32_t from) {
    OpenComponent& kept = open_[into];
    OpenComponent& part = open_[from];
    kept.x0 = std::min(kept.x0, part.x0);
    kept.x1 = std::max(kept.x1, part.x1);
    kept.y0 = std::min(kept.y0, part.y0);
    kept.y1 = std::max(kept.y1, part.y1);
    kept.area += part.area;
    part.joined = into;
    joined_[joined_count_++] = from;
    if (part.first_run == RunChains::kEnd) return;
    if (kept.first_run == RunChains::kEnd) {
        kept.first_run = part.first_run;
    } else {
        chains_.join(kept.last_run, part.first_run);
    }
    kept.last_run = part.last_run;
}

template <class Rule>
void ComponentStream<Rule>::decide_about_ended(std::int32_t y) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < ended_count_; ++i) {
        const std::int32_t label = open_.whole(ended_[i]);
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
        if (!rule_.stays(done) && rule_.erases(done)) erase(done);
        let_go_of_runs(done);
        open_.release(ended_[i]);
    }
}

template <class Rule>
void ComponentStream<Rule>::erase(const OpenComponent& erased) {
    for (std::int32_t i = erased.first_run; i != RunChains::kEnd;) {
        const RunChains::Link& run = chains_[i];
        paint_span(page_.row(run.y), run.x0, run.x1 - run.x0, 0);
        i = run.next;
    }
}

// A label is named by the runs of the row below only: once those name the whole, it is free.
template <class Rule>
void ComponentStream<Rule>::drop_joined() {
    if (joined_count_ == 0) return;
    for (std::size_t i = 0; i < current_.count; ++i) {
        current_.labels[i] = open_.whole(current_.labels[i]);
    }
    while (joined_count_ > 0) open_.release(joined_[--joined_count_]);
}

// All rows of a page.
template <class Rule>
void stream_components(common::MutableBitonalView page, Rule rule) {
    ComponentStream<Rule> stream(page, rule);
    for (std::int32_t y = 0; y < page.height; ++y) stream.add_row(page.row(y), y);
    stream.finish();
}

}  // namespace ink

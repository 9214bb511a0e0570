// The forest of provisional labels of a page labelling, with what each label has collected.
//
// Use: add() for a run that touches nothing above it; root() and unite() where labels meet;
// extend() for every further run; resolve() once at the end, then number() and take_components().
//
// Keep true: labels are given in raster order. Roots are the smallest of their trees, so a label is
// never below its parent, one ascending pass resolves the forest, and the numbering follows the
// first runs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/buffer.h"
#include "ink/run_labels.h"

namespace ink {

class LabelForest {
  public:
    explicit LabelForest(common::BitonalView page)
        : first_capacity_(std::clamp<std::size_t>(static_cast<std::size_t>(page.height) *
                                                      static_cast<std::size_t>(page.width) /
                                                      kPixelsPerLabel,
                                                  64, kMaxFirstCapacity)) {}

    std::int32_t add(std::int32_t x0, std::int32_t x1, std::int32_t y) {
        if (static_cast<std::size_t>(size_) == parents_.size()) grow();
        const std::int32_t label = size_++;
        parent(label) = label;
        node(label) = LabelledComponent{x0, x1, y, y + 1, std::int64_t{x1} - x0, 1};
        return label;
    }

    void extend(std::int32_t label, std::int32_t x0, std::int32_t x1, std::int32_t y) {
        LabelledComponent& grown = node(label);
        grown.x0 = std::min(grown.x0, x0);
        grown.x1 = std::max(grown.x1, x1);
        grown.y1 = y + 1;
        grown.area += std::int64_t{x1} - x0;
        ++grown.run_count;
    }

    std::int32_t root(std::int32_t label) {
        while (parent(label) != label) {
            parent(label) = parent(parent(label));
            label = parent(label);
        }
        return label;
    }

    // Both are roots; returns the one of the two that stays.
    std::int32_t unite(std::int32_t a, std::int32_t b) {
        if (a > b) std::swap(a, b);
        parent(b) = a;
        return a;
    }

    // Turns the parents into dense numbers and the nodes into finished components at the front.
    // Returns their number.
    std::int32_t resolve() {
        std::int32_t count = 0;
        for (std::int32_t label = 0; label < size_; ++label) {
            const LabelledComponent part = node(label);
            if (parent(label) == label) {
                node(count) = part;
                parent(label) = count++;
                continue;
            }
            parent(label) = parent(parent(label));
            LabelledComponent& whole = node(parent(label));
            whole.x0 = std::min(whole.x0, part.x0);
            whole.x1 = std::max(whole.x1, part.x1);
            whole.y1 = std::max(whole.y1, part.y1);
            whole.area += part.area;
            whole.run_count += part.run_count;
        }
        return count;
    }

    std::int32_t number(std::int32_t label) const {
        return parents_[static_cast<std::size_t>(label)];
    }

    frame::Buffer<LabelledComponent> take_components() { return std::move(nodes_); }

  private:
    // More labels than nearly any page of text has: memory that is not touched costs nothing,
    // growing does.
    static constexpr std::size_t kPixelsPerLabel = 1024;
    static constexpr std::size_t kMaxFirstCapacity = std::size_t{1} << 20;

    std::int32_t& parent(std::int32_t label) { return parents_[static_cast<std::size_t>(label)]; }
    LabelledComponent& node(std::int32_t label) { return nodes_[static_cast<std::size_t>(label)]; }

    void grow() {
        const std::size_t used = static_cast<std::size_t>(size_);
        const std::size_t capacity = used == 0 ? first_capacity_ : 2 * used;
        frame::Buffer<std::int32_t> parents(capacity);
        frame::Buffer<LabelledComponent> nodes(capacity);
        std::copy_n(parents_.begin(), used, parents.begin());
        std::copy_n(nodes_.begin(), used, nodes.begin());
        parents_ = std::move(parents);
        nodes_ = std::move(nodes);
    }

    std::size_t first_capacity_;
    frame::Buffer<std::int32_t> parents_;
    frame::Buffer<LabelledComponent> nodes_;
    std::int32_t size_ = 0;
};

}  // namespace ink

// The labels of a page labelling (row_labels.h), with the box that each label has collected.
//
// Use, where label_row() is that of row_labels.h for every row, for a whole page or a window of
// rows at a time:
//
//     label_row* resolve take_components
//     (label_row* fold (root | component)* keep)*
//
// Keep true: labels are given in raster order. Roots are the smallest of their trees, so a label is
// never below its parent, one ascending pass resolves the forest, and the numbering follows the
// first runs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/component_box.h"
#include "ink/larger_buffer.h"
#include "ink/row_labels.h"

namespace ink {

class LabelForest {
  public:
    explicit LabelForest(common::BitonalView page)
        : first_capacity_(std::clamp<std::size_t>(static_cast<std::size_t>(page.height) *
                                                      static_cast<std::size_t>(page.width) /
                                                      kPixelsPerLabel,
                                                  64, kMaxFirstCapacity)) {}

    // What label_row() calls.
    std::int32_t start(const PixelRun& run, std::int32_t y) {
        if (static_cast<std::size_t>(size_) == parents_.size()) grow();
        const std::int32_t label = size_++;
        parent(label) = label;
        box(label) = ComponentBox::of(run, y);
        return label;
    }
    std::int32_t root(std::int32_t label) {
        return find_root(label, [this](std::int32_t i) -> std::int32_t& { return parent(i); });
    }
    std::int32_t unite(std::int32_t a, std::int32_t b) {
        if (a > b) std::swap(a, b);
        parent(b) = a;
        return a;
    }
    std::int32_t extend(std::int32_t, std::int32_t root, const PixelRun& run, std::int32_t y) {
        box(root).add(run, y);
        return root;
    }
    void pass(std::int32_t) {}

    // Turns the parents into dense numbers and the boxes into finished components at the front.
    // Returns their number.
    std::int32_t resolve() {
        std::int32_t count = 0;
        for (std::int32_t label = 0; label < size_; ++label) {
            const ComponentBox part = box(label);
            if (parent(label) == label) {
                box(count) = part;
                parent(label) = count++;
                continue;
            }
            parent(label) = parent(parent(label));
            box(parent(label)).add(part);
        }
        return count;
    }

    frame::Buffer<ComponentBox> take_components() { return std::move(boxes_); }

    // Makes every label name its root, and gives the roots all boxes.
    void fold() {
        for (std::int32_t label = 0; label < size_; ++label) {
            if (parent(label) == label) continue;
            parent(label) = parent(parent(label));
            box(parent(label)).add(box(label));
        }
    }

    std::int32_t size() const { return size_; }

    // Of a folded forest.
    std::int32_t folded_root(std::int32_t label) const {
        return parents_[static_cast<std::size_t>(label)];
    }
    const ComponentBox& component(std::int32_t root) const {
        return boxes_[static_cast<std::size_t>(root)];
    }

    // Keeps of a folded forest the components that some labels name, and renames the labels to the
    // new ones of these.
    void keep(std::int32_t* labels, std::size_t count) {
        constexpr std::int32_t kDropped = -1;
        for (std::size_t i = 0; i < count; ++i) labels[i] = parent(labels[i]);
        std::fill_n(parents_.begin(), size_, kDropped);
        for (std::size_t i = 0; i < count; ++i) parent(labels[i]) = labels[i];
        std::int32_t kept = 0;
        for (std::int32_t label = 0; label < size_; ++label) {
            if (parent(label) == kDropped) continue;
            box(kept) = box(label);
            parent(label) = kept++;
        }
        for (std::size_t i = 0; i < count; ++i) labels[i] = parent(labels[i]);
        for (std::int32_t label = 0; label < kept; ++label) parent(label) = label;
        size_ = kept;
    }

  private:
    // More labels than nearly any page of text has: memory that is not touched costs nothing,
    // growing does.
    static constexpr std::size_t kPixelsPerLabel = 1024;
    static constexpr std::size_t kMaxFirstCapacity = std::size_t{1} << 20;

    std::int32_t& parent(std::int32_t label) { return parents_[static_cast<std::size_t>(label)]; }
    ComponentBox& box(std::int32_t label) { return boxes_[static_cast<std::size_t>(label)]; }

    void grow() {
        const std::size_t capacity = size_ == 0 ? first_capacity_ : 2 * parents_.size();
        parents_ = larger_buffer(parents_, capacity);
        boxes_ = larger_buffer(boxes_, capacity);
    }

    std::size_t first_capacity_;
    frame::Buffer<std::int32_t> parents_;
    frame::Buffer<ComponentBox> boxes_;
    std::int32_t size_ = 0;
};

}  // namespace ink

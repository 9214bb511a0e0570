// An index-linked list: every record of the cleaning tools lives in a slot of one, and is named by
// its slot index, never by a pointer, because the arrays move when they grow.
//
// Use:
//     KydListT<run> runs;
//     const std::int32_t slot = runs.insert_node(kAtEnd);
//     if (slot < 0) return -1;
//     runs[slot] = run{...};
//     for (std::int32_t s = runs.first; s != kNoSlot; s = runs.next(s)) use(runs[s]);
//
// A slot keeps its index from insert_node to erase_node; released slots are handed out again, the
// last released first, before the arrays grow. A fresh slot holds whatever was there: its user
// writes every field. No operation throws; a negative result is a failure that left the list as it
// was.
//
// Keep true: slots named by a caller that are in use are also linked, except between relink_all()
// and append_existing().
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "frame/memory.h"

namespace ink {

constexpr std::int32_t kNoSlot = -1;

// Positions of insert_node besides a slot.
constexpr std::int32_t kAtFront = -1;
constexpr std::int32_t kAtEnd = -2;

struct ListNode {
    std::int32_t prev;  // -1 at the head
    std::int32_t next;  // -1 at the tail; in a released slot the next released one
    std::uint8_t used;  // 1 from insert_node to erase_node
};

// Plain records in one block from the memory hooks that grows without throwing.
template <class T>
class GrowableArray {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= 16);

  public:
    GrowableArray() = default;
    GrowableArray(GrowableArray&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    GrowableArray& operator=(GrowableArray&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(capacity_, other.capacity_);
        return *this;
    }
    ~GrowableArray() { release(); }

    // A larger block that holds the first `filled` records, or an empty array when there is no
    // memory for it.
    GrowableArray grown(std::int32_t capacity, std::int32_t filled) const {
        GrowableArray larger;
        larger.data_ =
            static_cast<T*>(frame::allocate(static_cast<std::size_t>(capacity) * sizeof(T)));
        if (larger.data_ == nullptr) return larger;
        larger.capacity_ = capacity;
        if (filled > 0)
            std::memcpy(larger.data_, data_, static_cast<std::size_t>(filled) * sizeof(T));
        return larger;
    }

    void release() {
        frame::release(std::exchange(data_, nullptr));
        capacity_ = 0;
    }

    std::int32_t capacity() const { return capacity_; }
    T& operator[](std::int32_t index) { return data_[index]; }
    const T& operator[](std::int32_t index) const { return data_[index]; }

  private:
    T* data_ = nullptr;
    std::int32_t capacity_ = 0;  // records
};

template <class T>
class KydListT {
  public:
    static constexpr std::int32_t kMaxSlots = std::numeric_limits<std::int32_t>::max();

    KydListT() = default;
    KydListT(KydListT&& other) noexcept { *this = std::move(other); }
    KydListT& operator=(KydListT&& other) noexcept {
        if (this == &other) return *this;
        release_storage();
        nodes = std::move(other.nodes);
        elements = std::move(other.elements);
        count = other.count;
        first = other.first;
        last = other.last;
        free_head = other.free_head;
        handed_out_ = other.handed_out_;
        other.init();
        return *this;
    }

    GrowableArray<ListNode> nodes;
    GrowableArray<T> elements;  // element i is the record of node i
    std::int32_t count = 0;     // linked slots
    std::int32_t first = kNoSlot;
    std::int32_t last = kNoSlot;
    std::int32_t free_head = kNoSlot;  // the released slot that is handed out next

    std::int32_t init() { return release_storage(); }

    // Links a slot at the end (kAtEnd), at the front (kAtFront) or before the used slot `position`
    // and returns it; -1 when `position` is not in use, when the free chain is damaged and when
    // there is no memory or index left.
    std::int32_t insert_node(std::int32_t position) {
        if (position != kAtEnd && position != kAtFront && !in_use(position)) return -1;
        const std::int32_t slot = take_slot();
        if (slot < 0) return -1;
        if (position == kAtEnd) {
            link(slot, last, kNoSlot);
        } else if (position == kAtFront) {
            link(slot, kNoSlot, first);
        } else {
            link(slot, nodes[position].prev, position);
        }
        return slot;
    }

    // Unlinks the slot and makes it the next one to be handed out; -1 when it is not in use.
    std::int32_t erase_node(std::int32_t slot) {
        if (!in_use(slot)) return -1;
        ListNode& node = nodes[slot];
        (node.prev == kNoSlot ? first : nodes[node.prev].next) = node.next;
        (node.next == kNoSlot ? last : nodes[node.next].prev) = node.prev;
        node = ListNode{kNoSlot, free_head, 0};
        free_head = slot;
        --count;
        return 0;
    }

    // Forgets the order and keeps the slots: the start of a reordering by append_existing().
    std::int32_t relink_all() {
        count = 0;
        first = kNoSlot;
        last = kNoSlot;
        return 0;
    }

    // Links a slot that is in use but not linked at the end; -1 when it, or the slot that is the
    // last, is not in use.
    std::int32_t append_existing(std::int32_t slot) {
        if (!in_use(slot) || (last != kNoSlot && !in_use(last))) return -1;
        link(slot, last, kNoSlot);
        return 0;
    }

    std::int32_t release_storage() {
        nodes.release();
        elements.release();
        relink_all();
        free_head = kNoSlot;
        handed_out_ = 0;
        return 0;
    }

    bool in_use(std::int32_t slot) const {
        return slot >= 0 && slot < handed_out_ && nodes[slot].used != 0;
    }
    std::int32_t next(std::int32_t slot) const { return nodes[slot].next; }
    std::int32_t prev(std::int32_t slot) const { return nodes[slot].prev; }
    T& operator[](std::int32_t slot) { return elements[slot]; }
    const T& operator[](std::int32_t slot) const { return elements[slot]; }

  private:
    std::int32_t take_slot() {
        if (free_head != kNoSlot) {
            const std::int32_t slot = free_head;
            if (nodes[slot].used != 0) return -1;
            free_head = nodes[slot].next;
            return slot;
        }
        if (handed_out_ == kMaxSlots) return -1;
        if (handed_out_ == nodes.capacity() && !grow()) return -1;
        return handed_out_++;
    }

    // Both arrays or neither.
    bool grow() {
        const std::int32_t capacity =
            handed_out_ > kMaxSlots / 2 ? kMaxSlots : std::max(2, 2 * handed_out_);
        GrowableArray<ListNode> larger_nodes = nodes.grown(capacity, handed_out_);
        GrowableArray<T> larger_elements = elements.grown(capacity, handed_out_);
        if (larger_nodes.capacity() == 0 || larger_elements.capacity() == 0) return false;
        nodes = std::move(larger_nodes);
        elements = std::move(larger_elements);
        return true;
    }

    void link(std::int32_t slot, std::int32_t before, std::int32_t after) {
        nodes[slot] = ListNode{before, after, 1};
        (before == kNoSlot ? first : nodes[before].next) = slot;
        (after == kNoSlot ? last : nodes[after].prev) = slot;
        ++count;
    }

    std::int32_t handed_out_ = 0;  // slots that nodes holds: used or released
};

}  // namespace ink

// An index-linked list. A record lives in a slot and is named by the index of its slot, never by a
// pointer, because the arrays move when they grow.
//
// Use:
//     KydListT<run> runs;
//     const std::int32_t slot = runs.insert_node(kAtEnd);
//     if (slot < 0) return -1;
//     runs[slot] = run{...};
//     for (std::int32_t s = runs.first; s != kNoSlot; s = runs.next(s)) use(runs[s]);
//
// A slot keeps its index from insert_node to erase_node; released slots are handed out again, the
// last released first, before the arrays grow. The record of a fresh slot is
// uninitialised. The operations are fixed to return a number: a negative one is a failure that
// left the list as it was. None of them throws. Nothing calls init(), relink_all(),
// append_existing() and release_storage() yet: they are for lists that outlive a call.
//
// Keep true: slots named by a caller that are in use are also linked, except between relink_all()
// and append_existing().
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

#include "frame/buffer.h"
#include "ink/larger_buffer.h"

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

template <class T>
class KydListT {
  public:
    static constexpr std::int32_t kMaxSlots = std::numeric_limits<std::int32_t>::max();

    KydListT() = default;
    KydListT(const KydListT&) = delete;
    KydListT& operator=(const KydListT&) = delete;

    frame::Buffer<ListNode> nodes;
    frame::Buffer<T> elements;  // element i is the record of node i
    std::int32_t count = 0;     // linked slots
    std::int32_t first = kNoSlot;
    std::int32_t last = kNoSlot;
    std::int32_t free_head = kNoSlot;  // the released slot that is handed out next

    // Makes the list empty and gives its memory back.
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
            link(slot, node(position).prev, position);
        }
        return slot;
    }

    // Unlinks the slot and makes it the next one to be handed out; -1 when it is not in use.
    std::int32_t erase_node(std::int32_t slot) {
        if (!in_use(slot)) return -1;
        ListNode& erased = node(slot);
        (erased.prev == kNoSlot ? first : node(erased.prev).next) = erased.next;
        (erased.next == kNoSlot ? last : node(erased.next).prev) = erased.prev;
        erased = ListNode{kNoSlot, free_head, 0};
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
        nodes = frame::Buffer<ListNode>();
        elements = frame::Buffer<T>();
        relink_all();
        free_head = kNoSlot;
        handed_out_ = 0;
        return 0;
    }

    bool in_use(std::int32_t slot) const {
        return slot >= 0 && slot < handed_out_ && node(slot).used != 0;
    }
    std::int32_t next(std::int32_t slot) const { return node(slot).next; }
    std::int32_t prev(std::int32_t slot) const { return node(slot).prev; }
    T& operator[](std::int32_t slot) { return elements[static_cast<std::size_t>(slot)]; }
    const T& operator[](std::int32_t slot) const {
        return elements[static_cast<std::size_t>(slot)];
    }

  private:
    std::int32_t take_slot() {
        if (free_head != kNoSlot) {
            const std::int32_t slot = free_head;
            if (node(slot).used != 0) return -1;
            free_head = node(slot).next;
            return slot;
        }
        if (handed_out_ == kMaxSlots) return -1;
        if (static_cast<std::size_t>(handed_out_) == nodes.size() && !grow()) return -1;
        return handed_out_++;
    }

    // Both arrays or neither.
    bool grow() {
        const std::int32_t capacity =
            handed_out_ > kMaxSlots / 2 ? kMaxSlots : std::max(2, 2 * handed_out_);
        try {
            frame::Buffer<ListNode> larger =
                larger_buffer(nodes, static_cast<std::size_t>(capacity));
            elements = larger_buffer(elements, static_cast<std::size_t>(capacity));
            nodes = std::move(larger);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    ListNode& node(std::int32_t slot) { return nodes[static_cast<std::size_t>(slot)]; }
    const ListNode& node(std::int32_t slot) const { return nodes[static_cast<std::size_t>(slot)]; }

    void link(std::int32_t slot, std::int32_t before, std::int32_t after) {
        node(slot) = ListNode{before, after, 1};
        (before == kNoSlot ? first : node(before).next) = slot;
        (after == kNoSlot ? last : node(after).prev) = slot;
        ++count;
    }

    std::int32_t handed_out_ = 0;  // slots that have been used, released or not
};

}  // namespace ink

// One pass over the runs of two neighbouring rows. A run joins the component of the first run above
// that it touches; the components of further ones are merged into that one. Positions are half-open
// ranges, so runs touch, corners included, when neither ends before the other begins.

#include "ink/component_engine.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "ink/extract_runs.h"

namespace ink {
namespace {

std::int16_t smaller(std::int16_t a, std::int16_t b) {
    return unsigned_coordinate(a) < unsigned_coordinate(b) ? a : b;
}

std::int16_t larger(std::int16_t a, std::int16_t b) {
    return unsigned_coordinate(a) < unsigned_coordinate(b) ? b : a;
}

std::uint32_t length(const run& r) {
    return static_cast<std::uint32_t>(unsigned_coordinate(r.x1) - unsigned_coordinate(r.x0));
}

}  // namespace

std::int32_t ComponentEngine::out_of_memory() const {
    diag::report(logger_, diag::kOwner, diag::kErrorLevel, diag::kNoMemoryCode,
                 diag::kNoMemoryText);
    return -1;
}

std::int32_t ComponentEngine::begin(std::int32_t stride) {
    const std::size_t values = std::size_t{8} * static_cast<std::size_t>(stride) + 1;
    for (Row* row : {&current_, &previous_}) {
        row->ends = TryBuffer<std::int32_t>(values);
        row->labels = TryBuffer<std::int32_t>(values);
        row->values = 0;
        if (!row->ends || !row->labels) return out_of_memory();
    }
    return 0;
}

std::int32_t ComponentEngine::extract_row(int ink_value, const std::uint8_t* row,
                                          std::int32_t x_start, std::int32_t width) {
    current_.values = extract_runs(ink_value, row, x_start, width, current_.ends.data());
    return current_.values;
}

std::int32_t ComponentEngine::label_row(std::int32_t r) {
    const std::int32_t* const above = previous_.ends.data();
    const std::int32_t above_values = previous_.values;
    std::int32_t p = 0;
    for (std::int32_t i = 0; i < current_.values; i += 2) {
        const std::int32_t x0 = current_.ends.data()[i];
        const std::int32_t x1 = current_.ends.data()[i + 1];
        const std::int32_t run_slot = add_run(x0, x1, r);
        if (run_slot < 0) return out_of_memory();
        while (p < above_values && above[p + 1] < x0) p += 2;
        std::int32_t& label = current_.labels.data()[i / 2];
        if (p == above_values || above[p] > x1) {
            label = start_component(run_slot, r);
            if (label < 0) return out_of_memory();
            continue;
        }
        label = previous_.labels.data()[p / 2];
        extend_component(label, run_slot, r);
        const std::int32_t owner = component_of(label);
        // The last run above that touches this one is looked at again for the next one.
        while (p + 2 < above_values && above[p + 2] <= x1) {
            p += 2;
            const std::int32_t other = component_of(previous_.labels.data()[p / 2]);
            if (other != owner) merge_components(owner, other);
        }
    }
    return 0;
}

std::int32_t ComponentEngine::add_run(std::int32_t x0, std::int32_t x1, std::int32_t r) {
    const std::int32_t slot = runs.insert_node(kAtEnd);
    if (slot >= 0) {
        runs[slot] = run{stored_coordinate(x0), stored_coordinate(x1), stored_coordinate(r),
                         kNoSlot, kNoSlot};
    }
    return slot;
}

std::int32_t ComponentEngine::start_component(std::int32_t run_slot, std::int32_t r) {
    const std::int32_t segment_slot = segments.insert_node(kAtEnd);
    if (segment_slot < 0) return -1;
    const std::int32_t slot = components.insert_node(kAtEnd);
    if (slot < 0 || !grow_owners()) return -1;
    run& first = runs[run_slot];
    first.owner = segment_slot;
    segments[segment_slot] = segment{
        static_cast<std::uint16_t>(r + 1), owners_[slot].number, kNoSlot, run_slot, run_slot, 1};
    components[slot] = component{first.x0,      first.x1,     first.y, stored_coordinate(r + 1),
                                 length(first), segment_slot, 1};
    owners_[slot].last_segment = segment_slot;
    return segment_slot;
}

void ComponentEngine::extend_component(std::int32_t segment_slot, std::int32_t run_slot,
                                       std::int32_t r) {
    segment& joined = segments[segment_slot];
    run& added = runs[run_slot];
    added.owner = segment_slot;
    (joined.last_run == kNoSlot ? joined.first_run : runs[joined.last_run].next) = run_slot;
    joined.last_run = run_slot;
    ++joined.run_count;
    joined.last_row = static_cast<std::uint16_t>(r + 1);
    component& grown = components[component_of(segment_slot)];
    grown.x0 = smaller(grown.x0, added.x0);
    grown.x1 = larger(grown.x1, added.x1);
    grown.y1 = stored_coordinate(r + 1);
    grown.area += length(added);
}

void ComponentEngine::merge_components(std::int32_t into, std::int32_t from) {
    component& kept = components[into];
    const component& merged = components[from];
    kept.x0 = smaller(kept.x0, merged.x0);
    kept.x1 = larger(kept.x1, merged.x1);
    kept.y0 = smaller(kept.y0, merged.y0);
    kept.y1 = larger(kept.y1, merged.y1);
    kept.area += merged.area;

    const bool renumber_kept = kept.segment_count < merged.segment_count;
    const component& renumbered = renumber_kept ? kept : merged;
    const std::int32_t number = owners_[renumber_kept ? from : into].number;
    for (std::int32_t s = renumbered.first_segment; s != kNoSlot; s = segments[s].next) {
        segments[s].component = number;
    }
    if (renumber_kept) {
        std::swap(owners_[into].number, owners_[from].number);
        owners_[owners_[into].number].component = into;
        owners_[owners_[from].number].component = from;
    }

    segments[owners_[into].last_segment].next = merged.first_segment;
    owners_[into].last_segment = owners_[from].last_segment;
    kept.segment_count += merged.segment_count;
    components.erase_node(from);
}

bool ComponentEngine::grow_owners() {
    const std::int32_t capacity = components.nodes.capacity();
    const std::int32_t before = owners_.capacity();
    if (before == capacity) return true;
    GrowableArray<Owner> larger_owners = owners_.grown(capacity, before);
    if (larger_owners.capacity() == 0) return false;
    owners_ = std::move(larger_owners);
    for (std::int32_t i = before; i < capacity; ++i) owners_[i] = Owner{i, i, kNoSlot};
    return true;
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

// Segments that row r did not reach can be touched by no further run.
void ComponentEngine::settle_component(std::int32_t slot, std::int32_t r) {
    component& settled = components[slot];
    std::int32_t last_kept = kNoSlot;
    std::int32_t next = kNoSlot;
    for (std::int32_t s = settled.first_segment; s != kNoSlot; s = next) {
        next = segments[s].next;
        release_runs(segments[s]);
        if (segments[s].last_row == static_cast<std::uint16_t>(r + 1)) {
            last_kept = s;
            continue;
        }
        (last_kept == kNoSlot ? settled.first_segment : segments[last_kept].next) = next;
        --settled.segment_count;
        segments.erase_node(s);
    }
    owners_[slot].last_segment = last_kept;
}

void ComponentEngine::next_row() {
    std::swap(current_, previous_);
}

void ComponentEngine::release() {
    runs.release_storage();
    segments.release_storage();
    components.release_storage();
    owners_.release();
    current_ = Row{};
    previous_ = Row{};
}

void ComponentEngine::erase_ink(std::int32_t component_slot, int ink_value, std::uint8_t* image,
                                std::ptrdiff_t stride) const {
    const int paper = ink_value == 0 ? 0 : 1;
    for_each_run(component_slot, [&](const run& r) {
        paint_span(image + unsigned_coordinate(r.y) * stride, unsigned_coordinate(r.x0),
                   static_cast<std::int32_t>(length(r)), paper);
    });
}

}  // namespace ink

// Runs in chains that are joined, and released as one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "frame/buffer.h"
#include "ink/larger_buffer.h"
#include "ink/run.h"

namespace ink {

// Coordinates are at most 65,535.
class RunChains {
  public:
    struct Link {
        std::uint16_t x0;
        std::uint16_t x1;
        std::uint16_t y;
        std::int32_t next;
    };

    static constexpr std::int32_t kEnd = -1;

    struct Chain {
        std::int32_t first;  // kEnd: no runs
        std::int32_t last;
    };

    static constexpr Chain kEmpty{kEnd, kEnd};

    // Appends a run of row y. Throws std::bad_alloc.
    void add(Chain& chain, const PixelRun& run, std::int32_t y) {
        const std::int32_t index = new_link();
        link(index) = {static_cast<std::uint16_t>(run.x0), static_cast<std::uint16_t>(run.x1),
                       static_cast<std::uint16_t>(y), kEnd};
        append(chain, {index, index});
    }

    // Appends one chain to another.
    void append(Chain& chain, const Chain& appended) {
        if (appended.first == kEnd) return;
        (chain.first == kEnd ? chain.first : link(chain.last).next) = appended.first;
        chain.last = appended.last;
    }

    // Empties the chain.
    void release(Chain& chain) {
        if (chain.first == kEnd) return;
        link(chain.last).next = released_;
        released_ = std::exchange(chain.first, kEnd);
    }

    template <class Visit>
    void for_each(const Chain& chain, Visit visit) const {
        for (std::int32_t i = chain.first; i != kEnd;) {
            const Link& run = links_[static_cast<std::size_t>(i)];
            visit(run);
            i = run.next;
        }
    }

  private:
    static constexpr std::size_t kFirstCapacity = 1024;
    static constexpr std::size_t kMostLinks = std::size_t{1} << 31;

    Link& link(std::int32_t index) { return links_[static_cast<std::size_t>(index)]; }

    std::int32_t new_link() {
        if (released_ != kEnd) return std::exchange(released_, link(released_).next);
        if (static_cast<std::size_t>(used_) == links_.size()) grow();
        return used_++;
    }

    void grow() {
        const std::size_t capacity = std::max<std::size_t>(kFirstCapacity, 2 * links_.size());
        if (capacity > kMostLinks) throw std::bad_alloc();
        links_ = larger_buffer(links_, capacity);
    }

    frame::Buffer<Link> links_;
    std::int32_t used_ = 0;
    std::int32_t released_ = kEnd;
};

}  // namespace ink

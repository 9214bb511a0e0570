// Erases one component of a page, from one of its pixels: its runs are followed from row to row, in
// the order of their distance from that pixel.
//
// Use: ComponentEraser eraser(ink); eraser.erase(box, x, y);
//
// The ink says what is ink and how it is erased. It has these members, where the words are those of
// bit_words.h:
//     std::uint64_t word(std::int32_t y, std::int64_t x) const;
//         the ink among the 64 pixels from x on, a multiple of 64.
//     std::int32_t x_end() const;
//         one past the last column that has ink.
//     void erase(std::int32_t y, const PixelRun& run) const;
//         makes a whole run of ink white.
//
// Memory: 6 bytes for each run at the same distance, a few rows' worth for all but branching ink.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/buffer.h"
#include "ink/bit_words.h"
#include "ink/component_box.h"
#include "ink/larger_buffer.h"
#include "ink/run.h"

namespace ink {

template <class Ink>
class ComponentEraser {
  public:
    // The ink outlives this.
    explicit ComponentEraser(const Ink& ink) : ink_(ink) {}

    // Erases the component of that box that has the pixel (x, y). Throws std::bad_alloc, with the
    // component erased in part.
    void erase(const ComponentBox& box, std::int32_t x, std::int32_t y) {
        if (box.area == std::int64_t{box.width()} * box.height()) return erase_solid(box);
        found_count_ = 0;
        const std::int32_t first = x / kWord * kWord;
        take(y, run_at(y, first, ink_.word(y, first), x - first));
        while (found_count_ > 0) {
            std::swap(front_, found_);
            const std::size_t count = std::exchange(found_count_, 0);
            for (std::size_t i = 0; i < count; ++i) {
                const Place run = front_[i];
                if (run.y > box.y0) take_touching(run, run.y - 1);
                if (run.y + 1 < box.y1) take_touching(run, run.y + 1);
            }
        }
    }

  private:
    struct Place {
        std::uint16_t x0;
        std::uint16_t x1;
        std::uint16_t y;
    };
    static constexpr std::size_t kFirstCapacity = 256;
    static constexpr std::int32_t kWord = 64;  // pixels
    static constexpr std::uint64_t kAll = ~std::uint64_t{0};

    void erase_solid(const ComponentBox& box) {
        for (std::int32_t y = box.y0; y < box.y1; ++y) ink_.erase(y, {box.x0, box.x1});
    }

    // Takes the ink of row y that touches a run of the row above or below.
    void take_touching(const Place& run, std::int32_t y) {
        const std::int32_t end = std::min(run.x1 + 1, ink_.x_end());
        std::int32_t x = std::max(run.x0 - 1, 0);
        while (x < end) {
            const std::int32_t first = x / kWord * kWord;
            const std::uint64_t word = ink_.word(y, first);
            const std::uint64_t near = word & span_mask(x - first, std::min(end - first, kWord));
            if (near == 0) {
                x = first + kWord;
            } else {
                const PixelRun touching = run_at(y, first, word, std::countl_zero(near));
                take(y, touching);
                x = touching.x1;
            }
        }
    }

    void take(std::int32_t y, const PixelRun& run) {
        if (found_count_ == found_.size()) {
            found_ = larger_buffer(found_, std::max(kFirstCapacity, 2 * found_.size()));
        }
        found_[found_count_++] = {static_cast<std::uint16_t>(run.x0),
                                  static_cast<std::uint16_t>(run.x1),
                                  static_cast<std::uint16_t>(y)};
        ink_.erase(y, run);
    }

    // The run that has a pixel of the word that begins at `first`.
    PixelRun run_at(std::int32_t y, std::int32_t first, std::uint64_t word, int pixel) const {
        const std::uint64_t white_before = ~word & ~(kAll >> pixel);
        const int begin = white_before == 0 ? 0 : kWord - std::countr_zero(white_before);
        const int end = pixel + std::countl_one(word << pixel);
        PixelRun run{first + begin, first + end};
        if (begin == 0 && first > 0) run.x0 = begin_before(y, first);
        if (end == kWord && first + kWord < ink_.x_end()) run.x1 = end_from(y, first + kWord);
        return run;
    }

    // Where the ink begins that reaches up to pixel x, a multiple of 64.
    std::int32_t begin_before(std::int32_t y, std::int32_t x) const {
        for (; x > 0; x -= kWord) {
            const int ink = std::countr_one(ink_.word(y, x - kWord));
            if (ink < kWord) return x - ink;
        }
        return 0;
    }

    // Where the ink ends that goes on from pixel x, a multiple of 64.
    std::int32_t end_from(std::int32_t y, std::int32_t x) const {
        for (; x < ink_.x_end(); x += kWord) {
            const int ink = std::countl_one(ink_.word(y, x));
            if (ink < kWord) return x + ink;
        }
        return ink_.x_end();
    }

    const Ink& ink_;
    frame::Buffer<Place> front_;  // runs at one distance
    frame::Buffer<Place> found_;  // at the next one
    std::size_t found_count_ = 0;
};

}  // namespace ink

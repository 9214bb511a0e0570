// The ink of a page as the passes over components see it: the 1-bits or the 0-bits of some columns.
// The words are those of bit_words.h.
#pragma once

#include <algorithm>
#include <cstdint>

#include "common/views.h"
#include "ink/bit_words.h"
#include "ink/buffer_logic.h"
#include "ink/row_labels.h"
#include "ink/run.h"

namespace ink {

class PageInk {
  public:
    // `ink_value` 0 makes 1-bits the ink, any other value 0-bits.
    explicit PageInk(common::MutableBitonalView page, int ink_value = 0)
        : PageInk(page, ink_value, 0, page.width) {}
    PageInk(common::MutableBitonalView page, int ink_value, std::int32_t x_begin,
            std::int32_t x_end)
        : page_(page), inverted_(ink_value != 0), x_begin_(x_begin), x_end_(x_end) {}

    std::int32_t height() const { return page_.height; }
    std::int32_t x_end() const { return x_end_; }

    void extract(std::int32_t y, LabelledRuns& row) const {
        row.extract(inverted_ ? 1 : 0, page_.row(y), x_begin_, x_end_ - x_begin_);
    }

    std::uint64_t word(std::int32_t y, std::int64_t x) const {
        std::uint64_t ink = aligned_word(page_.row(y), x_end_, x);
        if (inverted_) ink = ~ink & span_mask(0, std::min(kWordPixels, x_end_ - x));
        if (x >= x_begin_) return ink;
        const std::int64_t outside = x_begin_ - x;
        return outside < kWordPixels ? ink & span_mask(outside, kWordPixels) : 0;
    }

    void erase(std::int32_t y, const PixelRun& run) const {
        paint_span(page_.row(y), run.x0, run.length(), inverted_ ? 1 : 0);
    }

  private:
    common::MutableBitonalView page_;
    bool inverted_;
    std::int32_t x_begin_;
    std::int32_t x_end_;
};

}  // namespace ink

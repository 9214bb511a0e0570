// The gaps are filled in a copy of each row, and components are erased from the page itself. So the
// page never has filled gaps, and needs no copy to take them back.
//
// Sizes above 65,535 count in full for the gaps and modulo 65,536 for the components. Pages like
// that are filtered step by step.
#include "cleaning/specks/text_filter.h"

#include <algorithm>

#include "cleaning/specks/stt_image.h"
#include "frame/buffer.h"
#include "ink/component_stream.h"
#include "ink/page_logic.h"
#include "ink/run.h"
#include "ink/run_morphology.h"

namespace cleaning {
namespace {

class TextRule {
  public:
    static constexpr bool kInOrder = false;

    explicit TextRule(const TextShape& shape) : shape_(shape) {}

    bool erases(const ink::OpenComponent& ended) const {
        const std::int64_t height = ended.height();
        const std::int64_t width = ended.width();
        return height > shape_.max_height || ended.area < height * shape_.min_density ||
               ended.area < width * shape_.min_density;
    }

  private:
    TextShape shape_;
};

// Copies a row and fills its single white pixels between ink. Padding bits may be filled, too.
void fill_single_gaps(const std::uint8_t* row, std::int32_t width, std::uint8_t* filled) {
    const auto last = static_cast<std::size_t>(common::bitonal_bytes(width)) - 1;
    const auto fill = [](int before, int here, int after) {
        const int with_ink_before = before << 7 | here >> 1;
        const int with_ink_after = here << 1 | after >> 7;
        return static_cast<std::uint8_t>(here | (with_ink_before & with_ink_after));
    };
    // Padding must not pass for the ink behind a gap.
    const int end = row[last] & (0xFF00 >> ((width - 1) % 8 + 1));
    if (last == 0) {
        filled[0] = fill(0, end, 0);
        return;
    }
    filled[0] = fill(0, row[0], last == 1 ? end : row[1]);
    for (std::size_t i = 1; i + 1 < last; ++i) filled[i] = fill(row[i - 1], row[i], row[i + 1]);
    if (last > 1) filled[last - 1] = fill(row[last - 2], row[last - 1], end);
    filled[last] = fill(row[last - 1], end, 0);
}

// The page's ink with the single white pixels between ink of its rows.
class FilledInk {
  public:
    // Throws std::bad_alloc.
    explicit FilledInk(common::MutableBitonalView page)
        : page_(page), filled_(static_cast<std::size_t>(common::bitonal_bytes(page.width))) {}

    std::int32_t height() const { return page_.height; }
    std::int32_t x_end() const { return page_.width; }

    void extract(std::int32_t y, ink::LabelledRuns& row) {
        fill_single_gaps(page_.row(y), page_.width, filled_.data());
        row.extract(0, filled_.data(), 0, page_.width);
    }

    // Erased runs are erased with their gaps, so that what is left has the gaps that it had.
    std::uint64_t word(std::int32_t y, std::int64_t x) const {
        const std::uint64_t ink = ink::aligned_word(page_.row(y), page_.width, x);
        const std::uint64_t before = ink >> 1 | pixel(y, x - 1) << 63;
        const std::uint64_t behind = ink << 1 | pixel(y, x + 64);
        return ink | (before & behind);
    }

    void erase(std::int32_t y, const ink::PixelRun& run) const {
        ink::paint_span(page_.row(y), run.x0, run.length(), 0);
    }

  private:
    std::uint64_t pixel(std::int32_t y, std::int64_t x) const {
        if (x < 0 || x >= page_.width) return 0;
        return page_.row(y)[x / 8] >> (7 - x % 8) & 1;
    }

    common::MutableBitonalView page_;
    frame::Buffer<std::uint8_t> filled_;  // a row
};

void filter_in_steps(common::MutableBitonalView page, const TextShape& shape) {
    const auto stride = static_cast<std::int32_t>(page.stride);
    common::BitonalPage copy = ink::copy_of(page);
    ink::fill_gaps(ink::Along::kRows, 2, page, common::whole(page));
    const stt_image image = wrapped_image(page.data, page.height, page.width, stride);
    ink::stream_components(ink::PageInk(image.view()), TextRule(shape));
    ink::and_page(page, copy.view());
}

}  // namespace

void keep_text(common::MutableBitonalView page, const TextShape& shape) {
    if (std::max<std::ptrdiff_t>({page.height, page.width, page.stride}) > ink::kMaxRunCoordinate) {
        return filter_in_steps(page, shape);
    }
    ink::stream_components(FilledInk(page), TextRule(shape));
}

}  // namespace cleaning

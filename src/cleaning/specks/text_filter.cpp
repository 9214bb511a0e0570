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

    bool settled(const ink::OpenComponent&) const { return false; }
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

void filter_in_steps(common::MutableBitonalView page, const TextShape& shape) {
    const auto stride = static_cast<std::int32_t>(page.stride);
    common::BitonalPage copy = ink::copy_of(page);
    ink::fill_gaps(ink::Along::kRows, 2, page, common::whole(page));
    ink::stream_components(wrapped_image(page.data, page.height, page.width, stride).view(),
                           TextRule(shape));
    ink::and_page(page, copy.view());
}

}  // namespace

void keep_text(common::MutableBitonalView page, const TextShape& shape) {
    if (std::max<std::ptrdiff_t>({page.height, page.width, page.stride}) > ink::kMaxRunCoordinate) {
        return filter_in_steps(page, shape);
    }
    TextRule rule(shape);
    ink::ComponentStream<TextRule> stream(page, rule);
    frame::Buffer<std::uint8_t> filled(static_cast<std::size_t>(common::bitonal_bytes(page.width)));
    for (std::int32_t y = 0; y < page.height; ++y) {
        fill_single_gaps(page.row(y), page.width, filled.data());
        stream.add_row(filled.data(), y);
    }
    stream.finish();
}

}  // namespace cleaning

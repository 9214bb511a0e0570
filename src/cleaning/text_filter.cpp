// The gaps are filled in a copy of the row that is looked at, and only the page's own ink can be
// erased, so the page needs no copy that brings its gaps back.
//
// Sizes beyond 16 bits count in full for the gaps and modulo 65,536 for the components; there the
// filter is done in steps, on the page.
#include "cleaning/text_filter.h"

#include <algorithm>
#include <new>

#include "cleaning/component_stream.h"
#include "cleaning/page_copy.h"
#include "cleaning/run.h"
#include "cleaning/run_morphology.h"
#include "cleaning/stt_image.h"
#include "frame/buffer.h"

namespace cleaning {
namespace {

class TextRule {
  public:
    static constexpr bool kInOrder = false;

    explicit TextRule(const TextShape& shape) : shape_(shape) {}

    bool stays(const OpenComponent&) const { return false; }
    bool erases(const OpenComponent& ended) const {
        const std::int64_t sides[] = {ended.height(), ended.width()};
        return sides[0] > shape_.max_height ||
               ended.area < *std::max_element(sides, sides + 2) * shape_.min_density ||
               ended.area < *std::min_element(sides, sides + 2) * shape_.min_density;
    }

  private:
    TextShape shape_;
};

// Copies a row with its single white pixels between ink filled. Bits beyond the pixels may be
// filled too.
void fill_single_gaps(const std::uint8_t* row, std::int32_t width, std::uint8_t* filled) {
    const auto bytes = static_cast<std::size_t>(common::bitonal_bytes(width));
    // Padding must not pass for the ink behind a gap.
    const auto last = static_cast<std::uint8_t>(row[bytes - 1] & (0xFF00 >> ((width - 1) % 8 + 1)));
    const auto fill = [](unsigned before, unsigned here, unsigned after) {
        const unsigned line = before << 16 | here << 8 | after;
        return static_cast<std::uint8_t>((line | (line >> 1 & line << 1)) >> 8);
    };
    const auto byte = [&](std::size_t i) -> unsigned { return i + 1 < bytes ? row[i] : last; };
    for (std::size_t i = 0; i < bytes; ++i) {
        filled[i] = fill(i > 0 ? byte(i - 1) : 0, byte(i), i + 1 < bytes ? byte(i + 1) : 0);
    }
}

void filter_in_steps(common::MutableBitonalView page, const TextShape& shape) {
    const auto stride = static_cast<std::int32_t>(page.stride);
    PageCopy copy(page);
    if (h_fill_gaps(nullptr, 2, page.data, stride, 0, page.width, 0, page.height) < 0) {
        throw std::bad_alloc();
    }
    stream_components(wrapped_image(page.data, page.height, page.width, stride).view(),
                      TextRule(shape));
    and_page(page, copy.view());
}

}  // namespace

void keep_text(common::MutableBitonalView page, const TextShape& shape) {
    if (std::max<std::ptrdiff_t>({page.height, page.width, page.stride}) > kMaxRunCoordinate) {
        return filter_in_steps(page, shape);
    }
    TextRule rule(shape);
    ComponentStream<TextRule> stream(page, rule);
    frame::Buffer<std::uint8_t> filled(static_cast<std::size_t>(common::bitonal_bytes(page.width)));
    for (std::int32_t y = 0; y < page.height; ++y) {
        fill_single_gaps(page.row(y), page.width, filled.data());
        stream.add_row(filled.data(), y);
    }
    stream.finish();
}

}  // namespace cleaning

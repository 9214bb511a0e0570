// Candidates are the runs of the page that are long along the line, once steps aside are bridged,
// without the ink that is thick across it. A pass over the components erases those of short extent
// and marks the extents of the others in a row of bits.
#include "cleaning/lines/underline.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "common/page.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"
#include "ink/component_stream.h"

namespace cleaning {
namespace {

// Erases short components and marks the extents of the others. When the most lines have been
// counted, one more is left where it is, and with it the components that began after it.
class ExtentRule {
  public:
    static constexpr bool kInOrder = true;

    // `covered` has a bit for each column of the page, or for each row of vertical lines.
    ExtentRule(LineDirection direction, std::int32_t min_extent, std::uint8_t* covered)
        : horizontal_(direction == LineDirection::kHorizontal),
          min_extent_(min_extent),
          covered_(covered) {}

    bool erases(const ink::OpenComponent& ended) {
        if (ended.sequence > last_decided_) return false;
        const std::int32_t extent = horizontal_ ? ended.width() : ended.height();
        if (extent <= min_extent_) return true;
        if (count_ == kMaxUnderlines) {
            last_decided_ = ended.sequence;
        } else {
            ++count_;
            ink::paint_span(covered_, horizontal_ ? ended.x0 : ended.y0, extent, 1);
        }
        return false;
    }

  private:
    bool horizontal_;
    std::int32_t min_extent_;
    std::uint8_t* covered_;
    std::int32_t count_ = 0;
    std::uint32_t last_decided_ = std::numeric_limits<std::uint32_t>::max();
};

void extract_candidates(common::BitonalView source, common::MutableBitonalView target,
                        LineDirection direction, const UnderlineSettings& settings) {
    const common::Rectangle zone = common::whole(source);
    const auto stride = static_cast<std::int32_t>(source.stride);
    std::memcpy(target.data, source.data, static_cast<std::size_t>(source.height * source.stride));
    ink::dilate(across(direction), settings.dilate, target, zone);
    ink::remove_short(along(direction), settings.min_run, target, zone);
    ink::and_buffers(target.data, source.data, target.height, stride);

    common::BitonalPage thick(target.height, target.width, target.stride);
    std::memcpy(thick.data(), target.data, thick.size());
    ink::remove_short(across(direction), settings.thickness, thick.view(), zone);
    ink::and_not_buffers(target.data, thick.data(), target.height, stride);
}

}  // namespace

std::int32_t extract_underlines(common::BitonalView source, common::MutableBitonalView target,
                                LineDirection direction, const UnderlineSettings& settings) {
    extract_candidates(source, target, direction, settings);
    if (settings.x0 >= settings.x1) return 0;
    const bool horizontal = direction == LineDirection::kHorizontal;
    const auto covered_bytes =
        static_cast<std::size_t>(horizontal ? source.stride : common::bitonal_bytes(source.height));
    auto covered = frame::Buffer<std::uint8_t>::zeroed(covered_bytes);
    if (std::max(target.height, settings.x1) > ink::kMaxRunCoordinate) {
        throw std::length_error("components of a page beyond 65535 pixels");
    }
    ink::stream_components(ink::PageInk(target, settings.ink_value, settings.x0, settings.x1),
                           ExtentRule(direction, settings.min_extent, covered.data()));
    return static_cast<std::int32_t>(
        ink::count_black_pixels(covered.data(), 1, static_cast<std::int32_t>(covered_bytes)));
}

}  // namespace cleaning

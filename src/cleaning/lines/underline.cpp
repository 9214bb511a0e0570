// Candidates are the runs of the page that are long along the line, once steps aside are bridged,
// without the ink that is thick across it. The component engine drops the candidates of short
// extent and marks the extents of the others in a row of bits.
#include "cleaning/lines/underline.h"

#include <cstring>

#include "common/page.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"
#include "ink/component_engine.h"

namespace cleaning {
namespace {

// Erases short components and marks the extents of the others.
struct ExtentRule {
    common::MutableBitonalView page;
    bool horizontal;
    int ink_value;
    std::int32_t min_extent;
    std::uint8_t* covered;  // a bit for each column of the page, or for each row
    std::int32_t count = 0;

    std::int32_t extent(const ink::component& c) const {
        return horizontal ? c.width() : c.height();
    }

    bool finished(ink::ComponentEngine& engine, std::int32_t slot) {
        const ink::component& found = engine.components[slot];
        const std::int32_t length = extent(found);
        if (length <= min_extent) {
            engine.erase_ink(slot, ink_value, page.data, page.stride);
            return true;
        }
        if (count == kMaxUnderlines) return false;
        ++count;
        ink::paint_span(covered, ink::unsigned_coordinate(horizontal ? found.x0 : found.y0), length,
                        1);
        return true;
    }
    bool settled(const ink::component& open) const { return extent(open) > min_extent; }
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
    ExtentRule rule{target, horizontal, settings.ink_value, settings.min_extent, covered.data()};
    ink::scan_components(target, settings.x0, settings.x1, settings.ink_value, nullptr, rule);
    return static_cast<std::int32_t>(
        ink::count_black_pixels(covered.data(), 1, static_cast<std::int32_t>(covered_bytes)));
}

}  // namespace cleaning

// The candidates are the runs of the page that are long along the line, once steps aside are
// bridged, less what is thick across it. The component engine drops those whose extent is short,
// and the extents of the others are marked in a row of bits.

#include "cleaning/lines/underline.h"

#include <algorithm>

#include "cleaning/lines/line_morphology.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"
#include "ink/component_engine.h"

namespace cleaning {
namespace {

// Erases short components and marks the extents of the others.
struct ExtentRule {
    std::uint8_t* image;
    std::ptrdiff_t stride;
    bool horizontal;
    int ink_value;
    std::int32_t min_extent;
    std::uint8_t* covered;
    std::int32_t count = 0;

    std::int32_t extent(const ink::component& c) const {
        return horizontal ? c.width() : c.height();
    }

    bool finished(ink::ComponentEngine& engine, std::int32_t slot) {
        const ink::component& found = engine.components[slot];
        const std::int32_t length = extent(found);
        if (length <= min_extent) {
            engine.erase_ink(slot, ink_value, image, stride);
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

void extract_candidates(common::BitonalView source, std::uint8_t* target, LineDirection direction,
                        const UnderlineSettings& settings) {
    const auto stride = static_cast<std::int32_t>(source.stride);
    const std::size_t size =
        static_cast<std::size_t>(source.height) * static_cast<std::size_t>(stride);
    const LineMorphology morphology(direction, stride, LineZone{0, source.width, 0, source.height});
    std::copy_n(source.data, size, target);
    morphology.dilate_across(settings.dilate, target);
    morphology.remove_short_along(settings.min_run, target);
    ink::and_buffers(target, source.data, source.height, stride);

    frame::Buffer<std::uint8_t> thick(size);
    std::copy_n(target, size, thick.data());
    morphology.remove_short_across(settings.thickness, thick.data());
    ink::and_not_buffers(target, thick.data(), source.height, stride);
}

}  // namespace

std::int32_t extract_underlines(common::BitonalView source, std::uint8_t* target,
                                LineDirection direction, const UnderlineSettings& settings) {
    extract_candidates(source, target, direction, settings);
    if (settings.x0 >= settings.x1) return 0;
    const bool horizontal = direction == LineDirection::kHorizontal;
    const std::int64_t covered_bytes =
        horizontal ? source.stride : common::bitonal_bytes(source.height);
    auto covered = frame::Buffer<std::uint8_t>::zeroed(static_cast<std::size_t>(covered_bytes));
    ExtentRule rule{
        target, source.stride, horizontal, settings.ink_value, settings.min_extent, covered.data()};
    const common::BitonalView page{target, source.height, source.width, source.stride};
    ink::scan_components(page, settings.x0, settings.x1, settings.ink_value, nullptr, rule);
    return static_cast<std::int32_t>(
        ink::count_black_pixels(covered.data(), 1, static_cast<std::int32_t>(covered_bytes)));
}

}  // namespace cleaning

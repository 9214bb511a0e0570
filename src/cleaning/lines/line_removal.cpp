// Lines are what run morphology leaves of a copy of the page: gaps along the line are filled, runs
// shorter than a line go, and the rest is cut back to the ink of the page. High strokes, the runs
// across the line of at least its maximal thickness, are told from it in a second copy.
//
// The page itself changes in the last step only, so that a failed allocation leaves it as it was.

#include "cleaning/lines/line_removal.h"

#include <algorithm>

#include "cleaning/lines/line_morphology.h"
#include "frame/buffer.h"
#include "ink/buffer_logic.h"

namespace cleaning {
namespace {

std::size_t page_size(common::MutableBitonalView page) {
    return static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.stride);
}

}  // namespace

void remove_lines(common::MutableBitonalView page, LineDirection direction, const LineZone& zone,
                  const LineSettings& settings) {
    const std::size_t size = page_size(page);
    const auto stride = static_cast<std::int32_t>(page.stride);
    const LineMorphology morphology(direction, stride, zone);
    frame::Buffer<std::uint8_t> copies(2 * size);
    std::uint8_t* const mask = copies.data();
    std::uint8_t* const strokes = mask + size;

    std::copy_n(page.data, size, mask);
    morphology.fill_gaps_along(settings.max_gap, mask);
    morphology.dilate_across(settings.dilate, mask);
    morphology.remove_short_along(settings.min_length, mask);
    ink::and_buffers(mask, page.data, page.height, stride);
    morphology.dilate_across(settings.clean_across, mask);
    morphology.dilate_along(settings.clean_along, mask);

    // Outside of the zone all ink counts as a stroke and stays.
    std::copy_n(page.data, size, strokes);
    morphology.remove_short_across(settings.max_thickness, strokes);
    ink::and_not_buffers(mask, strokes, page.height, stride);
    ink::and_not_buffers(page.data, mask, page.height, stride);
}

void remove_lines_carefully(common::MutableBitonalView page, LineDirection direction,
                            const CarefulLineSettings& settings) {
    const std::size_t size = page_size(page);
    const auto stride = static_cast<std::int32_t>(page.stride);
    const LineMorphology morphology(direction, stride, LineZone{0, page.width, 0, page.height});
    frame::Buffer<std::uint8_t> copies(2 * size);
    std::uint8_t* const lines = copies.data();
    std::uint8_t* const work = lines + size;

    // Without the thick parts of long strokes, but with what was bridged to find them.
    std::copy_n(page.data, size, lines);
    morphology.remove_short_along(settings.min_run, lines);
    morphology.fill_gaps_across(settings.join, lines);
    morphology.remove_short_across(settings.thickness, lines);
    ink::xor_buffers(lines, page.data, page.height, stride);

    morphology.fill_gaps_along(settings.max_gap, lines);
    morphology.remove_short_along(settings.min_length, lines);
    morphology.dilate_across(settings.clean, lines);

    // Only thin ink is removed.
    std::copy_n(page.data, size, work);
    morphology.remove_short_across(settings.thickness, work);
    ink::xor_buffers(work, page.data, page.height, stride);
    ink::and_buffers(lines, work, page.height, stride);

    // What bridges a cut and was ink before comes back: the crossings.
    std::copy_n(page.data, size, work);
    ink::and_not_buffers(work, lines, page.height, stride);
    morphology.fill_gaps_across(settings.thickness, work);
    ink::and_buffers(page.data, work, page.height, stride);
}

}  // namespace cleaning

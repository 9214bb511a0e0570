// Lines are what run morphology leaves of a copy of the page: gaps along the line are filled, runs
// shorter than a line are removed, and the rest is cut back to the ink of the page. High strokes,
// which stay, are the runs across the line that are at least as long as a line may be thick; they
// are found in a second copy.
//
// The page itself changes in the last step only, so that a failed allocation leaves it as it was.
#include "cleaning/lines/line_removal.h"

#include <cstddef>
#include <cstring>

#include "frame/buffer.h"
#include "ink/buffer_logic.h"

namespace cleaning {
namespace {

using common::BitonalView;
using common::MutableBitonalView;

// Two working pages of the geometry of a page, in one block: fresh memory costs more than most
// steps.
class WorkingPages {
  public:
    // Throws std::bad_alloc.
    explicit WorkingPages(BitonalView page) : page_(page), bytes_(2 * page.size()) {}

    MutableBitonalView first() { return at(bytes_.data()); }
    MutableBitonalView second() { return at(bytes_.data() + page_.size()); }

  private:
    MutableBitonalView at(std::uint8_t* data) const {
        return {data, page_.height, page_.width, page_.stride};
    }

    BitonalView page_;
    frame::Buffer<std::uint8_t> bytes_;
};

// Each byte of a page becomes combine(it, the byte of the other). Unlike in ink/page_logic.h both
// have one geometry, and padding takes part: one loop over all bytes does.
template <class Combine>
void combine_blocks(MutableBitonalView page, BitonalView other, Combine combine) {
    ink::combine_bytes(page.data, other.data, page.size(), combine);
}

void copy_block(BitonalView page, MutableBitonalView copy) {
    std::memcpy(copy.data, page.data, page.size());
}

void and_block(MutableBitonalView page, BitonalView other) {
    combine_blocks(page, other, [](int a, int b) { return a & b; });
}

}  // namespace

void remove_lines(MutableBitonalView page, LineDirection direction, const common::Rectangle& zone,
                  const LineSettings& settings) {
    WorkingPages work(page);

    const MutableBitonalView lines = work.first();
    copy_block(page, lines);
    ink::fill_gaps(along(direction), settings.max_gap, lines, zone);
    ink::dilate(across(direction), settings.dilate, lines, zone);
    ink::remove_short(along(direction), settings.min_length, lines, zone);
    and_block(lines, page);
    ink::dilate(across(direction), settings.clean_across, lines, zone);
    ink::dilate(along(direction), settings.clean_along, lines, zone);

    // Outside of the zone all ink counts as a stroke and stays.
    const MutableBitonalView kept = work.second();
    copy_block(page, kept);
    ink::remove_short(across(direction), settings.max_thickness, kept, zone);
    combine_blocks(kept, lines, [](int strokes, int line) { return strokes | ~line; });
    and_block(page, kept);
}

void remove_lines_carefully(MutableBitonalView page, LineDirection direction,
                            const CarefulLineSettings& settings) {
    const common::Rectangle zone = common::whole(page);
    WorkingPages work(page);

    // Lines are looked for in the page without the thick parts of long strokes. Gaps that were
    // bridged to find these stay bridged.
    const MutableBitonalView lines = work.first();
    copy_block(page, lines);
    ink::remove_short(along(direction), settings.min_run, lines, zone);
    ink::fill_gaps(across(direction), settings.join, lines, zone);
    ink::remove_short(across(direction), settings.thickness, lines, zone);
    combine_blocks(lines, page, [](int thick, int ink) { return thick ^ ink; });

    ink::fill_gaps(along(direction), settings.max_gap, lines, zone);
    ink::remove_short(along(direction), settings.min_length, lines, zone);
    ink::dilate(across(direction), settings.clean, lines, zone);

    // Only thin ink is cut away.
    const MutableBitonalView cut = work.second();
    copy_block(page, cut);
    ink::remove_short(across(direction), settings.thickness, cut, zone);
    combine_blocks(cut, lines, [](int thick, int line) { return thick | ~line; });
    and_block(cut, page);

    // Strokes are bridged across the cut. What of a bridge was ink before is a crossing and stays.
    ink::fill_gaps(across(direction), settings.thickness, cut, zone);
    and_block(page, cut);
}

}  // namespace cleaning

// Specks of few pixels are looked for around first pixels (specks.h). Larger ones, and whatever a
// rule decides about, are found by labelling the page (component_stream.h).
//
// What lies near larger ink is found in three steps: a first pass over the components, then the ink
// that it has kept is dilated and joined with all ink of the page, and a second pass decides about
// the components of that. Where the area decides, the second pass needs to look at the erased
// specks only. Dilated ink is part of a large component, so that a speck which it touches is kept.
// A speck that it does not touch is a component as before: no other speck touches it, since they
// would have been one.
#include "cleaning/specks/despeckle.h"

#include <algorithm>

#include "cleaning/specks/busy_regions.h"
#include "cleaning/specks/specks.h"
#include "common/page.h"
#include "ink/component_stream.h"
#include "ink/page_logic.h"
#include "ink/run.h"
#include "ink/run_morphology.h"

namespace cleaning {
namespace {

class AreaRule {
  public:
    static constexpr bool kInOrder = false;

    explicit AreaRule(std::int32_t max_area) : max_area_(max_area) {}

    bool erases(const ink::OpenComponent& ended) const { return ended.area <= max_area_; }

  private:
    std::int64_t max_area_;
};

class JudgedRule {
  public:
    static constexpr bool kInOrder = true;

    explicit JudgedRule(const ComponentJudge& judge) : judge_(judge) {}

    bool erases(const ink::OpenComponent& ended) const {
        return judge_.erases(ended.height(), ended.width(), static_cast<std::uint32_t>(ended.area));
    }

  private:
    ComponentJudge judge_;
};

void dilate(common::MutableBitonalView page, std::int32_t distance) {
    ink::dilate(ink::Along::kRows, distance, page, common::whole(page));
    ink::dilate(ink::Along::kColumns, distance, page, common::whole(page));
}

// A page that gets its pixels back unless the work on it has come to its end.
class UndoneOnFailure {
  public:
    // Throws std::bad_alloc.
    explicit UndoneOnFailure(common::MutableBitonalView page)
        : page_(page), before_(ink::copy_of(page)) {}
    ~UndoneOnFailure() {
        if (!done_) ink::combine_pages(page_, before(), [](int, int was) { return was; });
    }
    UndoneOnFailure(const UndoneOnFailure&) = delete;
    UndoneOnFailure& operator=(const UndoneOnFailure&) = delete;

    common::BitonalView before() const { return before_.view(); }
    void done() { done_ = true; }

  private:
    common::MutableBitonalView page_;
    common::BitonalPage before_;
    bool done_ = false;
};

// The passes run on the page itself: a rule that looks at it sees what has been erased so far.
template <class Rule>
void run_protected_pass(common::MutableBitonalView page, std::int32_t distance, Rule rule) {
    UndoneOnFailure undone(page);
    ink::stream_components(ink::PageInk(page), rule);
    dilate(page, distance);
    ink::or_page(page, undone.before());
    ink::stream_components(ink::PageInk(page), rule);
    ink::and_page(page, undone.before());
    undone.done();
}

void erase_specks_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                                std::int32_t distance) {
    common::BitonalPage specks = ink::copy_of(page);
    erase_specks(page, max_area);
    ink::combine_pages(specks.view(), page, [](int all, int kept) { return all & ~kept; });
    // Dilated by one pixel more, the kept ink has pixels in common with what it touches.
    common::BitonalPage near = ink::copy_of(page);
    dilate(near.view(), std::min(distance, ink::kMaxRunCoordinate) + 1);
    restore_specks(specks.view(), near.view(), page);
}

}  // namespace

void despeckle(common::MutableBitonalView page, std::int32_t max_area) {
    if (max_area <= kMaxSpeckArea) return erase_specks(page, max_area);
    ink::stream_components(ink::PageInk(page), AreaRule(max_area));
}

void despeckle_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                             std::int32_t distance) {
    if (distance < 1 || max_area < 1) return despeckle(page, max_area);
    if (max_area <= kMaxSpeckArea) return erase_specks_away_from_ink(page, max_area, distance);
    run_protected_pass(page, distance, AreaRule(max_area));
}

void despeckle_by_rule(common::MutableBitonalView page, const ComponentJudge& judge) {
    ink::stream_components(ink::PageInk(page), JudgedRule(judge));
}

void despeckle_by_rule_away_from_ink(common::MutableBitonalView page, const ComponentJudge& judge,
                                     std::int32_t distance) {
    run_protected_pass(page, distance, JudgedRule(judge));
}

void despeckle_busy_regions(common::MutableBitonalView page, std::int32_t max_area,
                            std::int32_t density) {
    const BusyRegions busy(page, density);
    if (!busy.any()) return;
    common::BitonalPage inner = ink::copy_of(page);
    ink::combine_pages(inner.view(), busy, [](int ink, int mask) { return ink & mask; });
    despeckle(inner.view(), max_area);
    ink::combine_pages(inner.view(), busy, [](int kept, int mask) { return kept | ~mask; });
    ink::and_page(page, inner.view());
}

}  // namespace cleaning

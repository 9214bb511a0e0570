// Few pixels are looked for around first pixels (specks.h), more, and what a rule decides, by
// labelling the page (component_stream.h).
//
// What lies near larger ink is found by widening what a first pass leaves, adding the page's ink
// and looking at the components again. By area the second look needs the erased specks only: a
// widened piece of large ink is large, so what it touches is kept; what it does not touch is as
// small as before, since components that touch each other are one.
#include "cleaning/specks/despeckle.h"

#include <algorithm>

#include "cleaning/specks/busy_regions.h"
#include "cleaning/specks/specks.h"
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

    bool settled(const ink::OpenComponent& open) const { return open.area > max_area_; }
    bool erases(const ink::OpenComponent&) const { return true; }

  private:
    std::int64_t max_area_;
};

class JudgedRule {
  public:
    static constexpr bool kInOrder = true;

    explicit JudgedRule(const ComponentJudge& judge) : judge_(judge) {}

    bool settled(const ink::OpenComponent&) const { return false; }
    bool erases(const ink::OpenComponent& ended) const {
        return judge_.erases(ended.height(), ended.width(), static_cast<std::uint32_t>(ended.area));
    }

  private:
    ComponentJudge judge_;
};

void widen(common::MutableBitonalView page, std::int32_t distance) {
    ink::dilate(ink::Along::kRows, distance, page, common::whole(page));
    ink::dilate(ink::Along::kColumns, distance, page, common::whole(page));
}

template <class Rule>
void run_protected_pass(common::MutableBitonalView page, std::int32_t distance, Rule rule) {
    common::BitonalPage kept = ink::copy_of(page);
    ink::stream_components(kept.view(), rule);
    widen(kept.view(), distance);
    ink::or_page(kept.view(), page);
    ink::stream_components(kept.view(), rule);
    ink::and_page(page, kept.view());
}

}  // namespace

void despeckle(common::MutableBitonalView page, std::int32_t max_area) {
    if (max_area <= kMaxSpeckArea) return erase_specks(page, max_area);
    ink::stream_components(page, AreaRule(max_area));
}

void despeckle_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                             std::int32_t distance) {
    if (distance < 1 || max_area < 1) return despeckle(page, max_area);
    if (max_area > kMaxSpeckArea) {
        return run_protected_pass(page, distance, AreaRule(max_area));
    }
    // What the widened ink touches is what it has pixels in common with when widened by one more.
    common::BitonalPage specks = ink::copy_of(page);
    erase_specks(page, max_area);
    common::BitonalPage near = ink::copy_of(page);
    const std::int32_t reach = std::min(distance, ink::kMaxRunCoordinate) + 1;
    widen(near.view(), reach);
    ink::combine_pages(specks.view(), page, [](int speck, int kept) { return speck & ~kept; });
    restore_specks(specks.view(), near.view(), page);
}

void despeckle_by_rule(common::MutableBitonalView page, const ComponentJudge& judge) {
    ink::stream_components(page, JudgedRule(judge));
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

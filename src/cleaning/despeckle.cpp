// One pass of the component engine with a removal rule. The passes that keep what lies near larger
// ink widen what a first pass leaves and look at the components again.
#include "cleaning/despeckle.h"

#include <new>

#include "cleaning/busy_regions.h"
#include "cleaning/component_engine.h"
#include "cleaning/page_copy.h"
#include "cleaning/run_morphology.h"

namespace cleaning {
namespace {

class AreaRule {
  public:
    AreaRule(common::MutableBitonalView page, std::int32_t max_area)
        : page_(page), max_area_(max_area) {}

    std::int32_t finished(ComponentEngine& engine, std::int32_t slot) const {
        if (!settled(engine.components[slot])) engine.erase_ink(slot, 0, page_.data, page_.stride);
        return 0;
    }
    bool settled(const component& open) const { return std::int64_t{open.area} > max_area_; }

  private:
    common::MutableBitonalView page_;
    std::int64_t max_area_;
};

class JudgedRule {
  public:
    JudgedRule(common::MutableBitonalView page, const ComponentJudge& judge)
        : page_(page), judge_(judge) {}

    std::int32_t finished(ComponentEngine& engine, std::int32_t slot) const {
        const component& c = engine.components[slot];
        if (judge_.erases(c.height(), c.width(), c.area)) {
            engine.erase_ink(slot, 0, page_.data, page_.stride);
        }
        return 0;
    }
    bool settled(const component&) const { return false; }

  private:
    common::MutableBitonalView page_;
    const ComponentJudge& judge_;
};

void require(std::int32_t result) {
    if (result < 0) throw std::bad_alloc();
}

template <class Rule>
void run_pass(common::MutableBitonalView page, Rule rule) {
    require(scan_components(page, 0, page.width, 0, nullptr, rule));
}

template <class Rule>
void run_protected_pass(common::MutableBitonalView page, std::int32_t distance, Rule rule) {
    PageCopy copy(page);
    const auto stride = static_cast<std::int32_t>(page.stride);
    run_pass(page, rule);
    require(h_dilate(nullptr, distance, page.data, stride, 0, page.width, 0, page.height));
    require(v_dilate(nullptr, distance, page.data, stride, 0, page.width, 0, page.height));
    or_page(page, copy.view());
    run_pass(page, rule);
    and_page(page, copy.view());
}

}  // namespace

void despeckle(common::MutableBitonalView page, std::int32_t max_area) {
    run_pass(page, AreaRule(page, max_area));
}

void despeckle_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                             std::int32_t distance) {
    if (distance < 1) return despeckle(page, max_area);
    run_protected_pass(page, distance, AreaRule(page, max_area));
}

void despeckle_by_rule(common::MutableBitonalView page, const ComponentJudge& judge) {
    run_pass(page, JudgedRule(page, judge));
}

void despeckle_by_rule_away_from_ink(common::MutableBitonalView page, const ComponentJudge& judge,
                                     std::int32_t distance) {
    run_protected_pass(page, distance, JudgedRule(page, judge));
}

void despeckle_busy_regions(common::MutableBitonalView page, std::int32_t max_area,
                            std::int32_t density) {
    const BusyRegions busy(page, density);
    if (!busy.any()) return;
    const auto bytes = static_cast<std::size_t>(common::bitonal_bytes(page.width));
    PageCopy copy(page);
    const common::MutableBitonalView inner = copy.view();
    for (std::int32_t y = 0; y < page.height; ++y) {
        const std::uint8_t* const mask = busy.row(y);
        std::uint8_t* const ink = inner.row(y);
        for (std::size_t i = 0; i < bytes; ++i) ink[i] = ink[i] & mask[i];
    }
    despeckle(inner, max_area);
    for (std::int32_t y = 0; y < page.height; ++y) {
        const std::uint8_t* const mask = busy.row(y);
        const std::uint8_t* const kept = inner.row(y);
        std::uint8_t* const to = page.row(y);
        for (std::size_t i = 0; i < bytes; ++i)
            to[i] = to[i] & (kept[i] | static_cast<std::uint8_t>(~mask[i]));
    }
}

}  // namespace cleaning

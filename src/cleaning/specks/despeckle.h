// Despeckle: small 8-connected components of ink are erased from a page, in place. What is small is
// said by an area or by a rule of the caller's; components near larger ink can be spared, and the
// busy regions of a page can be cleaned alone.
//
// Use: despeckle(page, 10); or despeckle_by_rule(page, {rule, user});
//
// Padding bits are neither read as ink nor changed. All functions throw std::bad_alloc, or what the
// rule throws. The page is then as it was, except where a function says that it may be cleaned in
// part.
#pragma once

#include <cstdint>

#include "common/callbacks.h"
#include "common/views.h"

namespace cleaning {

// The caller's decision about a component, with what it is called with.
struct ComponentJudge {
    common::ComponentRule rule;
    void* user;

    bool erases(std::int32_t height, std::int32_t width, std::uint32_t area) const {
        return rule(user, height, width, static_cast<int>(area)) == 1;
    }
};

// Erases the components of at most `max_area` pixels: none for 0 or less. A failure may leave the
// page cleaned in part if max_area is above kMaxSpeckArea (specks.h).
void despeckle(common::MutableBitonalView page, std::int32_t max_area);

// The same, but spares the components near a larger one: those between which and some pixel of it
// lie at most `distance` rows and columns. A distance below 1 spares none. A failure may leave the
// page cleaned in part.
void despeckle_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                             std::int32_t distance);

// Asks the judge about every component, in the order in which they end on the way down the page;
// those that end in the same row come in the order in which they began. Several components that a
// run joins go on as one, which began where the one did that the leftmost of the touched runs above
// belongs to. Each component is erased before the next one is asked about. A failure may leave the
// page cleaned in part.
void despeckle_by_rule(common::MutableBitonalView page, const ComponentJudge& judge);

// Asks about all components of the page, dilates those that are kept by `distance` pixels, adds all
// ink of the page, and asks about the components of that. Erases the ink that is not kept then.
void despeckle_by_rule_away_from_ink(common::MutableBitonalView page, const ComponentJudge& judge,
                                     std::int32_t distance);

// Erases the components of at most `max_area` pixels that the page has inside its busy regions
// (busy_regions.h). Ink outside of them is no part of a component.
void despeckle_busy_regions(common::MutableBitonalView page, std::int32_t max_area,
                            std::int32_t density);

}  // namespace cleaning

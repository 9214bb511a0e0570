// Despeckle: small 8-connected components of ink are erased, in place; by their area, by a rule of
// the caller's, near larger ink or not, or in busy regions only.
//
// Use: despeckle(page, 10); or despeckle_by_rule(page, {rule, user});
//
// All throw std::bad_alloc, or what the caller's rule throws; the page is then partly despeckled.
// Padding bits are neither read as ink nor changed.
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

// Erases the components of at most `max_area` pixels: none for a negative one.
void despeckle(common::MutableBitonalView page, std::int32_t max_area);

// The same, but keeps those that come within `distance` pixels of a larger one: between which and
// some pixel of it lie fewer than `distance` + 1 rows and columns. A distance below 1 keeps none.
void despeckle_away_from_ink(common::MutableBitonalView page, std::int32_t max_area,
                             std::int32_t distance);

// Asks the judge about every component, in the order in which they end on the way down the page,
// those that end in the same row in the order in which they began. What a run of a row makes one
// began where the piece did that its leftmost touching run of the row above belongs to. A component
// is erased before the next one is asked about.
void despeckle_by_rule(common::MutableBitonalView page, const ComponentJudge& judge);

// Asks about all components, widens what is left by `distance` pixels, adds the page's ink, asks
// about the components of that, and leaves what ink of the page has not been erased then.
void despeckle_by_rule_away_from_ink(common::MutableBitonalView page, const ComponentJudge& judge,
                                     std::int32_t distance);

// Erases the components of at most `max_area` pixels that the page has inside its busy regions.
// Ink outside is no part of them.
void despeckle_busy_regions(common::MutableBitonalView page, std::int32_t max_area,
                            std::int32_t density);

}  // namespace cleaning

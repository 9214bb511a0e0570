// The page on a photograph of it.
//
// Found is paper that is brighter than what it lies on: the one large bright region whose outline
// has four straight sides, with a step to the dark along each of them. Where any of that is in
// doubt, no page is found.
#pragma once

#include <optional>
#include <string>

#include "page/perspective.h"

namespace tool::reading {

struct FoundPage {
    std::optional<Corners> corners;  // in their order; none when they are not clear
    std::string doubt;               // why not
};

// Of a page of any kind.
FoundPage find_page(const Page& page);

}  // namespace tool::reading

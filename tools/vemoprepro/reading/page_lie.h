// How a page lies: what its lines and its letters tell about it.
//
// Use: look_how_it_lies(page) once, on the page as it came, before steps change its ink.
#pragma once

#include <optional>

#include "page/page.h"
#include "reading/skew_peak.h"

namespace tool::reading {

struct PageLie {
    bool has_ink = false;
    JudgedFan lines;  // along rows
    JudgedFan stems;  // along columns
    // The quarter turns clockwise, 0 .. 3, that bring the text upright, where it clearly tells.
    // Only clear ones are worth anything: a page that lies right must not be turned.
    std::optional<int> turns_to_upright;
    bool sideways = false;  // lines of text go from top to bottom

    // The same of the page after a quarter turn, to either side.
    void turn_a_quarter();
};

PageLie look_how_it_lies(const Page& page);

}  // namespace tool::reading

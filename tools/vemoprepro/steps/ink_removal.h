// Steps that take ink off a bitonal page, and the limit that none may take too much unnoticed.
//
// Use: require_bitonal(page, "step"); then remove_ink(page, ...) runs a change on a copy and keeps
// it when it takes no more than a tenth of the ink and leaves the page with more than next to none.
// Otherwise `excess` says what becomes of it.
#pragma once

#include <functional>
#include <string>

#include "steps/page_work.h"

namespace tool::steps {

// A step that takes a greater share of the ink is not done unasked.
constexpr double kMostInk = 0.1;

// What becomes of a change that takes too much. Held back or warned of, the user is told to look.
enum class Excess { kHeldBack, kWarnedOf, kAllowed };

// A page is left nearly blank when less than one pixel in so many is ink, and it was not before.
// Only what is allowed may do that.
constexpr int kNearlyBlank = 20000;

bool is_nearly_blank(const Page& bits);

// The page without an eighth on each side.
Box inner_part(const Page& page);

// Throws PageError unless the page is bitonal.
void require_bitonal(const Page& page, const char* step);

// `counted` is where the ink is counted, in whole 32-bit words: from the word of its first column
// to the one of its last. `what`: what was done, for the record. `change` throws when it fails.
Outcome remove_ink(Page& page, Excess excess, const Box& counted, const std::string& what,
                   const std::function<void(Page&)>& change);

}  // namespace tool::steps

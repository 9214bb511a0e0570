// What runs left behind that were killed before they could clean up.
#pragma once

#include <string>

namespace tool::files {

// What an output is called in its folder until it is complete, for mkostemp(): it makes six letters
// and digits of the six X.
constexpr char kAsideName[] = ".vemoprepro-XXXXXX";

// Removes files that have such a name in the folder, belong to the user and have not changed for a
// day. Each folder is looked through once in a run.
//
// Keep true: the caller holds unfinished().lock.
void remove_leftovers(const std::string& folder);

}  // namespace tool::files

// What runs left behind that were killed before they could clean up.
#pragma once

#include <string>

namespace tool::files {

// Our names are a prefix and six letters or digits, as mkostemp() makes them.
constexpr char kAsidePrefix[] = ".vemoprepro-";     // in the folder of an output
constexpr char kTemporaryPrefix[] = "vemoprepro.";  // in the folder for temporary ones
constexpr char kSixCharacters[] = "XXXXXX";

// Removes files that have such a name in the folder, belong to the user and have not changed for a
// day. Each folder is looked through once in a run.
//
// Keep true: the caller holds unfinished().lock.
void remove_leftovers(const std::string& folder, const char* prefix);

}  // namespace tool::files

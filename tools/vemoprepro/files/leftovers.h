// What runs left behind that were killed before they could clean up.
#pragma once

#include <sys/stat.h>

#include <string>

namespace tool::files {

// Our names are a prefix and six letters or digits, as mkostemp() makes them.
constexpr char kAsidePrefix[] = ".vemoprepro-";     // files in the folder of an output
constexpr char kTemporaryPrefix[] = "vemoprepro.";  // folders in the folder for temporary ones
constexpr char kSixCharacters[] = "XXXXXX";

// Removes what has such a name in the folder, is of that type (S_IFREG or S_IFDIR), belongs to the
// user and has not changed for a day. Each folder is looked through once in a run.
//
// Keep true: the caller holds unfinished().lock.
void remove_leftovers(const std::string& folder, const char* prefix, mode_t type);

}  // namespace tool::files

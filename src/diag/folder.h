// Making folders for debug files.
#pragma once

#include <boost/filesystem/path.hpp>

namespace diag {

// True unless the file system reports an error or nothing there.
bool entry_exists(const boost::filesystem::path& path);

// Makes `folder` and whatever is missing above it. Concurrent calls of this process are serialised,
// so that overlapping folders do not fail on each other's work. Throws the reason as std::string,
// prefixed by a line per folder that was being made.
void create_folder(const boost::filesystem::path& folder);

}  // namespace diag

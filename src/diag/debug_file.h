// Debug traces: plain-text files in a folder of the caller's.
#pragma once

#include <iosfwd>
#include <memory>

namespace diag {

// Makes <folder>/<file_name> anew and returns a stream over it; the file is closed when the last
// holder lets go. A null folder is the current one; folders that are missing are made. Throws on
// any failure.
std::shared_ptr<std::ostream> open_debug_file(const char* folder, const char* file_name);

}  // namespace diag

// Files in the folder for temporary ones (TMPDIR, else /tmp), and the copying that they are made
// for. All of it throws FileError with the name that is given: the file that a user knows.
#pragma once

#include <cstddef>
#include <string>

namespace tool::files {

// A descriptor of a file without a name, so that nothing is left behind however the run ends. The
// caller closes it.
int open_nameless_file(const std::string& name);

void write_all(int file, const void* bytes, std::size_t size, const std::string& name);

// All that comes from one descriptor, to another one.
void copy_all(int from, int to, const std::string& name);

}  // namespace tool::files

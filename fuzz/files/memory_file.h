// A fuzz input as a stream, for the readers that take one, and as a file.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "files/page_place.h"

namespace fuzz {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// size: at least 1.
inline File open_bytes(const std::uint8_t* data, std::size_t size) {
    return File(fmemopen(const_cast<std::uint8_t*>(data), size, "rb"));
}

inline void check(bool holds) {
    if (!holds) std::abort();
}

class MemoryFile {
  public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : file_(memfd_create("fuzz", 0)) {
        check(file_ >= 0 && write(file_, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(file_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(file_); }

  private:
    int file_;
};

// Others take their time to decode, whatever is in the file.
inline bool is_small(const tool::files::PagePlace& place) {
    constexpr int kLongestSide = 300;
    return place.width > 0 && place.height > 0 && place.width <= kLongestSide &&
           place.height <= kLongestSide;
}

}  // namespace fuzz

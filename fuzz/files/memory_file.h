// A fuzz input as a stream, for the readers that take one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

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

}  // namespace fuzz

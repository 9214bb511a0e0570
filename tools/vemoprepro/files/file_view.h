// A file that is read from any position, by any number of readers at the same time, each of which
// may be shown a few bytes other than the file's own.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "files/seekable_file.h"

namespace tool::files {

// The bytes that are read from `at` on instead of the file's own.
struct Patch {
    std::size_t at = 0;
    std::string bytes;
};

// Keep true: the file outlives its views.
class FileView {
  public:
    // length: where the file seems to end, if not farther on than it does.
    explicit FileView(const SeekableFile& file, Patch patch = {}, std::size_t length = SIZE_MAX);

    std::size_t size() const { return size_; }
    // As the system's functions: the number of bytes, fewer only at the end, and the new position;
    // -1 on failure.
    ssize_t read(void* bytes, std::size_t size);
    ssize_t seek(ssize_t place, int from);
    // All of it as private memory, to be unmapped by the caller; null when that fails.
    void* map() const;

  private:
    void put_patch(char* bytes, std::size_t at, std::size_t count) const;

    const SeekableFile& file_;
    std::size_t size_;
    std::size_t at_ = 0;
    Patch patch_;
};

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

// The same as a stream of the C library, for decoders that want one. Throws std::bad_alloc.
Stream open_stream(const SeekableFile& file, Patch patch = {}, std::size_t length = SIZE_MAX);

// Moves on, behind the end as well. Seeking drops what the stream has read ahead, so short ways are
// read.
void skip(std::FILE* stream, std::size_t count);

// Leaves the stream at its start.
std::size_t size_of(std::FILE* stream);

}  // namespace tool::files

// An input that can be read from any position.
//
// Use: open path() as often as wanted, from any thread, as long as this object lives. It is the
// input itself or, for standard input and pipes, a nameless temporary copy.
#pragma once

#include <string>

namespace tool::files {

class SeekableFile {
  public:
    // name: a path, or "-" for standard input. Throws FileError.
    explicit SeekableFile(const std::string& name);
    ~SeekableFile();
    SeekableFile(const SeekableFile&) = delete;
    SeekableFile& operator=(const SeekableFile&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int copy_ = -1;
};

}  // namespace tool::files

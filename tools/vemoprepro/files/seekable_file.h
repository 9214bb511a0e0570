// An input that can be read from any position, by any thread.
//
// Use: a FileView or a stream for each reader (files/file_view.h).
#pragma once

#include <cstddef>
#include <string>

namespace tool::files {

class SeekableFile {
  public:
    // name: a path, or "-" for standard input. What is no file, such as a pipe, is copied to a
    // nameless temporary one. Throws FileError.
    explicit SeekableFile(const std::string& name);
    ~SeekableFile();
    SeekableFile(const SeekableFile&) = delete;
    SeekableFile& operator=(const SeekableFile&) = delete;

    const std::string& name() const { return name_; }
    int descriptor() const { return file_; }
    std::size_t size() const { return size_; }

  private:
    std::string name_;
    int file_ = -1;
    std::size_t size_ = 0;
};

}  // namespace tool::files

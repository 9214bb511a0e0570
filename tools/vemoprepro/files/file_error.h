// What is wrong with a file; becomes the line "vemoprepro: FILE: what is wrong".
#pragma once

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace tool::files {

class FileError : public std::runtime_error {
  public:
    FileError(std::string file, const std::string& what)
        : std::runtime_error(what), file_(std::move(file)) {}

    const std::string& file() const { return file_; }

  private:
    std::string file_;
};

// The reason of a system call that just failed.
inline FileError system_error_of(const std::string& file, int error = errno) {
    return {file, std::generic_category().message(error)};
}

}  // namespace tool::files

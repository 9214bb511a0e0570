#include "files/seekable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/file_error.h"
#include "files/temporary_file.h"

namespace tool::files {

SeekableFile::SeekableFile(const std::string& name) : path_(name) {
    struct stat status {};
    if (name != "-") {
        if (stat(name.c_str(), &status) != 0) throw system_error_of(name);
        if (S_ISDIR(status.st_mode)) throw system_error_of(name, EISDIR);
        if (S_ISREG(status.st_mode)) return;
    }
    const int source = name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) throw system_error_of(name);
    copy_ = open_nameless_file(name);
    path_ = "/proc/self/fd/" + std::to_string(copy_);
    try {
        copy_all(source, copy_, name);
    } catch (...) {
        if (source != STDIN_FILENO) close(source);
        close(copy_);
        throw;
    }
    if (source != STDIN_FILENO) close(source);
}

SeekableFile::~SeekableFile() {
    if (copy_ >= 0) close(copy_);
}

}  // namespace tool::files

#include "files/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "files/file_error.h"
#include "files/temporary_file.h"
#include "files/unfinished.h"

namespace tool::files {
namespace {

// The permissions that a newly made file would get.
void set_usual_permissions(int file) {
    static const mode_t mask = [] {
        const mode_t current = umask(0);
        umask(current);
        return current;
    }();
    fchmod(file, 0666 & ~mask);
}

std::string behind_links(const std::string& path) {
    char* real = realpath(path.c_str(), nullptr);
    if (real == nullptr) return path;
    std::string target = real;
    std::free(real);
    return target;
}

}  // namespace

bool is_stream(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

OutputFile::OutputFile(std::string name, bool overwrite)
    : name_(std::move(name)),
      target_(behind_links(name_)),
      overwrite_(overwrite),
      stream_(name_ == "-" || is_stream(name_)) {
    if (stream_) {
        file_ = open_nameless_file(name_);
    } else {
        open_aside();
    }
}

void OutputFile::open_aside() {
    const std::size_t slash = target_.rfind('/') + 1;
    std::string path = target_.substr(0, slash) + ".vemoprepro-XXXXXX";
    const std::lock_guard guard(unfinished().lock);
    file_ = mkostemp(path.data(), O_CLOEXEC);
    if (file_ < 0) throw system_error_of(name_);
    aside_ = path;
    unfinished().files.insert(path);
    set_usual_permissions(file_);
}

OutputFile::~OutputFile() {
    if (file_ >= 0) ::close(file_);
    if (aside_.empty()) return;
    const std::lock_guard guard(unfinished().lock);
    unlink(aside_.c_str());
    unfinished().files.erase(aside_);
}

void OutputFile::close() {
    if (stream_ || file_ < 0) return;
    const int file = file_;
    file_ = -1;
    if (::close(file) != 0) throw system_error_of(name_);
}

void OutputFile::copy_to_stream() {
    const int stream =
        name_ == "-" ? STDOUT_FILENO : open(name_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (stream < 0 || lseek(file_, 0, SEEK_SET) != 0) throw system_error_of(name_);
    copy_all(file_, stream, name_);
    if (::close(stream) != 0) throw system_error_of(name_);
}

void OutputFile::publish() {
    if (stream_) return copy_to_stream();
    close();
    const std::lock_guard guard(unfinished().lock);
    int failed = renameat2(AT_FDCWD, aside_.c_str(), AT_FDCWD, target_.c_str(),
                           overwrite_ ? 0 : RENAME_NOREPLACE);
    // Some file systems cannot refuse to replace; whether the name is free was checked before.
    if (failed != 0 && errno == EINVAL) failed = std::rename(aside_.c_str(), target_.c_str());
    if (failed != 0) throw system_error_of(name_);
    unfinished().files.erase(aside_);
    aside_.clear();
}

void OutputFile::withdraw() {
    if (!stream_) unlink(target_.c_str());
}

}  // namespace tool::files

#include "files/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "files/file_error.h"
#include "files/leftovers.h"
#include "files/temporary_file.h"
#include "files/unfinished.h"

namespace tool::files {
namespace {

// Those that a newly made file would get.
mode_t usual_permissions() {
    static const mode_t mask = [] {
        const mode_t current = umask(0);
        umask(current);
        return current;
    }();
    return 0666 & ~mask;
}

// Those of the file that is going to be replaced, if there is one.
void set_permissions(int file, const std::string& target) {
    struct stat old {};
    if (stat(target.c_str(), &old) != 0) {
        fchmod(file, usual_permissions());
        return;
    }
    // Who may not give files away keeps what is made.
    if (old.st_uid != geteuid() || old.st_gid != getegid()) {
        static_cast<void>(fchown(file, old.st_uid, old.st_gid) == 0);
    }
    fchmod(file, old.st_mode & 0777);
}

std::string behind_links(const std::string& path) {
    char* real = realpath(path.c_str(), nullptr);
    if (real == nullptr) return path;
    std::string target = real;
    std::free(real);
    return target;
}

}  // namespace

// Root may write anything; that no write bit is set is a wish all the same.
void check_output(const std::string& name) {
    struct stat link {
    }, file{};
    if (name == "-" || lstat(name.c_str(), &link) != 0) return;
    if (stat(name.c_str(), &file) != 0) {
        throw S_ISLNK(link.st_mode) && errno == ENOENT
            ? FileError(name, "is a link to a file that does not exist")
            : system_error_of(name);
    }
    if (!S_ISREG(file.st_mode)) return;
    if ((file.st_mode & 0222) == 0 || access(name.c_str(), W_OK) != 0) {
        throw FileError(name, "is read-only");
    }
}

bool is_stream(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

OutputFile::OutputFile(std::string name, bool overwrite)
    : name_(std::move(name)),
      target_(behind_links(name_)),
      overwrite_(overwrite),
      stream_(name_ == "-" || is_stream(name_)) {
    check_output(name_);
    if (stream_) {
        file_ = open_nameless_file(name_);
    } else {
        open_aside();
    }
}

void OutputFile::open_aside() {
    const std::string folder = target_.substr(0, target_.rfind('/') + 1);
    std::string path = folder + kAsideName;
    const std::lock_guard guard(unfinished().lock);
    remove_leftovers(folder.empty() ? "." : folder);
    file_ = mkostemp(path.data(), O_CLOEXEC);
    if (file_ < 0) throw system_error_of(name_);
    aside_ = path;
    unfinished().files.insert(path);
    set_permissions(file_, target_);
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
    const bool standard = name_ == "-";
    const std::string shown = standard ? "standard output" : name_;
    const int stream =
        standard ? STDOUT_FILENO : open(name_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (stream < 0 || lseek(file_, 0, SEEK_SET) != 0) throw system_error_of(shown);
    copy_all(file_, stream, shown);
    if (::close(stream) != 0) throw system_error_of(shown);
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

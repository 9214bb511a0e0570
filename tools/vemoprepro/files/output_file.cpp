// Writing aside and renaming. The names of unfinished files and temporary folders are kept; a
// thread of its own waits for the signals, which every other thread blocks, removes what has been
// kept and lets the signal end the process as it would have done. So no work is done in a signal
// handler.
#include "files/output_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <set>
#include <thread>

#include "files/file_error.h"

namespace tool {
namespace {

struct Unfinished {
    std::mutex lock;
    std::set<std::string> paths;
    std::set<std::string> folders;
};

// Never destroyed: the signal thread may look at it until the process has ended.
Unfinished& unfinished() {
    static Unfinished* const all = new Unfinished;
    return *all;
}

// Another thread may be about to make a file in the folder.
void remove_folder(const std::string& path) {
    constexpr int kTries = 100;
    std::error_code failed;
    for (int i = 0; i < kTries; ++i) {
        std::filesystem::remove_all(path, failed);
        if (!failed) return;
    }
}

std::string temporary_template() {
    const char* folder = std::getenv("TMPDIR");
    return std::string(folder != nullptr && *folder != 0 ? folder : "/tmp") + "/vemoprepro.XXXXXX";
}

void end_by_signal(int signal) {
    struct sigaction as_usual {};
    as_usual.sa_handler = SIG_DFL;
    sigaction(signal, &as_usual, nullptr);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    raise(signal);
}

void wait_for_signals(sigset_t signals) {
    int signal = 0;
    while (sigwait(&signals, &signal) != 0) {
    }
    // The lock is kept to the end, so that nothing is made or published any more.
    unfinished().lock.lock();
    for (const std::string& path : unfinished().paths) unlink(path.c_str());
    for (const std::string& path : unfinished().folders) remove_folder(path);
    end_by_signal(signal);
}

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

void write_all(int file, const void* bytes, std::size_t size, const std::string& name) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = write(file, next, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw system_error_of(name);
        next += count;
        size -= static_cast<std::size_t>(count);
    }
}

TemporaryFolder::TemporaryFolder() : path_(temporary_template()) {
    const std::lock_guard guard(unfinished().lock);
    if (mkdtemp(path_.data()) != nullptr) {
        unfinished().folders.insert(path_);
    } else {
        path_.clear();
    }
}

TemporaryFolder::~TemporaryFolder() {
    if (path_.empty()) return;
    const std::lock_guard guard(unfinished().lock);
    remove_folder(path_);
    unfinished().folders.erase(path_);
}

OutputFile::OutputFile(std::string name, bool overwrite)
    : name_(std::move(name)),
      target_(behind_links(name_)),
      overwrite_(overwrite),
      stream_(name_ == "-" || is_stream(name_)) {
    open_aside();
}

void OutputFile::open_aside() {
    std::string path;
    if (stream_) {
        path = temporary_template();
    } else {
        const std::size_t slash = target_.rfind('/') + 1;
        path = target_.substr(0, slash) + ".vemoprepro-XXXXXX";
    }
    const std::lock_guard guard(unfinished().lock);
    file_ = mkostemp(path.data(), O_CLOEXEC);
    if (file_ < 0) throw system_error_of(name_);
    if (stream_) {
        unlink(path.c_str());
        return;
    }
    aside_ = path;
    unfinished().paths.insert(path);
    set_usual_permissions(file_);
}

OutputFile::~OutputFile() {
    if (file_ >= 0) ::close(file_);
    if (aside_.empty()) return;
    const std::lock_guard guard(unfinished().lock);
    unlink(aside_.c_str());
    unfinished().paths.erase(aside_);
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
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = read(file_, buffer, sizeof buffer);
        if (count < 0) throw system_error_of(name_);
        if (count == 0) break;
        write_all(stream, buffer, static_cast<std::size_t>(count), name_);
    }
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
    unfinished().paths.erase(aside_);
    aside_.clear();
}

void OutputFile::withdraw() {
    if (!stream_) unlink(target_.c_str());
}

void remove_unfinished_outputs_on_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now {};
        sigaction(signal, nullptr, &now);
        if (now.sa_handler != SIG_IGN) sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A pipe that nobody reads is a write error like any other.
    signal(SIGPIPE, SIG_IGN);
    unfinished();
    std::thread(wait_for_signals, signals).detach();
}

}  // namespace tool

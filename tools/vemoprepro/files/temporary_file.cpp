#include "files/temporary_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>

#include "files/file_error.h"
#include "files/unfinished.h"

namespace tool::files {
namespace {

std::string temporary_folder() {
    const char* folder = std::getenv("TMPDIR");
    const bool given = folder != nullptr && *folder != '\0';
    return given ? folder : "/tmp";
}

}  // namespace

int open_nameless_file(const std::string& name) {
    std::string path = temporary_folder() + "/vemoprepro.XXXXXX";
    const std::lock_guard guard(unfinished().lock);
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file < 0) throw system_error_of(name);
    unlink(path.c_str());
    return file;
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

void copy_all(int from, int to, const std::string& name) {
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = read(from, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw system_error_of(name);
        if (count == 0) return;
        write_all(to, buffer, static_cast<std::size_t>(count), name);
    }
}

}  // namespace tool::files

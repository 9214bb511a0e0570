#include "files/seekable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/file_error.h"
#include "files/temporary_file.h"

namespace tool::files {
namespace {

// Closes the descriptor unless it is taken.
class Descriptor {
  public:
    explicit Descriptor(int file) : file_(file) {}
    ~Descriptor() {
        if (file_ >= 0) close(file_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return file_; }
    int take() {
        const int file = file_;
        file_ = -1;
        return file;
    }

  private:
    int file_;
};

struct stat status_of(int file, const std::string& name) {
    struct stat status {};
    if (fstat(file, &status) != 0) throw system_error_of(name);
    return status;
}

}  // namespace

SeekableFile::SeekableFile(const std::string& name) : name_(name) {
    Descriptor source(name == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                  : open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (source.get() < 0) throw system_error_of(name);
    const struct stat status = status_of(source.get(), name);
    if (S_ISDIR(status.st_mode)) throw system_error_of(name, EISDIR);
    if (name != "-" && S_ISREG(status.st_mode)) {
        size_ = static_cast<std::size_t>(status.st_size);
        file_ = source.take();
        return;
    }
    Descriptor copy(open_nameless_file(name));
    copy_all(source.get(), copy.get(), name);
    size_ = static_cast<std::size_t>(status_of(copy.get(), name).st_size);
    file_ = copy.take();
}

SeekableFile::~SeekableFile() {
    if (file_ >= 0) close(file_);
}

}  // namespace tool::files

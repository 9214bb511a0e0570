#include "files/file_view.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace tool::files {
namespace {

ssize_t read_view(void* view, char* bytes, std::size_t size) {
    return static_cast<FileView*>(view)->read(bytes, size);
}

int seek_view(void* view, off64_t* place, int from) {
    *place = static_cast<FileView*>(view)->seek(*place, from);
    return *place < 0 ? -1 : 0;
}

int close_view(void* view) {
    delete static_cast<FileView*>(view);
    return 0;
}

}  // namespace

FileView::FileView(const SeekableFile& file, Patch patch, std::size_t length)
    : file_(file), size_(std::min(file.size(), length)), patch_(std::move(patch)) {}

ssize_t FileView::read(void* bytes, std::size_t size) {
    size = at_ < size_ ? std::min(size, size_ - at_) : 0;
    std::size_t done = 0;
    while (done < size) {
        char* next = static_cast<char*>(bytes) + done;
        const ssize_t count =
            pread(file_.descriptor(), next, size - done, static_cast<off_t>(at_ + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return -1;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    put_patch(static_cast<char*>(bytes), at_, done);
    at_ += done;
    return static_cast<ssize_t>(done);
}

ssize_t FileView::seek(ssize_t place, int from) {
    const std::size_t start = from == SEEK_SET ? 0 : from == SEEK_CUR ? at_ : size();
    ssize_t sum = 0;
    if (__builtin_add_overflow(static_cast<ssize_t>(start), place, &sum) || sum < 0) return -1;
    at_ = static_cast<std::size_t>(sum);
    return sum;
}

void* FileView::map() const {
    void* bytes = mmap(nullptr, size(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE,
                       file_.descriptor(), 0);
    if (bytes == MAP_FAILED) return nullptr;
    put_patch(static_cast<char*>(bytes), 0, size());
    return bytes;
}

void FileView::put_patch(char* bytes, std::size_t at, std::size_t count) const {
    const std::size_t start = std::max(patch_.at, at);
    const std::size_t end = std::min(patch_.at + patch_.bytes.size(), at + count);
    for (std::size_t i = start; i < end; ++i) bytes[i - at] = patch_.bytes[i - patch_.at];
}

Stream open_stream(const SeekableFile& file, Patch patch, std::size_t length) {
    auto view = std::make_unique<FileView>(file, std::move(patch), length);
    Stream stream(fopencookie(view.get(), "rb", {read_view, nullptr, seek_view, close_view}));
    if (!stream) throw std::bad_alloc();
    static_cast<void>(view.release());
    return stream;
}

void skip(std::FILE* stream, std::size_t count) {
    char bytes[256];
    if (count <= sizeof bytes) {
        static_cast<void>(std::fread(bytes, 1, count, stream));
    } else {
        std::fseek(stream, static_cast<long>(count), SEEK_CUR);
    }
}

std::size_t size_of(std::FILE* stream) {
    std::fseek(stream, 0, SEEK_END);
    const long size = std::ftell(stream);
    std::rewind(stream);
    return size < 0 ? 0 : static_cast<std::size_t>(size);
}

}  // namespace tool::files

// The page of a BMP file is of the size that its header says, and has all of its pixels.
//
// Input: the file.
#include <numeric>

#include "files/bmp_file.h"
#include "files/file_error.h"
#include "memory_file.h"

using namespace tool::files;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile bytes(data, size);
    const SeekableFile file(bytes.path());
    try {
        const auto place = bmp_page(file);
        if (!place || !fuzz::is_small(*place)) return 0;
        const auto page = read_bmp(file);
        fuzz::check(page && page->width == place->width && page->height == place->height);
        volatile int sum = std::accumulate(page->bytes.get(), page->bytes.get() + page->size(), 0);
        static_cast<void>(sum);
    } catch (const FileError&) {
    }
    return 0;
}

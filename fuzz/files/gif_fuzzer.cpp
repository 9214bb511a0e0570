// The picture of a GIF file, if it can be decoded, is of the size that its outline says.
//
// Input: the file.
#include "files/gif_file.h"

#include "files/file_error.h"
#include "memory_file.h"

using namespace tool::files;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setMsgSeverity(L_SEVERITY_NONE);
    const fuzz::MemoryFile bytes(data, size);
    const SeekableFile file(bytes.path());
    try {
        const auto place = gif_page(file);
        if (!place || !fuzz::is_small(*place)) return 0;
        const Decoded decoded = decode_gif(file);
        if (!decoded.image) return 0;
        fuzz::check(pixGetWidth(decoded.image.get()) == place->width &&
                    pixGetHeight(decoded.image.get()) == place->height);
    } catch (const FileError&) {
    }
    return 0;
}

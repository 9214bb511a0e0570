// Files whose outline is read here and whose picture another library decodes.
#pragma once

#include "files/file_error.h"
#include "files/seekable_file.h"
#include "memory_file.h"

namespace fuzz {

// The picture, if it can be decoded, is of the size that the outline says.
template <class Outline, class Decode>
void check_outline(const std::uint8_t* data, std::size_t size, Outline outline, Decode decode) {
    setMsgSeverity(L_SEVERITY_NONE);
    const MemoryFile bytes(data, size);
    const tool::files::SeekableFile file(bytes.path());
    try {
        const auto place = outline(file);
        if (!place || !is_small(*place)) return;
        const auto decoded = decode(file);
        if (!decoded.image) return;
        check(pixGetWidth(decoded.image.get()) == place->width &&
              pixGetHeight(decoded.image.get()) == place->height);
    } catch (const tool::files::FileError&) {
    }
}

}  // namespace fuzz

// The picture of a GIF file, if it can be decoded, is of the size that its outline says.
//
// Input: the file.
#include "files/gif_file.h"

#include "outlined_picture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::check_outline(data, size, tool::files::gif_page, tool::files::decode_gif);
    return 0;
}

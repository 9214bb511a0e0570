// The picture of a JPEG 2000 file, if it can be decoded, is of the size that its outline says.
//
// Input: the file.
#include "files/jpeg2000_file.h"

#include "outlined_picture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::check_outline(data, size, tool::files::jpeg2000_page, tool::files::decode_jpeg2000);
    return 0;
}

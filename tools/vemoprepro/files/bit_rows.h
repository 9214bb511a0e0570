// Rows of bits as files have them: whole bytes, where the page in memory has whole words.
#pragma once

#include <cstddef>
#include <cstring>

#include "page/page.h"

namespace tool::files {

constexpr std::size_t bytes_of_bits(int width) {
    return (static_cast<std::size_t>(width) + 7) / 8;
}

// Sets all bits behind the width to 0, up to the end of the row's last word.
inline void clear_padding(unsigned char* row, int width) {
    const std::size_t used = bytes_of_bits(width);
    std::memset(row + used, 0, stride_of(PageKind::kBitonal, width) - used);
    if (width % 8 != 0)
        row[used - 1] = static_cast<unsigned char>(row[used - 1] & 0xFF00 >> width % 8);
}

}  // namespace tool::files

#include "page/negative.h"

#include <cstddef>

namespace tool {

void complement(Page& page) {
    unsigned char* bytes = page.bytes.get();
    const std::size_t size = page.size();
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(~bytes[i]);
    if (page.kind == PageKind::kBitonal) clear_padding(page);
}

}  // namespace tool

#include "steps/grey_page.h"

#include <vemoprepro/binarization.h>

#include <algorithm>
#include <cstring>

namespace tool {

int RowReader::read(void* context, int mode, unsigned char* row) {
    auto& self = *static_cast<RowReader*>(context);
    if (mode == 0) self.next = 0;
    std::memcpy(row, self.page.row(self.next), self.page.stride());
    ++self.next;
    return 0;
}

Page same_size(const Page& page, PageKind kind) {
    Page other;
    other.kind = kind;
    other.width = page.width;
    other.height = page.height;
    other.dpi = page.dpi;
    other.bytes = allocate_pixels(other.size());
    return other;
}

Page grey_of(const Page& page) {
    Page grey = same_size(page, PageKind::kGrey);
    RowReader reader{page};
    if (bi_color2greybuf(0, RowReader::read, &reader, nullptr, PREPRO_SOURCE_RGB, page.width,
                         std::max(page.dpi.x, 1), 0, page.width, 0, page.height, grey.bytes.get(),
                         static_cast<int>(grey.size()), 1, 0) != 0) {
        throw std::bad_alloc();
    }
    return grey;
}

}  // namespace tool

#include "steps/grey_page.h"

#include <vemoprepro/binarization.h>

#include <algorithm>
#include <new>

#include "page/row_reader.h"

namespace tool {

Page grey_of(const Page& page) {
    Page grey = make_page_like(page, PageKind::kGrey);
    RowReader reader{page};
    if (bi_color2greybuf(0, RowReader::read, &reader, nullptr, PREPRO_SOURCE_RGB, page.width,
                         std::max(page.dpi.x, 1), 0, page.width, 0, page.height, grey.bytes.get(),
                         static_cast<int>(grey.size()), 1, 0) != 0) {
        throw std::bad_alloc();
    }
    return grey;
}

}  // namespace tool

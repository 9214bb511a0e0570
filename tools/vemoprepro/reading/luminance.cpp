#include "reading/luminance.h"

#include <vemoprepro/binarization.h>

#include <algorithm>
#include <new>

#include "page/row_reader.h"

namespace tool::reading {

Page grey_of(const Page& colour) {
    Page grey = make_page_like(colour, PageKind::kGrey);
    RowReader reader{colour};
    if (bi_color2greybuf(0, RowReader::read, &reader, nullptr, PREPRO_SOURCE_RGB, colour.width,
                         std::max(colour.dpi.x, 1), 0, colour.width, 0, colour.height,
                         grey.bytes.get(), static_cast<int>(grey.size()), 1, 0) != 0) {
        throw std::bad_alloc();
    }
    return grey;
}

}  // namespace tool::reading

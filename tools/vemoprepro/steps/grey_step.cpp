// The library binarizes a colour page from its luminance; this is that page.
#include <vemoprepro/binarization.h>

#include <algorithm>
#include <new>

#include "page/row_reader.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

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

}  // namespace

Step grey_step() {
    return {nullptr, Effect::kChangesTone, [](PageWork& work) -> Outcome {
                if (work.page.kind != PageKind::kColour) return {false, "no colours"};
                work.page = grey_of(work.page);
                return {true, "made grey"};
            }};
}

}  // namespace tool::steps

#include "cleaning/text_filter.h"

#include <algorithm>
#include <new>

#include "cleaning/despeckle.h"
#include "cleaning/page_copy.h"
#include "cleaning/run_morphology.h"
#include "cleaning/stt_image.h"

namespace cleaning {
namespace {

int is_no_text(void* shape, int height, int width, int area) {
    const auto& text = *static_cast<const TextShape*>(shape);
    const std::int64_t longer_side = std::max(height, width);
    return height > text.max_height || area < longer_side * text.min_density ||
                   area < std::min(height, width) * std::int64_t{text.min_density}
               ? 1
               : 0;
}

}  // namespace

void keep_text(common::MutableBitonalView page, const TextShape& shape) {
    const auto stride = static_cast<std::int32_t>(page.stride);
    PageCopy copy(page);
    if (h_fill_gaps(nullptr, 2, page.data, stride, 0, page.width, 0, page.height) < 0) {
        throw std::bad_alloc();
    }
    TextShape text = shape;
    despeckle_by_rule(wrapped_image(page.data, page.height, page.width, stride).view(),
                      {is_no_text, &text});
    and_page(page, copy.view());
}

}  // namespace cleaning

// Cropping of page borders.
#include <cstdint>

#include "api/guard.h"
#include "cleaning/borders/border_colour.h"
#include "cleaning/borders/border_crop.h"
#include "cleaning/borders/border_ink.h"
#include "common/views.h"
#include "vemoprepro/cleaning.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;

namespace {

// Whether the rows of an image lie in its buffer; `row` and `stride` have the same unit. An image
// without pixels needs no buffer.
bool has_rows(const unsigned char* data, int height, int width, std::int64_t row,
              std::int64_t stride) {
    return height < 1 || width < 1 || (data != nullptr && stride >= row);
}

simd::PixelLayout layout_of(int type) {
    switch (type) {
        case PREPRO_CROP_BGR:
            return simd::PixelLayout::kBgr;
        case PREPRO_CROP_RGB:
            return simd::PixelLayout::kRgb;
        case PREPRO_CROP_XRGB:
            return simd::PixelLayout::kXrgb;
        default:
            return simd::PixelLayout::kGrey;
    }
}

}  // namespace

int cropbmp(int ink_value, const unsigned char* source, int height, int width, int stride,
            unsigned char* target) {
    // Without columns whole rows are copied all the same.
    if (height > 0 && stride > 0 && (source == nullptr || target == nullptr)) return kFailure;
    if (!has_rows(source, height, width, common::bitonal_bytes(width), stride)) return kFailure;
    return guarded([&] {
        const common::BitonalView page{source, height, width, stride};
        const auto ink = ink_value == 0 ? cleaning::EdgeInk::kErased : cleaning::EdgeInk::kKept;
        cleaning::copy_without_edge_ink(page, ink, target);
        return kSuccess;
    });
}

int cropimg(unsigned char* image, int type, int height, int width, int stride, int dark, int light,
            int step, int* x0, int* x1, int* y0, int* y1) {
    if (type < PREPRO_CROP_GREY || type > PREPRO_CROP_XRGB) return kFailure;
    if (x0 == nullptr || x1 == nullptr || y0 == nullptr || y1 == nullptr) return kFailure;
    const simd::PixelLayout layout = layout_of(type);
    const auto pixel_bytes = static_cast<std::int64_t>(simd::pixel_bytes(layout));
    if (!has_rows(image, height, width, pixel_bytes * width, stride)) return kFailure;
    return guarded([&] {
        const cleaning::BorderPage page{image, height, width, stride, layout};
        const auto content = cleaning::crop_border(page, {dark, light, step});
        // The last column and row of the content, but the size of a page that is left as it is.
        *x0 = content ? content->x0 : 0;
        *x1 = content ? content->x1 - 1 : width;
        *y0 = content ? content->y0 : 0;
        *y1 = content ? content->y1 - 1 : height;
        return kSuccess;
    });
}

int cropgrey_get(unsigned char* value, const unsigned char* grey, int height, int width,
                 int stride) {
    if (value == nullptr || !has_rows(grey, height, width, width, stride)) return kFailure;
    *value = cleaning::inner_grey({grey, height, width, stride});
    return kSuccess;
}

int cropgrey_replace(int from, int to, unsigned char* grey, int height, int width, int stride) {
    if (!has_rows(grey, height, width, width, stride)) return kFailure;
    cleaning::replace_grey({grey, height, width, stride}, static_cast<std::uint8_t>(from),
                           static_cast<std::uint8_t>(to));
    return kSuccess;
}

int cropcolor_get(unsigned char* value, const unsigned char* colour, int height, int width,
                  int row_pixels) {
    if (value == nullptr || !has_rows(colour, height, width, width, row_pixels)) return kFailure;
    const cleaning::Colour mean =
        cleaning::inner_colour({colour, height, width, std::ptrdiff_t{3} * row_pixels});
    for (int i = 0; i < 3; ++i) value[i] = mean.bytes[i];
    return kSuccess;
}

int cropcolor_replace(const unsigned char* from, const unsigned char* to, unsigned char* colour,
                      int height, int width, int row_pixels) {
    if (!has_rows(colour, height, width, width, row_pixels)) return kFailure;
    if (height > 0 && width > 0 && (from == nullptr || to == nullptr)) return kFailure;
    cleaning::replace_colour({colour, height, width, std::ptrdiff_t{3} * row_pixels}, from, to);
    return kSuccess;
}

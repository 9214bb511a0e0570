#include "page/scale.h"

#include <vemoprepro/scaling.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <string>
#include <utility>

namespace tool {
namespace {

using Scaler = decltype(&bicubic_grey);

Scaler scaler_of(PageKind kind, Filter filter) {
    const bool cubic = filter == Filter::kBicubic;
    if (kind == PageKind::kBitonal) return cubic ? bicubic_bitonal : bilinear_bitonal;
    if (kind == PageKind::kGrey) return cubic ? bicubic_grey : bilinear_grey;
    return cubic ? bicubic_rgb : bilinear_rgb;
}

int scaled_dpi(int dpi, int from, int to) {
    if (dpi == 0) return 0;
    return std::max(1, static_cast<int>(std::lround(1.0 * dpi * to / from)));
}

Resolution scaled_resolution(Resolution dpi, const Page& from, int width, int height) {
    return {scaled_dpi(dpi.x, from.width, width), scaled_dpi(dpi.y, from.height, height)};
}

}  // namespace

void scale_page(Page& page, int width, int height, Filter filter) {
    if (width < 1 || height < 1 || width > kLongestSide || height > kLongestSide) {
        throw PageError("scaled it would be " + std::to_string(width) + " x " +
                        std::to_string(height) + " pixels, a side has 1 .. 32767");
    }
    Page scaled =
        make_page(page.kind, width, height, scaled_resolution(page.dpi, page, width, height));
    scaled.scale = scaled_resolution(page.scale, page, width, height);
    if (scaler_of(page.kind, filter)(page.bytes.get(), page.height, page.width,
                                     static_cast<int>(page.stride()), scaled.bytes.get(), height,
                                     width, static_cast<int>(scaled.stride())) != 0) {
        throw std::bad_alloc();
    }
    page = std::move(scaled);
}

}  // namespace tool

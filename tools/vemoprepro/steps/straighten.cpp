#include "steps/straighten.h"

#include <vemoprepro/deskew.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include "page/negative.h"
#include "reading/resample.h"

namespace tool::steps {
namespace {

// The shears of pixels know no skew between these.
int whole_units(Skew skew) {
    return static_cast<int>(std::lround(1.0 * skew.numerator * Skew::kScale / skew.denominator));
}

Page straight_frame(const Page& page, StraightSize size) {
    Page straight = make_page(page.kind, size.width, size.height, page.dpi);
    straight.scale = page.scale;
    return straight;
}

void check(int status) {
    if (status != 0) throw std::bad_alloc();
}

int stride_as_int(const Page& page) {
    return static_cast<int>(page.stride());
}

void move_pieces(const Page& page, Skew skew, Page& straight) {
    check(skrotbmp_mem(skew.numerator, skew.denominator, page.bytes.get(), page.height, page.width,
                       stride_as_int(page), straight.bytes.get(), straight.height, straight.width,
                       stride_as_int(straight), nullptr));
}

void shear_bits(const Page& page, Skew skew, Page& straight) {
    check(skew_binary_image_aligned_with_skrotimg_mem(
        whole_units(skew), Skew::kScale, page.bytes.get(), page.height, page.width,
        stride_as_int(page), straight.bytes.get(), straight.height, straight.width,
        stride_as_int(straight), nullptr));
}

void turn_ink(Page& page, Skew skew, Straightening way, bool on_ink) {
    Page straight = straight_frame(page, straight_size(page, skew, way));
    if (on_ink) complement(page);
    (way == Straightening::kPieces ? move_pieces : shear_bits)(page, skew, straight);
    if (on_ink) complement(straight);
    page = std::move(straight);
}

void shear_pixels(Page& page, Skew skew, const PixelColour& background) {
    const StraightSize size = straight_size(page, skew, Straightening::kPixels);
    Page straight = straight_frame(page, size);
    std::memcpy(straight.bytes.get(), page.bytes.get(), page.size());
    const auto [height, width] = std::pair(page.height, page.width);
    page.bytes.reset();
    check(skrotimg_bg_mem(whole_units(skew), Skew::kScale, straight.kind == PageKind::kGrey ? 1 : 3,
                          straight.bytes.get(), height, width, background.data(), straight.height,
                          straight.width, nullptr));
    page = std::move(straight);
}

void resample(Page& page, Skew skew) {
    const auto [width, height] = straight_size(page, skew, Straightening::kResampled);
    page = reading::levelled(page, skew.numerator, skew.denominator, width, height);
}

}  // namespace

StraightSize straight_size(const Page& page, Skew skew, Straightening way) {
    StraightSize size{};
    const int status = way == Straightening::kPixels
                           ? skrotdim(whole_units(skew), Skew::kScale, page.height, page.width,
                                      &size.height, &size.width)
                           : skrotbmp_dim(skew.numerator, skew.denominator, page.height, page.width,
                                          &size.height, &size.width);
    if (status != 0) throw PageError("the skew is out of range");
    return size;
}

void straighten(Page& page, Skew skew, Straightening way, const Background& background) {
    if (way == Straightening::kResampled) return resample(page, skew);
    const PixelColour colour = background_of(page, background);
    if (page.kind == PageKind::kBitonal) return turn_ink(page, skew, way, colour[0] == 0);
    shear_pixels(page, skew, colour);
}

}  // namespace tool::steps

// Skew of a bitonal page beside Leptonica's search by differential projections.
#include <leptonica/allheaders.h>

#include <cstring>
#include <memory>

#include "harness.h"
#include "vemoprepro/deskew.h"

namespace {

using LeptonicaPage = std::shared_ptr<PIX>;

LeptonicaPage to_leptonica(const bench::Page& page) {
    PIX* pix = pixCreate(page.width, page.height, 1);
    for (int y = 0; y < page.height; ++y)
        std::memcpy(pixGetData(pix) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix),
                    page.data.data() + static_cast<std::ptrdiff_t>(y) * page.stride,
                    4 * static_cast<std::size_t>(pixGetWpl(pix)));
    pixEndianByteSwap(pix);
    return {pix, [](PIX* held) { pixDestroy(&held); }};
}

bench::Sides find_skew(const bench::Page& page) {
    return {.ours =
                [&page] {
                    int yskew, scale, height, width;
                    double confidence;
                    estimate_skew_of_binary_image(0, nullptr, page.data.data(), page.height,
                                                  page.width, page.stride, &yskew, &scale,
                                                  &confidence, &height, &width);
                },
            .theirs =
                [pix = to_leptonica(page)] {
                    float angle, confidence;
                    pixFindSkew(pix.get(), &angle, &confidence);
                }};
}

const bool straight = bench::add({.name = "skew, bitonal",
                                  .peer = "Leptonica pixFindSkew",
                                  .required = 8.0,
                                  .floor_bytes = 2480 / 8 * 3508,
                                  .prepare = [] { return find_skew(bench::bitonal_page()); }});

const bool turned = bench::add({.name = "skew, bitonal page turned by 1.5 degrees",
                                .peer = "Leptonica pixFindSkew",
                                .required = 8.0,
                                .floor_bytes = 2480 / 8 * 3508,
                                .prepare = [] { return find_skew(bench::skewed_bitonal_page()); }});

}  // namespace

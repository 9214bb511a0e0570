// Skew of a bitonal page beside Leptonica's search by differential projections.
#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/deskew.h"

namespace {

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
                [pix = bench::to_leptonica(page)] {
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

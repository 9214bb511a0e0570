// Straightening photographed pages.
#include <cstddef>

#include "api/guard.h"
#include "common/views.h"
#include "geometry/corners.h"
#include "geometry/perspective.h"
#include "vemoprepro/geometry.h"

using api::kFailure;
using api::kSuccess;

namespace {

common::MutableColourView packed(unsigned char* data, int height, int width) {
    return {data, height, width, std::ptrdiff_t{3} * width};
}

}  // namespace

int check_points_order(int* x0, int* y0, int* x1, int* y1, int* x2, int* y2, int* x3, int* y3) {
    int* const x[] = {x0, x1, x2, x3};
    int* const y[] = {y0, y1, y2, y3};
    geometry::Corners corners;
    for (std::size_t i = 0; i < 4; ++i) {
        if (x[i] == nullptr || y[i] == nullptr) return kFailure;
        corners[i] = {*x[i], *y[i]};
    }
    corners = geometry::ordered(corners);
    for (std::size_t i = 0; i < 4; ++i) {
        *x[i] = corners[i].x;
        *y[i] = corners[i].y;
    }
    return kSuccess;
}

int give_appropriate_height_and_width(int x0, int y0, int x1, int y1, int x2, int y2, int x3,
                                      int y3, int* out_height, int* out_width) {
    if (out_height == nullptr || out_width == nullptr) return kFailure;
    const geometry::PageSides sides =
        geometry::sides_between({{{x0, y0}, {x1, y1}, {x2, y2}, {x3, y3}}});
    *out_width = sides.width.value_or(-1);
    *out_height = sides.height.value_or(-1);
    return sides.width && sides.height ? kSuccess : kFailure;
}

int perspective_transformation_color(unsigned char* src, unsigned char* dst, int width, int height,
                                     int dst_width, int dst_height, int x0, int y0, int x1, int y1,
                                     int x2, int y2, int x3, int y3) {
    if (width < 1 || height < 1) return kSuccess;
    const bool draws = dst_width >= 1 && dst_height >= 1;
    if (src == nullptr || (draws && dst == nullptr)) return kFailure;
    return api::guarded([&] {
        geometry::to_luma_chroma(packed(src, height, width));
        if (draws) {
            geometry::rectify(packed(src, height, width),
                              {{{x0, y0}, {x1, y1}, {x2, y2}, {x3, y3}}},
                              packed(dst, dst_height, dst_width));
        }
        return kSuccess;
    });
}

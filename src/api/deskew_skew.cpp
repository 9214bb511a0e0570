// Skew estimation of bitonal pages.
#include "api/guard.h"
#include "api/page_size.h"
#include "common/views.h"
#include "deskew/bitonal_skew.h"
#include "deskew/skew_unit.h"
#include "vemoprepro/deskew.h"

namespace {

constexpr int kWordBytes = 4;

bool is_page(const unsigned char* src, int height, int width, int bytes_per_line) {
    if (src == nullptr || bytes_per_line % kWordBytes != 0) return false;
    if (bytes_per_line < common::bitonal_stride(width)) return false;
    return height >= deskew::kLeastSide && width >= deskew::kLeastSide;
}

}  // namespace

// A null output is refused like any other argument, after the initial values of the others have
// been stored and before a trace file is made. A straightened page beyond 32-bit sizes is refused
// too.
int estimate_skew_of_binary_image(int debug, const char* debug_folder, const unsigned char* src,
                                  int height, int width, int bytes_per_line, int* yskew, int* scale,
                                  double* confidence, int* out_height, int* out_width) {
    if (yskew != nullptr) *yskew = 0;
    if (scale != nullptr) *scale = deskew::kSkewScale;
    if (confidence != nullptr) *confidence = deskew::SkewEstimate().confidence;
    if (yskew == nullptr || scale == nullptr || confidence == nullptr || out_height == nullptr ||
        out_width == nullptr || !is_page(src, height, width, bytes_per_line))
        return api::kFailure;
    return api::guarded([&] {
        const common::BitonalView page{src, height, width, bytes_per_line};
        const bool traced = (debug & 0xFF) != 0;
        const deskew::SkewEstimate found = traced ? deskew::trace_bitonal_skew(page, debug_folder)
                                                  : deskew::estimate_bitonal_skew(page);
        const deskew::Size size = deskew::deskewed_size(height, width, found.yskew);
        if (api::store_size(size, out_height, out_width) != api::kSuccess) return api::kFailure;
        *yskew = found.yskew;
        *confidence = found.confidence;
        return api::kSuccess;
    });
}

int skbitmap_mem(const unsigned char* src, int height, int width, int bytes_per_line, int* yskew,
                 int* scale, int* out_height, int* out_width) {
    double confidence = 0.0;
    return estimate_skew_of_binary_image(0, nullptr, src, height, width, bytes_per_line, yskew,
                                         scale, &confidence, out_height, out_width);
}

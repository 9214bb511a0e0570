// Skew and deskew rotation of grey and colour pages.
#include <cstdint>
#include <limits>

#include "api/guard.h"
#include "deskew/bitonal_skew.h"
#include "deskew/colour_rotation.h"
#include "deskew/colour_skew.h"
#include "vemoprepro/deskew.h"

namespace {

constexpr int kLeastPixelBytes = 1;
constexpr int kMostPixelBytes = 4;
constexpr unsigned char kWhite[kMostPixelBytes] = {255, 255, 255, 255};

// Whether the bytes of a page can be counted.
bool addressable(int height, int width, int pixel_bytes) {
    return std::int64_t{height} * width <= std::numeric_limits<std::ptrdiff_t>::max() / pixel_bytes;
}

}  // namespace

// The size is refused before anything is stored, every other argument afterwards, before a trace
// file is made.
int estimate_skew_of_color_image(int debug, const char* debug_folder, prepro_row_reader read_row,
                                 void* user, int format, int height, int width, int* yskew,
                                 int* scale, double* confidence) {
    if (height < deskew::kLeastSide || width < deskew::kLeastSide) return api::kFailure;
    if (yskew != nullptr) *yskew = 0;
    if (scale != nullptr) *scale = deskew::kSkewScale;
    if (confidence != nullptr) *confidence = deskew::SkewEstimate().confidence;
    if (yskew == nullptr || scale == nullptr || confidence == nullptr || read_row == nullptr ||
        !grey::known_type(format))
        return api::kFailure;
    return api::guarded([&] {
        const deskew::SourcePage page{
            {read_row, user, nullptr, static_cast<grey::SourceType>(format), width}, height};
        const bool traced = (debug & 0xFF) != 0;
        const deskew::SkewEstimate found = traced ? deskew::trace_colour_skew(page, debug_folder)
                                                  : deskew::estimate_colour_skew(page);
        *yskew = found.yskew;
        *confidence = found.confidence;
        return api::kSuccess;
    });
}

int sk_color_mem(prepro_row_reader read_row, void* user, int format, int height, int width,
                 int* yskew, int* scale) {
    double confidence = 0.0;
    return estimate_skew_of_color_image(0, nullptr, read_row, user, format, height, width, yskew,
                                        scale, &confidence);
}

int skrotimg_bg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer, int height,
                    int width, const unsigned char* background, int out_height, int out_width,
                    prepro_progress progress) {
    if (buffer == nullptr || background == nullptr) return api::kFailure;
    if (bytes_per_pixel < kLeastPixelBytes || bytes_per_pixel > kMostPixelBytes)
        return api::kFailure;
    if (height < 1 || width < 1 || !addressable(out_height, out_width, bytes_per_pixel))
        return api::kFailure;
    return api::guarded([&] {
        const deskew::PixelPage page{buffer, bytes_per_pixel, {height, width}};
        const bool fits = deskew::straighten_in_place(page, {skew, scale}, {out_height, out_width},
                                                      background, {progress});
        return fits ? api::kSuccess : api::kFailure;
    });
}

int skrotimg_mem(int skew, int scale, int bytes_per_pixel, unsigned char* buffer, int height,
                 int width, int out_height, int out_width, prepro_progress progress) {
    return skrotimg_bg_mem(skew, scale, bytes_per_pixel, buffer, height, width, kWhite, out_height,
                           out_width, progress);
}

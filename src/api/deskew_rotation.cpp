// The exported bitonal deskew rotations: strides and sizes are refused here, a destination that is
// smaller than the page by the family, which knows the size.
#include <limits>

#include "api/guard.h"
#include "api/page_size.h"
#include "common/views.h"
#include "deskew/bitonal_rotation.h"
#include "deskew/shear_angles.h"
#include "vemoprepro/deskew.h"

using common::BitonalView;
using common::MutableBitonalView;

namespace {

// In what the two kinds of rotation differ for the caller.
struct Kind {
    std::int64_t longest;  // side of a page in pixels, and bytes in a row
    int too_small;         // the code for a destination smaller than the rotated page
};

constexpr Kind kOwn = {65535, api::kBadStride};
constexpr Kind kAligned = {std::numeric_limits<int>::max(), api::kFailure};

bool stride_fits(BitonalView page) {
    return page.stride >= common::bitonal_stride(page.width);
}

bool short_enough(BitonalView page, std::int64_t longest) {
    return page.height <= longest && page.width <= longest && page.stride <= longest;
}

// A destination with sides below 1 needs no refusal of its own: it is smaller than any page.
template <class Straighten>
int rotate(const Kind& kind, BitonalView source, BitonalView destination, Straighten&& straighten) {
    if (!stride_fits(source) || !stride_fits(destination)) return api::kBadStride;
    if (source.data == nullptr || destination.data == nullptr) return api::kFailure;
    if (source.height < 1 || source.width < 1) return api::kFailure;
    if (!short_enough(source, kind.longest) || !short_enough(destination, kind.longest))
        return api::kFailure;
    return api::guarded([&] { return straighten() ? api::kSuccess : kind.too_small; });
}

}  // namespace

int skrotbmp_dim(int skew, int scale, int height, int width, int* out_height, int* out_width) {
    if (out_height == nullptr || out_width == nullptr) return api::kFailure;
    return api::guarded([&] {
        return api::store_size(
            deskew::deskewed_size(height, width, deskew::skew_units({skew, scale})), out_height,
            out_width);
    });
}

int skrotdim(int skew, int scale, int height, int width, int* out_height, int* out_width) {
    if (out_height == nullptr || out_width == nullptr) return api::kFailure;
    *out_height = 0;
    *out_width = 0;
    return api::guarded([&] {
        const deskew::ShearPlan plan = deskew::shear_plan(deskew::skew_units({skew, scale}));
        return api::store_size(deskew::sheared_size(plan, height, width), out_height, out_width);
    });
}

int skrotbmp_mem(int skew, int scale, const unsigned char* src, int height, int width,
                 int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                 int out_bytes_per_line, prepro_progress progress) {
    const BitonalView source{src, height, width, bytes_per_line};
    const MutableBitonalView destination{dst, out_height, out_width, out_bytes_per_line};
    return rotate(kOwn, source, destination, [&] {
        return deskew::straighten(source, {skew, scale}, destination, {progress});
    });
}

int skrotbmp_b_mem(int skew, int scale, unsigned char* src, int height, int width,
                   int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                   int out_bytes_per_line, prepro_progress progress) {
    const MutableBitonalView source{src, height, width, bytes_per_line};
    const MutableBitonalView destination{dst, out_height, out_width, out_bytes_per_line};
    return rotate(kOwn, source, destination, [&] {
        return deskew::straighten_complement(source, {skew, scale}, destination, {progress});
    });
}

int skew_binary_image_aligned_with_skrotimg_mem(int skew, int scale, const unsigned char* src,
                                                int height, int width, int bytes_per_line,
                                                unsigned char* dst, int out_height, int out_width,
                                                int out_bytes_per_line, prepro_progress progress) {
    const BitonalView source{src, height, width, bytes_per_line};
    const MutableBitonalView destination{dst, out_height, out_width, out_bytes_per_line};
    return rotate(kAligned, source, destination, [&] {
        return deskew::straighten_aligned(source, {skew, scale}, destination, {progress});
    });
}

int skew_binary_image_aligned_with_skrotimg_mem_black_background(
    int skew, int scale, unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress) {
    const MutableBitonalView source{src, height, width, bytes_per_line};
    const MutableBitonalView destination{dst, out_height, out_width, out_bytes_per_line};
    return rotate(kAligned, source, destination, [&] {
        return deskew::straighten_complement_aligned(source, {skew, scale}, destination,
                                                     {progress});
    });
}

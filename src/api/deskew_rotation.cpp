// The exported bitonal deskew rotations: checks in the documented order, then one call.
#include <cstring>
#include <limits>
#include <optional>

#include "api/guard.h"
#include "common/views.h"
#include "deskew/bitonal_rotation.h"
#include "deskew/shear_angles.h"
#include "deskew/skew_unit.h"
#include "vemoprepro/deskew.h"

namespace {

// Sizes of the bitonal deskew are 16-bit numbers.
constexpr std::int64_t kMaxSide = 65535;

struct Rotation {
    int skew;
    int scale;
    common::BitonalView source;
    common::MutableBitonalView destination;
    deskew::Progress progress;
};

using Rotate = int (*)(const Rotation&);

// The drift over 512 pixels, rounded toward zero; nothing when it is out of range or scale is 0.
// No skew is no skew in any scale.
std::optional<int> skew_unit(int skew, int scale) {
    if (skew == 0) return 0;
    if (scale == 0) return std::nullopt;
    const std::int64_t yskew = std::int64_t{skew} * deskew::kSkewScale / scale;
    if (yskew < -deskew::kMaxSkew || yskew > deskew::kMaxSkew) return std::nullopt;
    return static_cast<int>(yskew);
}

bool strides_fit(const Rotation& rotation) {
    const auto fits = [](const auto& page) {
        return page.stride >= common::bitonal_stride(page.width);
    };
    return fits(rotation.source) && fits(rotation.destination);
}

// A destination with sides below 1 needs no refusal of its own: it is smaller than any page.
bool pages_exist(const Rotation& rotation) {
    return rotation.source.data != nullptr && rotation.destination.data != nullptr &&
           rotation.source.height > 0 && rotation.source.width > 0;
}

bool sizes_representable(const Rotation& rotation) {
    const auto representable = [](const auto& page) {
        return page.height <= kMaxSide && page.width <= kMaxSide && page.stride <= kMaxSide;
    };
    return representable(rotation.source) && representable(rotation.destination);
}

bool same_geometry(const Rotation& rotation) {
    return rotation.source.height == rotation.destination.height &&
           rotation.source.width == rotation.destination.width &&
           rotation.source.stride == rotation.destination.stride;
}

bool smaller(common::BitonalView page, std::int64_t height, std::int64_t width) {
    return page.height < height || page.width < width;
}

void copy_exactly(const Rotation& rotation) {
    rotation.progress(0, 1);
    std::memcpy(rotation.destination.data, rotation.source.data,
                static_cast<std::size_t>(rotation.source.height) *
                    static_cast<std::size_t>(rotation.source.stride));
    rotation.progress(1, 1);
}

int rotate(const Rotation& rotation) {
    if (!strides_fit(rotation)) return api::kBadStride;
    if (!pages_exist(rotation) || !sizes_representable(rotation)) return api::kFailure;
    if (rotation.skew == 0 && same_geometry(rotation)) {
        copy_exactly(rotation);
        return api::kSuccess;
    }
    const std::optional<int> yskew = skew_unit(rotation.skew, rotation.scale);
    if (!yskew) return api::kFailure;
    const deskew::Size size =
        deskew::deskewed_size(rotation.source.height, rotation.source.width, *yskew);
    if (smaller(rotation.destination, size.height, size.width)) return api::kBadStride;
    if (*yskew == 0) {
        deskew::copy_page(rotation.source, rotation.destination, rotation.progress);
    } else {
        deskew::straighten(rotation.source, *yskew, rotation.destination, rotation.progress);
    }
    return api::kSuccess;
}

int rotate_aligned(const Rotation& rotation) {
    if (!strides_fit(rotation)) return api::kBadStride;
    if (!pages_exist(rotation)) return api::kFailure;
    const std::optional<int> yskew = skew_unit(rotation.skew, rotation.scale);
    if (!yskew) return api::kFailure;
    const deskew::ShearedSize size = deskew::sheared_size(
        deskew::shear_plan(*yskew), rotation.source.height, rotation.source.width);
    if (smaller(rotation.destination, size.height, size.width)) return api::kFailure;
    if (*yskew == 0) {
        deskew::copy_page(rotation.source, rotation.destination, rotation.progress);
        return api::kSuccess;
    }
    deskew::straighten_aligned(rotation.source, *yskew, rotation.destination.data,
                               rotation.progress);
    return api::kSuccess;
}

template <class Size>
int store_size(const Size& size, int* height, int* width) {
    constexpr std::int64_t kMaxInt = std::numeric_limits<int>::max();
    if (size.height > kMaxInt || size.width > kMaxInt) return api::kFailure;
    *height = static_cast<int>(size.height);
    *width = static_cast<int>(size.width);
    return api::kSuccess;
}

// Complements a page for as long as it lives, whatever ends the call.
class Complemented {
  public:
    explicit Complemented(common::MutableBitonalView page) : page_(page) { complement(); }
    ~Complemented() { complement(); }
    Complemented(const Complemented&) = delete;
    Complemented& operator=(const Complemented&) = delete;

  private:
    void complement() const {
        const auto bytes =
            static_cast<std::size_t>(page_.height) * static_cast<std::size_t>(page_.stride);
        for (std::size_t i = 0; i < bytes; ++i) {
            page_.data[i] = static_cast<std::uint8_t>(~page_.data[i]);
        }
    }

    common::MutableBitonalView page_;
};

int rotate_complement(const Rotation& rotation, unsigned char* src, Rotate rotate_page) {
    if (!strides_fit(rotation)) return api::kBadStride;
    if (!pages_exist(rotation)) return api::kFailure;
    const Complemented complemented(
        {src, rotation.source.height, rotation.source.width, rotation.source.stride});
    return rotate_page(rotation);
}

}  // namespace

int skrotbmp_dim(int skew, int scale, int height, int width, int* out_height, int* out_width) {
    if (out_height == nullptr || out_width == nullptr) return api::kFailure;
    const std::optional<int> yskew = skew_unit(skew, scale);
    if (!yskew) return api::kFailure;
    return store_size(deskew::deskewed_size(height, width, *yskew), out_height, out_width);
}

int skrotdim(int skew, int scale, int height, int width, int* out_height, int* out_width) {
    if (out_height == nullptr || out_width == nullptr) return api::kFailure;
    *out_height = 0;
    *out_width = 0;
    const std::optional<int> yskew = skew_unit(skew, scale);
    if (!yskew) return api::kFailure;
    return store_size(deskew::sheared_size(deskew::shear_plan(*yskew), height, width), out_height,
                      out_width);
}

int skrotbmp_mem(int skew, int scale, const unsigned char* src, int height, int width,
                 int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                 int out_bytes_per_line, prepro_progress progress) {
    return api::guarded([&] {
        return rotate({skew,
                       scale,
                       {src, height, width, bytes_per_line},
                       {dst, out_height, out_width, out_bytes_per_line},
                       {progress}});
    });
}

int skrotbmp_b_mem(int skew, int scale, unsigned char* src, int height, int width,
                   int bytes_per_line, unsigned char* dst, int out_height, int out_width,
                   int out_bytes_per_line, prepro_progress progress) {
    return api::guarded([&] {
        return rotate_complement({skew,
                                  scale,
                                  {src, height, width, bytes_per_line},
                                  {dst, out_height, out_width, out_bytes_per_line},
                                  {progress}},
                                 src, rotate);
    });
}

int skew_binary_image_aligned_with_skrotimg_mem(int skew, int scale, const unsigned char* src,
                                                int height, int width, int bytes_per_line,
                                                unsigned char* dst, int out_height, int out_width,
                                                int out_bytes_per_line, prepro_progress progress) {
    return api::guarded([&] {
        return rotate_aligned({skew,
                               scale,
                               {src, height, width, bytes_per_line},
                               {dst, out_height, out_width, out_bytes_per_line},
                               {progress}});
    });
}

int skew_binary_image_aligned_with_skrotimg_mem_black_background(
    int skew, int scale, unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line,
    prepro_progress progress) {
    return api::guarded([&] {
        return rotate_complement({skew,
                                  scale,
                                  {src, height, width, bytes_per_line},
                                  {dst, out_height, out_width, out_bytes_per_line},
                                  {progress}},
                                 src, rotate_aligned);
    });
}

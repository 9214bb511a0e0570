// Scaling whole pages.
#include "vemoprepro/scaling.h"

#include <cstdint>

#include "api/guard.h"
#include "common/views.h"
#include "geometry/bitonal_scaling.h"
#include "geometry/colour_scaling.h"
#include "geometry/plane_scaling.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using geometry::ColourFilters;
using geometry::Filter;

namespace {

template <common::PixelKind kKind>
struct Scaling {
    common::View<const std::uint8_t, kKind> src;
    common::View<std::uint8_t, kKind> dst;
    int threads;

    Scaling(const unsigned char* src_data, int height, int width, int bytes_per_line,
            unsigned char* dst_data, int dst_height, int dst_width, int dst_bytes_per_line,
            int nb_threads = 1)
        : src{src_data, height, width, bytes_per_line},
          dst{dst_data, dst_height, dst_width, dst_bytes_per_line},
          threads(nb_threads) {}

    static std::int64_t least_stride(std::int64_t width) {
        if (kKind == common::PixelKind::kBitonal) return common::bitonal_stride(width);
        return kKind == common::PixelKind::kColour ? 3 * width : width;
    }

    bool possible() const {
        const auto fits = [](const auto& page) {
            return page.stride >= least_stride(page.width) && page.height >= 1 && page.width >= 1 &&
                   page.data != nullptr;
        };
        return fits(src) && fits(dst);
    }

    template <class Scale>
    int by(const Scale& scale) const {
        if (!possible()) return kFailure;
        return guarded([&] {
            scale(src, dst, threads);
            return kSuccess;
        });
    }
};

template <class... Arguments>
int scale_grey(Filter filter, Arguments... arguments) {
    return Scaling<common::PixelKind::kGrey>(arguments...).by([&](auto... pages) {
        geometry::scale_plane(filter, pages...);
    });
}

template <class... Arguments>
int scale_colour(const ColourFilters& filters, Arguments... arguments) {
    return Scaling<common::PixelKind::kColour>(arguments...).by([&](auto... pages) {
        geometry::scale_colour(filters, pages...);
    });
}

template <class... Arguments>
int scale_bitonal(Filter filter, Arguments... arguments) {
    return Scaling<common::PixelKind::kBitonal>(arguments...).by([&](auto... pages) {
        geometry::scale_bitonal(filter, pages...);
    });
}

constexpr ColourFilters kBilinear{Filter::kBilinear, Filter::kBilinear};
constexpr ColourFilters kBicubic{Filter::kBicubic, Filter::kBicubic};
constexpr ColourFilters kBicubicLuma{Filter::kBicubic, Filter::kBilinear};

}  // namespace

int bilinear_grey(const unsigned char* src, int height, int width, int bytes_per_line,
                  unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_grey(Filter::kBilinear, src, height, width, bytes_per_line, dst, dst_height,
                      dst_width, dst_bytes_per_line);
}

int bicubic_grey(const unsigned char* src, int height, int width, int bytes_per_line,
                 unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_grey(Filter::kBicubic, src, height, width, bytes_per_line, dst, dst_height,
                      dst_width, dst_bytes_per_line);
}

int bicubic_grey_with_threads(const unsigned char* src, int height, int width, int bytes_per_line,
                              unsigned char* dst, int dst_height, int dst_width,
                              int dst_bytes_per_line, int nb_threads) {
    return scale_grey(Filter::kBicubic, src, height, width, bytes_per_line, dst, dst_height,
                      dst_width, dst_bytes_per_line, nb_threads);
}

int bilinear_rgb(const unsigned char* src, int height, int width, int bytes_per_line,
                 unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_colour(kBilinear, src, height, width, bytes_per_line, dst, dst_height, dst_width,
                        dst_bytes_per_line);
}

int bicubic_rgb(const unsigned char* src, int height, int width, int bytes_per_line,
                unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_colour(kBicubic, src, height, width, bytes_per_line, dst, dst_height, dst_width,
                        dst_bytes_per_line);
}

int bicubic_rgb_with_threads(const unsigned char* src, int height, int width, int bytes_per_line,
                             unsigned char* dst, int dst_height, int dst_width,
                             int dst_bytes_per_line, int nb_threads) {
    return scale_colour(kBicubic, src, height, width, bytes_per_line, dst, dst_height, dst_width,
                        dst_bytes_per_line, nb_threads);
}

int bicubic_rgb_o(const unsigned char* src, int height, int width, int bytes_per_line,
                  unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_colour(kBicubicLuma, src, height, width, bytes_per_line, dst, dst_height,
                        dst_width, dst_bytes_per_line);
}

int bicubic_rgb_o_with_threads(const unsigned char* src, int height, int width, int bytes_per_line,
                               unsigned char* dst, int dst_height, int dst_width,
                               int dst_bytes_per_line, int nb_threads) {
    return scale_colour(kBicubicLuma, src, height, width, bytes_per_line, dst, dst_height,
                        dst_width, dst_bytes_per_line, nb_threads);
}

int bilinear_bitonal(const unsigned char* src, int height, int width, int bytes_per_line,
                     unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_bitonal(Filter::kBilinear, src, height, width, bytes_per_line, dst, dst_height,
                         dst_width, dst_bytes_per_line);
}

int bicubic_bitonal(const unsigned char* src, int height, int width, int bytes_per_line,
                    unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line) {
    return scale_bitonal(Filter::kBicubic, src, height, width, bytes_per_line, dst, dst_height,
                         dst_width, dst_bytes_per_line);
}

int bicubic_bitonal_with_threads(const unsigned char* src, int height, int width,
                                 int bytes_per_line, unsigned char* dst, int dst_height,
                                 int dst_width, int dst_bytes_per_line, int nb_threads) {
    return scale_bitonal(Filter::kBicubic, src, height, width, bytes_per_line, dst, dst_height,
                         dst_width, dst_bytes_per_line, nb_threads);
}

// The eleven scaling functions beside their models, for tests and fuzz targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scaling_model.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/scaling.h"

namespace model {

using Scaling = int (*)(const unsigned char* src, int height, int width, int bytes_per_line,
                        unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                        int nb_threads);

// A function without a number of threads, by the type of those with one.
template <auto scaling>
int on_one_thread(const unsigned char* src, int height, int width, int bytes_per_line,
                  unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                  int /*nb_threads*/) {
    return scaling(src, height, width, bytes_per_line, dst, dst_height, dst_width,
                   dst_bytes_per_line);
}

inline constexpr struct ScalingKind {
    const char* name;
    int bits;  // of a pixel
    Scaling scaling;
    Scaling model;

    // Bytes of the shortest row that is accepted.
    int row_bytes(int width) const { return bits == 1 ? word_stride(width) : bits / 8 * width; }
} kScalingKinds[] = {
    {"bilinear_grey", 8, on_one_thread<::bilinear_grey>, scale_grey<Filter::kBilinear>},
    {"bicubic_grey", 8, on_one_thread<::bicubic_grey>, scale_grey<Filter::kBicubic>},
    {"bicubic_grey_with_threads", 8, ::bicubic_grey_with_threads, scale_grey<Filter::kBicubic>},
    {"bilinear_rgb", 24, on_one_thread<::bilinear_rgb>,
     scale_rgb<Filter::kBilinear, Filter::kBilinear>},
    {"bicubic_rgb", 24, on_one_thread<::bicubic_rgb>,
     scale_rgb<Filter::kBicubic, Filter::kBicubic>},
    {"bicubic_rgb_with_threads", 24, ::bicubic_rgb_with_threads,
     scale_rgb<Filter::kBicubic, Filter::kBicubic>},
    {"bicubic_rgb_o", 24, on_one_thread<::bicubic_rgb_o>,
     scale_rgb<Filter::kBicubic, Filter::kBilinear>},
    {"bicubic_rgb_o_with_threads", 24, ::bicubic_rgb_o_with_threads,
     scale_rgb<Filter::kBicubic, Filter::kBilinear>},
    {"bilinear_bitonal", 1, on_one_thread<::bilinear_bitonal>, scale_bitonal<Filter::kBilinear>},
    {"bicubic_bitonal", 1, on_one_thread<::bicubic_bitonal>, scale_bitonal<Filter::kBicubic>},
    {"bicubic_bitonal_with_threads", 1, ::bicubic_bitonal_with_threads,
     scale_bitonal<Filter::kBicubic>}};

struct ScalingSizes {
    int height, width, stride;
    int dst_height, dst_width, dst_stride;
};

// Whether the function returns what its model returns, and leaves the same bytes.
inline bool scalings_agree(const ScalingKind& kind, const std::vector<std::uint8_t>& src,
                           const ScalingSizes& s, int threads) {
    const bool has_bytes = s.dst_height > 0 && s.dst_stride > 0;
    support::GuardedBuffer dst(has_bytes ? offset(s.dst_height, s.dst_stride, 0) : 0);
    std::vector<std::uint8_t> expected = dst.contents();
    const auto status_of = [&](Scaling scaling, std::uint8_t* to) {
        return scaling(src.data(), s.height, s.width, s.stride, to, s.dst_height, s.dst_width,
                       s.dst_stride, threads);
    };
    return status_of(kind.scaling, dst.data()) == status_of(kind.model, expected.data()) &&
           dst.contents() == expected && dst.guards_intact();
}

}  // namespace model

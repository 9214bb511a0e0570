// The skew estimator and its model on one page, for tests and fuzz targets.
#pragma once

#include <bit>
#include <cstdint>
#include <ostream>

#include "skew_model.h"
#include "support/bitonal_page.h"
#include "vemoprepro/deskew.h"

namespace model {

// What an estimate returned and stored; -7 where it has stored nothing.
struct SkewOutputs {
    int result = -7;
    int yskew = -7;
    int scale = -7;
    double confidence = -7;
    int out_height = -7;
    int out_width = -7;

    // To the bit: a confidence that is not a number equals another one.
    friend bool operator==(const SkewOutputs& a, const SkewOutputs& b) {
        return a.result == b.result && a.yskew == b.yskew && a.scale == b.scale &&
               std::bit_cast<std::uint64_t>(a.confidence) ==
                   std::bit_cast<std::uint64_t>(b.confidence) &&
               a.out_height == b.out_height && a.out_width == b.out_width;
    }
    friend std::ostream& operator<<(std::ostream& out, const SkewOutputs& o) {
        return out << o.result << ": " << o.yskew << '/' << o.scale << ", confidence "
                   << o.confidence << ", " << o.out_height << " x " << o.out_width;
    }
};

inline SkewOutputs estimated_skew(const support::BitonalPage& page, int debug = 0,
                                  const char* folder = nullptr) {
    SkewOutputs out;
    out.result = ::estimate_skew_of_binary_image(debug, folder, page.bytes.data(), page.height,
                                                 page.width, page.stride, &out.yskew, &out.scale,
                                                 &out.confidence, &out.out_height, &out.out_width);
    return out;
}

inline SkewOutputs modelled_skew(const support::BitonalPage& page, std::ostream* trace = nullptr) {
    SkewOutputs out;
    out.result = model::estimate_skew_of_binary_image(
        trace, page.bytes.data(), page.height, page.width, page.stride, &out.yskew, &out.scale,
        &out.confidence, &out.out_height, &out.out_width);
    return out;
}

}  // namespace model

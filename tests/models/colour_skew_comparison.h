// The skew of grey and colour pages beside its model, for tests and fuzz targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <utility>
#include <vector>

#include "colour_skew_model.h"
#include "skew_comparison.h"
#include "support/row_reader.h"
#include "vemoprepro/deskew.h"

namespace model {

struct ColourPage {
    int format;
    int height, width;
    std::vector<std::uint8_t> bytes;

    std::size_t row_bytes() const {
        return static_cast<std::size_t>(width) * (format == 1 ? 1 : 3);
    }
};

// What an estimate stored, and how it called its reader.
using ColourSkew = std::pair<SkewOutputs, std::vector<int>>;

template <class Estimate>
ColourSkew colour_skew_by(const ColourPage& page, const Estimate& estimate) {
    support::RecordingReader reader(page.bytes, page.row_bytes());
    SkewOutputs out;
    out.result = estimate(support::RecordingReader::read, &reader, page.format, page.height,
                          page.width, &out.yskew, &out.scale, &out.confidence);
    return {out, reader.modes};
}

inline ColourSkew estimated_skew(const ColourPage& page, int debug = 0,
                                 const char* folder = nullptr) {
    return colour_skew_by(page, [&](auto... arguments) {
        return ::estimate_skew_of_color_image(debug, folder, arguments...);
    });
}

inline ColourSkew modelled_skew(const ColourPage& page, std::ostream* trace = nullptr) {
    return colour_skew_by(page, [&](auto... arguments) {
        return model::estimate_skew_of_color_image(trace, arguments...);
    });
}

}  // namespace model

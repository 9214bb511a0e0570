// Pixels of luma and chroma at any places between those of an image: luma is interpolated
// cubically, chroma linearly. plain/sample_places.h says what is computed.
//
// Keep true: the image has pixels of three bytes, luma first, and at least one of them. Places may
// be outside of it, or no numbers. Nothing is read beyond the pixels of the image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

struct LumaChromaImage {
    const std::uint8_t* data;
    std::ptrdiff_t stride;
    std::int32_t height, width;
};

// Place i is x[i] / w[i], y[i] / w[i].
struct ProjectedPlaces {
    const double* x;
    const double* y;
    const double* w;
};

// One byte for a place each.
struct LumaChromaRows {
    std::uint8_t* luma;
    std::uint8_t* red;
    std::uint8_t* blue;
};

void sample_places(const LumaChromaImage& image, const ProjectedPlaces& places, std::size_t count,
                   const LumaChromaRows& out);

}  // namespace simd

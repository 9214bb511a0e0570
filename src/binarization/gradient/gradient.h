// Binarization by a threshold of its own for every 4 x 4 block, taken from the edges of the page.
#pragma once

#include <cstdint>

#include "binarization/settings.h"
#include "common/views.h"

namespace binarization {

struct GradientParameters {
    bool fill_mean = false;                        // how blocks without edges get thresholds
    std::uint8_t internal_gaussian_smoothing = 0;  // not 0: before edges are sought
    std::uint8_t delta1 = 40;                      // edge strength that starts an edge
    std::uint8_t delta2 = 32;                      // edge strength that continues one
    std::uint8_t black1 = 0;                       // dark areas are filled below it; 0 off
    std::uint8_t black2 = 0;                       // the lowest threshold
    std::uint8_t normalize_magnitude = 0;          // 1 scales gradients, 2 scales the deltas
};

GradientParameters gradient_parameters(const Settings& settings);

// Black where the grey is below the threshold of its block or of an edge near it, and inside dark
// areas. black1 and black2 are relative: 128 stands for the white of the image. `page` has the size
// of `grey` and the stride bitonal_stride(width); every byte is written, the padding bits with 0.
//
// threads: images of at least 100 rows are cut into bands, at least 50 rows each. Each band has a
// grid of blocks of its own that starts at the first of the 4 rows of its neighbour that it sees,
// and works without fill mean, smoothing and normalization; so its bytes are not those of a single
// band. The same number of threads always gives the same bytes.
//
// Throws std::bad_alloc, or what the start of a thread throws, before anything is written.
void binarize_by_gradient(const common::GreyView& grey, const GradientParameters& parameters,
                          int threads, const common::MutableBitonalView& page);

}  // namespace binarization

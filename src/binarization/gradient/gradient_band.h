// Gradient binarization of one band of rows, or of a whole image.
//
// Use: GradientBand band(height, width, parameters) allocates all that the work needs, and is the
// only step that can fail; band.binarize(grey, page).
#pragma once

#include <cstddef>
#include <cstdint>

#include "binarization/gradient/gradient.h"
#include "binarization/gradient/gradient_edges.h"
#include "binarization/gradient/gradient_map.h"
#include "binarization/gradient/readable_rows.h"
#include "binarization/row_ring.h"
#include "common/views.h"
#include "frame/buffer.h"

namespace binarization {

class GradientBand {
  public:
    // parameters: dark levels on the scale of the page. Throws std::bad_alloc.
    GradientBand(std::int32_t height, std::int32_t width, const GradientParameters& parameters);

    // Both of the size that the band was made for. Every byte of the page is written.
    void binarize(const common::GreyView& grey, const common::MutableBitonalView& page);

  private:
    void mark_edges(const common::GreyView& grey, const common::MutableBitonalView& page);
    simd::ThreeRows greys_around(const common::GreyView& grey, std::size_t y);
    void load_midpoints(const common::GreyView& grey, std::size_t y);
    void close_block_row(const common::GreyView& grey, std::size_t at);
    void average_partial_blocks(const common::GreyView& grey, std::size_t at, std::size_t rows);
    void count_hidden_midpoints(std::size_t at, std::size_t rows);
    void apply_thresholds(const common::GreyView& grey, const common::MutableBitonalView& page);

    GradientParameters parameters_;
    std::size_t height_;
    std::size_t width_;
    EdgeFinder edges_;
    ThresholdMaps maps_;
    ReadableRows grey_;
    PaddedRows midpoints_;
    PaddedRows contrasts_;
    frame::Buffer<std::uint64_t> bits_;
    std::uint64_t hidden_ = 0;  // of the last 64 rows, the latest in bit 0: a midpoint was 0
};

}  // namespace binarization

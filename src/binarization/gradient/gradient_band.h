// Gradient binarization of one band of rows, or of a whole image.
//
// Use: GradientBand band(height, width, parameters) allocates all that the work needs, and is the
// only step that can fail; then once band.binarize(grey, page).
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
    void make_midpoints(const common::GreyView& grey, std::size_t y);
    void average_block_row(const common::GreyView& grey, std::size_t at);
    void average_cut_blocks(const common::GreyView& grey, std::size_t at, std::size_t rows);
    void average_with_zero_midpoints(std::size_t at, std::size_t rows);
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
    // For each of the last 64 rows, the latest in bit 0, whether an edge pixel has the midpoint 0.
    std::uint64_t zero_midpoints_ = 0;
};

}  // namespace binarization

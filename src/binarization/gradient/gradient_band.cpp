// The grey rows are passed over twice. The first pass finds the edges (gradient_edges.h) and
// follows them a few rows behind: the midpoint between the darkest and the lightest grey around an
// edge pixel is the threshold of that pixel and of its neighbours, pixels darker than it are marked
// on the page, and midpoints, contrasts and greys are averaged over the blocks. From these means
// come the thresholds of all blocks (gradient_map.h), which the second pass applies. Between the
// passes nothing is kept but the marked page and the maps of the blocks.
#include "binarization/gradient/gradient_band.h"

#include <algorithm>
#include <cstring>

#include "simd/blocks/block_rows.h"
#include "simd/blocks/block_threshold_bits.h"
#include "simd/pixels/midpoint_rows.h"
#include "simd/pixels/plain/midpoint_rows.h"

namespace binarization {
namespace {

constexpr int kStartAbove = 8;     // an edge starts at the magnitude delta1 + 8
constexpr int kNoEdgesFrom = 247;  // from this delta1 on no edges are sought

EdgeOptions edge_options(const GradientParameters& parameters) {
    EdgeOptions options;
    options.start = parameters.delta1 + kStartAbove;
    options.follow = parameters.delta2;
    options.smoothed = parameters.internal_gaussian_smoothing != 0;
    if (parameters.normalize_magnitude == 1) options.normalization = Normalization::kMagnitudes;
    if (parameters.normalize_magnitude == 2) options.normalization = Normalization::kThresholds;
    return options;
}

// The rings hold what is looked at together: the four rows of a row of blocks, the rows above and
// below them, and the row that is made next.
constexpr std::size_t kRingRows = 8;

simd::ThreeRows around(const PaddedRows& rows, std::size_t y) {
    return {rows.row(y - 1), rows.row(y), rows.row(y + 1)};
}

}  // namespace

GradientBand::GradientBand(std::int32_t height, std::int32_t width,
                           const GradientParameters& parameters)
    : parameters_(parameters),
      height_(static_cast<std::size_t>(height)),
      width_(static_cast<std::size_t>(width)),
      edges_(height_, width_, edge_options(parameters)),
      maps_(blocks_along(height_), blocks_along(width_)),
      grey_(kRingRows, width_),
      midpoints_(kRingRows, width_),
      contrasts_(kRingRows, width_),
      bits_(whole_words(width_)) {}

void GradientBand::binarize(const common::GreyView& grey, const common::MutableBitonalView& page) {
    std::memset(page.data, 0, height_ * static_cast<std::size_t>(page.stride));
    if (parameters_.delta1 < kNoEdgesFrom && height_ > 1 && width_ > 1) {
        edges_.begin(grey);
        mark_edges(grey, page);
    }
    if (edges_.found_candidates()) {
        find_thresholds(maps_, edges_.start_threshold(), parameters_.fill_mean);
    } else {
        maps_.threshold.clear();
    }
    apply_thresholds(grey, page);
}

// Marks the pixels that are darker than the midpoint of an edge pixel at or beside them, and takes
// the means of all blocks.
void GradientBand::mark_edges(const common::GreyView& grey,
                              const common::MutableBitonalView& page) {
    make_midpoints(grey, 0);
    for (std::size_t y = 0; y < height_; ++y) {
        make_midpoints(grey, y + 1);
        if (y > 0 && y + 1 < height_) {
            simd::mark_below_midpoints(around(midpoints_, y),
                                       {edges_.edges(y - 1), edges_.edges(y), edges_.edges(y + 1)},
                                       grey_.row(grey, y), width_, bits_.data());
            simd::set_pixels(bits_.data(), width_, page.row(static_cast<std::ptrdiff_t>(y)));
        }
        if (y % kBlockPixels == kBlockPixels - 1 || y + 1 == height_) {
            average_block_row(grey, y / kBlockPixels);
        }
    }
}

// y is neither the first nor the last row.
simd::ThreeRows GradientBand::greys_around(const common::GreyView& grey, std::size_t y) {
    return {grey_.row(grey, y - 1), grey_.row(grey, y), grey_.row(grey, y + 1)};
}

// Midpoints and contrasts of row y; the first and the last row have no edges. Called for each row
// in order, and once more for the row below the image, of which nothing is made.
void GradientBand::make_midpoints(const common::GreyView& grey, std::size_t y) {
    zero_midpoints_ <<= 1;
    if (y >= height_) return;
    edges_.advance(y);
    if (y == 0 || y + 1 == height_) {
        std::memset(midpoints_.row(y), 0, edges_.words() * 64);
        std::memset(contrasts_.row(y), 0, edges_.words() * 64);
    } else if (simd::midpoint_row(greys_around(grey, y), edges_.edges(y), edges_.words(),
                                  midpoints_.row(y), contrasts_.row(y))) {
        zero_midpoints_ |= 1;
    }
}

// The means of block row `at`, when rows 4 * at .. 4 * at + 4 have midpoints, as far as the image
// has them.
void GradientBand::average_block_row(const common::GreyView& grey, std::size_t at) {
    const std::size_t top = at * kBlockPixels;
    const std::size_t rows = std::min(kBlockPixels, height_ - top);
    simd::FourRows midpoints;
    simd::FourRows contrasts;
    simd::FourRows greys;
    std::fill_n(bits_.begin(), edges_.words(), 0);
    for (std::size_t i = 0; i < kBlockPixels; ++i) {
        const std::size_t y = top + i;
        // Nothing below the image has contrast.
        if (i >= rows) std::memset(contrasts_.row(y), 0, edges_.words() * 64);
        midpoints.row[i] = midpoints_.row(y);
        contrasts.row[i] = contrasts_.row(y);
        greys.row[i] = grey_.row(grey, std::min(y, height_ - 1));
        for (std::size_t word = 0; i < rows && word < edges_.words(); ++word) {
            bits_[word] |= edges_.edges(y)[word];
        }
    }
    simd::edge_means(midpoints, contrasts, bits_.data(), edges_.words(), maps_.midpoint.row(at),
                     maps_.contrast.row(at));
    simd::grey_means(greys, edges_.words(), maps_.grey.row(at));
    average_cut_blocks(grey, at, rows);
    // Bit 0 stands for the row below the blocks, the next four for their own.
    if ((zero_midpoints_ >> 1 & 0xF) != 0) average_with_zero_midpoints(at, rows);
}

// A block that the right or the lower edge of the image cuts has the mean of the pixels that are
// left to it.
void GradientBand::average_cut_blocks(const common::GreyView& grey, std::size_t at,
                                      std::size_t rows) {
    std::size_t block = rows < kBlockPixels ? 0 : width_ / kBlockPixels;
    for (; block < maps_.grey.width(); ++block) {
        const std::size_t x0 = block * kBlockPixels;
        const std::size_t columns = std::min(kBlockPixels, width_ - x0);
        std::size_t sum = 0;
        for (std::size_t i = 0; i < rows; ++i) {
            const std::uint8_t* row = grey.row(static_cast<std::ptrdiff_t>(at * kBlockPixels + i));
            for (std::size_t x = x0; x < x0 + columns; ++x) sum += row[x];
        }
        maps_.grey.row(at)[block] = static_cast<std::uint8_t>(sum / (rows * columns));
    }
}

// Once more the mean midpoints of a block row, for the rare image in which an edge pixel has the
// midpoint 0, which only greys of 0 and 1 give. Such a pixel looks like one without a midpoint: it
// takes the mean of the midpoints around it, and counts with that.
void GradientBand::average_with_zero_midpoints(std::size_t at, std::size_t rows) {
    const std::size_t top = at * kBlockPixels;
    for (std::size_t block = 0; block < maps_.midpoint.width(); ++block) {
        unsigned sum = 0;
        unsigned pixels = 0;
        for (std::size_t i = 0; i < rows; ++i) {
            const std::size_t x0 = block * kBlockPixels;
            for (std::size_t x = x0; x < std::min(x0 + kBlockPixels, width_); ++x) {
                if (contrasts_.row(top + i)[x] == 0) continue;
                const unsigned own = midpoints_.row(top + i)[x];
                sum += own != 0 ? own
                                : simd::plain::mean_of_neighbours(around(midpoints_, top + i), x);
                ++pixels;
            }
        }
        maps_.midpoint.row(at)[block] = static_cast<std::uint8_t>(sum / std::max(pixels, 1U));
    }
}

void GradientBand::apply_thresholds(const common::GreyView& grey,
                                    const common::MutableBitonalView& page) {
    for (std::size_t y = 0; y < height_; ++y) {
        std::uint8_t* thresholds = maps_.threshold.row(y / kBlockPixels);
        if (y % kBlockPixels == 0) {
            for (std::size_t i = 0; i < maps_.threshold.width(); ++i) {
                thresholds[i] = std::max(thresholds[i], parameters_.black2);
            }
        }
        std::fill(bits_.begin(), bits_.end(), 0);
        simd::set_below_blocks(grey_.row(grey, y), thresholds, bits_.size(), bits_.data());
        if (y > 0 && y + 1 < height_) {
            simd::set_dark_areas(greys_around(grey, y), width_, parameters_.black1, bits_.data());
        }
        simd::set_pixels(bits_.data(), width_, page.row(static_cast<std::ptrdiff_t>(y)));
    }
}

}  // namespace binarization

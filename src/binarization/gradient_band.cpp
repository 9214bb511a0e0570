// Three passes over the grey rows: one finds edges (gradient_edges.h), one turns the edges into
// thresholds, marks the pixels next to them and sums up the blocks, and one, when the map of the
// blocks is complete, applies it. Between the passes only bits and blocks are kept.
#include "binarization/gradient_band.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "simd/block_threshold_bits.h"
#include "simd/midpoint_rows.h"

namespace binarization {
namespace {

constexpr int kStartAbove = 8;     // edges start so much above delta1
constexpr int kNoEdgesFrom = 247;  // delta1 from which on there are no edges at all

EdgeOptions edge_options(const GradientParameters& parameters) {
    EdgeOptions options;
    options.start = parameters.delta1 + kStartAbove;
    options.follow = parameters.delta2;
    options.smoothed = parameters.internal_gaussian_smoothing != 0;
    if (parameters.normalize_magnitude == 1) options.normalization = Normalization::kMagnitudes;
    if (parameters.normalize_magnitude == 2) options.normalization = Normalization::kThresholds;
    return options;
}

// Sets pixels of a row of the page from bits whose first pixel is the least significant one; bits
// behind the last pixel are dropped.
void set_bits(const std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    const auto stride =
        static_cast<std::size_t>(common::bitonal_stride(static_cast<std::int64_t>(width)));
    for (std::size_t i = 0; 8 * i < stride; ++i) {
        std::uint64_t word = bits[i];
        if (width - i * 64 < 64) word &= (std::uint64_t{1} << (width - i * 64)) - 1;
        word = (word & 0x5555555555555555U) << 1 | (word >> 1 & 0x5555555555555555U);
        word = (word & 0x3333333333333333U) << 2 | (word >> 2 & 0x3333333333333333U);
        word = (word & 0x0F0F0F0F0F0F0F0FU) << 4 | (word >> 4 & 0x0F0F0F0F0F0F0F0FU);
        const std::size_t bytes = std::min<std::size_t>(8, stride - 8 * i);
        for (std::size_t at = 0; at < bytes; ++at) {
            row[8 * i + at] |= static_cast<std::uint8_t>(word >> 8 * at);
        }
    }
}

simd::ThreeRows around(const PaddedRows& rows, std::size_t y) {
    return {rows.row(y + 2), rows.row(y), rows.row(y + 1)};
}

}  // namespace

GradientBand::GradientBand(std::int32_t height, std::int32_t width,
                           const GradientParameters& parameters)
    : parameters_(parameters),
      height_(static_cast<std::size_t>(height)),
      width_(static_cast<std::size_t>(width)),
      edges_(height_, width_, edge_options(parameters)),
      maps_(blocks_along(height_), blocks_along(width_)),
      grey_(3, width_),
      midpoints_(3, width_),
      contrasts_(3, width_),
      bits_(whole_words(width_)),
      sums_(frame::Buffer<BlockSums>::zeroed(blocks_along(width_))) {}

void GradientBand::binarize(const common::GreyView& grey, const common::MutableBitonalView& page) {
    std::memset(page.data, 0, height_ * static_cast<std::size_t>(page.stride));
    const bool seeks_edges = parameters_.delta1 < kNoEdgesFrom && height_ > 1 && width_ > 1;
    if (seeks_edges && edges_.find(grey)) {
        edges_.trace();
        mark_edges(grey, page);
        complete(maps_, edges_.start_threshold(), parameters_.fill_mean);
    }
    apply_thresholds(grey, page);
}

// The midpoint of every edge pixel is the threshold of that pixel, and spreads to its neighbours.
void GradientBand::mark_edges(const common::GreyView& grey,
                              const common::MutableBitonalView& page) {
    load_grey(grey, 0);
    load_grey(grey, 1);
    for (std::size_t y = 0; y < height_; ++y) {
        load_midpoints(grey, y + 1);
        if (y > 0 && y + 1 < height_) {
            simd::mark_row(around(midpoints_, y), grey_.row(y), width_, bits_.data());
            set_bits(bits_.data(), width_, page.row(static_cast<std::ptrdiff_t>(y)));
        }
        add_to_blocks(y);
        if (y % kBlockPixels == kBlockPixels - 1 || y + 1 == height_) close_block_row(y);
    }
}

void GradientBand::load_grey(const common::GreyView& grey, std::size_t y) {
    if (y >= height_) return;
    copy_with_ends(grey.row(static_cast<std::ptrdiff_t>(y)), width_, grey_.row(y));
}

// Border rows, and the one below the image, have no edges. Leaves rows y - 1 .. y + 1 of the grey
// image loaded.
void GradientBand::load_midpoints(const common::GreyView& grey, std::size_t y) {
    load_grey(grey, y + 1);
    std::fill_n(bits_.begin(), edges_.words(), 0);
    if (y + 1 < height_) edges_.edges(y, bits_.data());
    hidden_[y % 3] = simd::midpoint_row(around(grey_, y), bits_.data(), edges_.words(),
                                        midpoints_.row(y), contrasts_.row(y));
}

// Pixels without contrast are not asked: smoothing may have put edges where the grey is even.
void GradientBand::add_to_blocks(std::size_t y) {
    const std::uint8_t* midpoints = midpoints_.row(y);
    const std::uint8_t* contrasts = contrasts_.row(y);
    const std::uint8_t* grey = grey_.row(y);
    for (std::size_t x = 0; x < width_; ++x) {
        BlockSums& sums = sums_[x / kBlockPixels];
        sums.grey += grey[x];
        if (contrasts[x] == 0) continue;
        sums.midpoint += midpoints[x];
        sums.contrast += contrasts[x];
        ++sums.pixels;
    }
    if (!hidden_[y % 3]) return;
    // A midpoint of 0 is taken for none by the spread, which gives it one.
    for (std::size_t x = 1; x + 1 < width_; ++x) {
        if (contrasts[x] == 0 || midpoints[x] != 0) continue;
        sums_[x / kBlockPixels].midpoint += static_cast<std::uint32_t>(
            simd::plain::mean_of_neighbours(around(midpoints_, y), static_cast<std::ptrdiff_t>(x)));
    }
}

// y: the last row of the blocks.
void GradientBand::close_block_row(std::size_t y) {
    const std::size_t at = y / kBlockPixels;
    const std::size_t rows = y % kBlockPixels + 1;
    for (std::size_t i = 0; i < maps_.threshold.width(); ++i) {
        const std::size_t columns = std::min(kBlockPixels, width_ - i * kBlockPixels);
        const BlockSums& sums = sums_[i];
        const std::uint32_t pixels = std::max(sums.pixels, 1U);
        maps_.threshold.row(at)[i] = static_cast<std::uint8_t>(sums.midpoint / pixels);
        maps_.contrast.row(at)[i] = static_cast<std::uint8_t>(sums.contrast / pixels);
        maps_.average.row(at)[i] = static_cast<std::uint8_t>(sums.grey / (rows * columns));
    }
    std::fill(sums_.begin(), sums_.end(), BlockSums{});
}

void GradientBand::apply_thresholds(const common::GreyView& grey,
                                    const common::MutableBitonalView& page) {
    load_grey(grey, 0);
    for (std::size_t y = 0; y < height_; ++y) {
        load_grey(grey, y + 1);
        std::uint8_t* thresholds = maps_.threshold.row(y / kBlockPixels);
        if (y % kBlockPixels == 0) {
            for (std::size_t i = 0; i < maps_.threshold.width(); ++i) {
                thresholds[i] = std::max(thresholds[i], parameters_.black2);
            }
        }
        std::fill(bits_.begin(), bits_.end(), 0);
        simd::set_below_blocks(grey_.row(y), thresholds, bits_.size(), bits_.data());
        if (y > 0 && y + 1 < height_) {
            simd::set_dark_areas(around(grey_, y), width_, parameters_.black1, bits_.data());
        }
        set_bits(bits_.data(), width_, page.row(static_cast<std::ptrdiff_t>(y)));
    }
}

}  // namespace binarization

// Rows run through rings of a few rows each, so that gradients and magnitudes never become whole
// images: what is kept of a page is two bits a pixel.
//
// The responses at the border of the image are those of an image continued by its border pixels.
// Border pixels are never candidates themselves, but are neighbours of candidates.
#include "binarization/gradient_edges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "binarization/gradient_smoothing.h"

namespace binarization {
namespace {

constexpr int kLargestMagnitude = 180;  // of gradients up to 127 either way
constexpr double kLargestScale = 4.0;

// Candidates are sought from this magnitude on. Where the thresholds are to be reduced it is half
// of the unreduced one, whatever the reduction turns out to be.
int candidate_threshold(const EdgeOptions& options) {
    return options.normalization == Normalization::kThresholds ? options.follow / 2
                                                               : options.follow;
}

// What brings the largest magnitude of an image to the end of the range.
double scale_for(int largest) {
    if (largest == 0) return kLargestScale;
    return std::min(kLargestScale, (kLargestMagnitude + 1) / static_cast<double>(largest));
}

using MagnitudeTable = std::array<std::uint8_t, 256>;

MagnitudeTable scaled_magnitudes(int largest) {
    MagnitudeTable table{};
    for (int m = 0; m <= largest; ++m) {
        table[static_cast<std::size_t>(m)] =
            static_cast<std::uint8_t>(std::lround(m * scale_for(largest)));
    }
    return table;
}

}  // namespace

EdgeFinder::EdgeFinder(std::size_t height, std::size_t width, const EdgeOptions& options)
    : height_(height),
      width_(width),
      options_(options),
      candidate_(candidate_threshold(options)),
      start_(options.start),
      follow_(options.follow),
      source_(3, width),
      magnitudes_(3, width),
      across_(2, width),
      down_(2, width),
      starts_(height, width),
      follows_(height, width),
      open_(height, width) {}

bool EdgeFinder::find(const common::GreyView& grey) {
    if (options_.normalization == Normalization::kOff) return find_candidates(grey, nullptr);
    const int largest = largest_magnitude(grey);
    if (options_.normalization == Normalization::kMagnitudes) {
        return find_candidates(grey, scaled_magnitudes(largest).data());
    }
    start_ = static_cast<int>(std::lround(start_ / scale_for(largest)));
    follow_ = static_cast<int>(std::lround(follow_ / scale_for(largest)));
    return find_candidates(grey, nullptr);
}

void EdgeFinder::load_row(const common::GreyView& grey, std::size_t y) {
    std::uint8_t* row = source_.row(y);
    if (!options_.smoothed) {
        copy_with_ends(grey.row(static_cast<std::ptrdiff_t>(y)), width_, row);
        return;
    }
    smooth_gaussian(grey, y, row);
    row[-1] = row[0];
    row[width_] = row[width_ - 1];
}

simd::GradientRow EdgeFinder::gradient_row(std::size_t y) {
    return {magnitudes_.row(y), across_.row(y), down_.row(y)};
}

// Rows y - 1 .. y + 1 have been loaded, as far as there are such rows.
void EdgeFinder::take_gradients(std::size_t y) {
    simd::gradient_row(source_.row(y > 0 ? y - 1 : 0), source_.row(y),
                       source_.row(std::min(y + 1, height_ - 1)), width_, gradient_row(y));
}

int EdgeFinder::largest_magnitude(const common::GreyView& grey) {
    std::uint8_t largest = 0;
    load_row(grey, 0);
    for (std::size_t y = 0; y < height_; ++y) {
        if (y + 1 < height_) load_row(grey, y + 1);
        take_gradients(y);
        const std::uint8_t* row = magnitudes_.row(y);
        for (std::size_t x = 0; x < width_; ++x) largest = std::max(largest, row[x]);
    }
    return largest;
}

bool EdgeFinder::find_candidates(const common::GreyView& grey, const std::uint8_t* scaled) {
    const simd::EdgeThresholds thresholds{static_cast<std::uint8_t>(candidate_),
                                          static_cast<std::uint8_t>(start_),
                                          static_cast<std::uint8_t>(follow_)};
    bool found = false;
    for (const std::size_t y : {std::size_t{0}, height_ - 1}) {
        std::fill_n(starts_.row(y), words(), 0);
        std::fill_n(follows_.row(y), words(), 0);
    }
    load_row(grey, 0);
    for (std::size_t y = 0; y < height_; ++y) {
        if (y + 1 < height_) load_row(grey, y + 1);
        take_gradients(y);
        if (scaled != nullptr) {
            std::uint8_t* row = magnitudes_.row(y);
            for (std::size_t x = 0; x < width_; ++x) row[x] = scaled[row[x]];
        }
        if (y < 2) continue;
        const std::size_t middle = y - 1;
        const simd::MagnitudeRows around{magnitudes_.row(y - 2), magnitudes_.row(middle),
                                         magnitudes_.row(y)};
        found |= simd::local_maxima_row(around, gradient_row(middle), width_, thresholds,
                                        starts_.row(middle), follows_.row(middle));
    }
    return found;
}

void EdgeFinder::edges(std::size_t y, std::uint64_t* row) const {
    const std::uint64_t* starts = starts_.row(y);
    const std::uint64_t* follows = follows_.row(y);
    const std::uint64_t* open = open_.row(y);
    for (std::size_t i = 0; i < words(); ++i) row[i] = starts[i] | (follows[i] & ~open[i]);
}

}  // namespace binarization

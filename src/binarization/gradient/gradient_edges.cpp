// All steps follow each other down the image, each as far behind the one before as it has to be, so
// that rings of rows take the place of images. A trace reaches at most kTraceReach rows up and down
// (gradient_hysteresis.cpp): candidates are found so many rows ahead of the traces, and a row of
// edges is final so many rows behind them.
//
// The responses at the border of the image are those of an image continued by its border pixels.
// Border pixels are never candidates themselves, but candidates are compared with them.
#include "binarization/gradient/gradient_edges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "binarization/gradient/gradient_smoothing.h"

namespace binarization {
namespace {

constexpr int kLargestMagnitude = 180;  // of gradients up to 127 either way
constexpr double kLargestScale = 4.0;

// The least magnitude of a candidate. Where the thresholds are to be reduced it is half of the
// unreduced one, whatever the reduction turns out to be.
int candidate_threshold(const EdgeOptions& options) {
    return options.normalization == Normalization::kThresholds ? options.follow / 2
                                                               : options.follow;
}

// The largest limit such that a gradient whose components are not above it is below the candidate
// threshold: its length is at most sqrt(2) * limit, and is rounded. -1 where there is none.
int steep_limit(int candidate) {
    if (candidate == 0) return -1;
    const int twice = 2 * candidate - 1;  // a half is subtracted for the rounding
    int limit = 0;
    while (8 * (limit + 1) * (limit + 1) < twice * twice) ++limit;
    return std::min(limit, 255);
}

// What brings the largest magnitude of an image to the end of the range. Products and quotients
// with it are rounded to the nearest whole number, halves away from 0.
double scale_for(int largest) {
    if (largest == 0) return kLargestScale;
    return std::min(kLargestScale, (kLargestMagnitude + 1) / static_cast<double>(largest));
}

std::array<std::uint8_t, 256> scaled_magnitudes(int largest) {
    std::array<std::uint8_t, 256> table{};
    for (int m = 0; m <= largest; ++m) {
        table[static_cast<std::size_t>(m)] =
            static_cast<std::uint8_t>(std::lround(m * scale_for(largest)));
    }
    return table;
}

// Rows that are in use at a time: from those that the caller looks back at to those in which
// candidates are sought already.
std::size_t ring_rows(std::size_t height) {
    constexpr std::size_t kLookBack = 8;
    return std::min(height, kLookBack + 2 * kTraceReach + 1);
}

}  // namespace

EdgeFinder::EdgeFinder(std::size_t height, std::size_t width, const EdgeOptions& options)
    : height_(height),
      width_(width),
      options_(options),
      greys_(4, width),
      smoothed_(4, width),
      magnitudes_(3, width),
      across_(2, width),
      down_(2, width),
      steep_(3, width),
      wanted_(1, width),
      starts_(ring_rows(height), width),
      follows_(ring_rows(height), width),
      open_(ring_rows(height), width) {}

void EdgeFinder::begin(const common::GreyView& grey) {
    grey_ = grey;
    int start = options_.start;
    int follow = options_.follow;
    if (options_.normalization != Normalization::kOff) {
        const int largest = largest_magnitude();
        if (options_.normalization == Normalization::kMagnitudes) {
            scaled_ = scaled_magnitudes(largest);
        } else {
            start = static_cast<int>(std::lround(start / scale_for(largest)));
            follow = static_cast<int>(std::lround(follow / scale_for(largest)));
        }
    }
    thresholds_ = {static_cast<std::uint8_t>(candidate_threshold(options_)),
                   static_cast<std::uint8_t>(start), static_cast<std::uint8_t>(follow)};
    if (options_.normalization != Normalization::kMagnitudes) {
        steep_limit_ = steep_limit(thresholds_.candidate);
    }
    marked_ = 0;
    smooth_row(0);
}

void EdgeFinder::advance(std::size_t y) {
    const std::size_t last = height_ - 1;
    for (; traced_ <= std::min(y + kTraceReach, last); ++traced_) {
        for (; searched_ <= std::min(traced_ + kTraceReach, last); ++searched_) {
            find_candidates(searched_);
        }
        trace(traced_);
    }
    std::uint64_t* edges = starts_.row(y);
    for (std::size_t i = 0; i < words(); ++i) edges[i] |= follows_.row(y)[i] & ~open_.row(y)[i];
}

void EdgeFinder::smooth_row(std::size_t y) {
    if (!options_.smoothed || y >= height_) return;
    smooth_gaussian(grey_, static_cast<std::int32_t>(y), smoothed_.row(y));
}

const std::uint8_t* EdgeFinder::source_row(std::size_t y) {
    return options_.smoothed ? smoothed_.row(y) : greys_.row(grey_, y);
}

simd::GradientRow EdgeFinder::gradient_row(std::size_t y) {
    return {magnitudes_.row(y), across_.row(y), down_.row(y)};
}

simd::ThreeRows EdgeFinder::sources_around(std::size_t y) {
    return {source_row(y > 0 ? y - 1 : 0), source_row(y), source_row(std::min(y + 1, height_ - 1))};
}

// When the rows up to y have been smoothed: smooths the next one.
void EdgeFinder::mark_steep(std::size_t y) {
    smooth_row(y + 1);
    if (steep_limit_ < 0) {
        std::fill_n(steep_.row(y), words(), ~std::uint64_t{0});
    } else {
        simd::steep_pixels(sources_around(y), words(), static_cast<std::uint8_t>(steep_limit_),
                           steep_.row(y));
    }
}

// Gradients of row y, as far as candidates there and in the rows beside it are compared with them.
void EdgeFinder::take_gradients(std::size_t y) {
    const std::size_t next = std::min(y + 1, height_ - 1);
    for (; marked_ <= next; ++marked_) mark_steep(marked_);
    const std::uint64_t* rows[3] = {steep_.row(y > 0 ? y - 1 : 0), steep_.row(y), steep_.row(next)};
    const auto steep = [&](std::size_t i) { return rows[0][i] | rows[1][i] | rows[2][i]; };
    std::uint64_t* wanted = wanted_.row(0);
    for (std::size_t i = 0; i < words(); ++i) {
        const std::uint64_t before = i > 0 ? steep(i - 1) >> 63 : 0;
        const std::uint64_t behind = i + 1 < words() ? steep(i + 1) << 63 : 0;
        wanted[i] = steep(i) | before | behind;
    }
    simd::gradient_row(sources_around(y), width_, wanted, gradient_row(y));
}

int EdgeFinder::largest_magnitude() {
    std::uint8_t largest = 0;
    smooth_row(0);
    for (std::size_t y = 0; y < height_; ++y) {
        take_gradients(y);
        const std::uint8_t* row = magnitudes_.row(y);
        for (std::size_t x = 0; x < width_; ++x) largest = std::max(largest, row[x]);
    }
    return largest;
}

void EdgeFinder::find_candidates(std::size_t y) {
    std::uint64_t* follows = follows_.row(y);
    if (y == 0 || y + 1 == height_) {
        std::fill_n(starts_.row(y), words(), 0);
        std::fill_n(follows, words(), 0);
    } else {
        for (; graded_ <= y + 1; ++graded_) {
            take_gradients(graded_);
            if (options_.normalization != Normalization::kMagnitudes) continue;
            std::uint8_t* row = magnitudes_.row(graded_);
            for (std::size_t x = 0; x < width_; ++x) row[x] = scaled_[row[x]];
        }
        const simd::ThreeRows around{magnitudes_.row(y - 1), magnitudes_.row(y),
                                     magnitudes_.row(y + 1)};
        found_candidates_ |= simd::local_maxima_row(around, gradient_row(y), width_, thresholds_,
                                                    steep_.row(y), starts_.row(y), follows);
    }
    std::memcpy(open_.row(y), follows, words() * sizeof(std::uint64_t));
}

}  // namespace binarization

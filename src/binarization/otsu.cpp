#include "binarization/otsu.h"

namespace binarization {
namespace {

double mean(double sum, double count) {
    return count == 0 ? 0 : sum / count;
}

double squared_distance(double a, double b) {
    return (a - b) * (a - b);
}

}  // namespace

Histogram histogram(const common::GreyView& grey) {
    const auto width = static_cast<std::size_t>(grey.width);
    Histogram counts{};
    if (grey.stride == grey.width) {
        simd::add_to_histogram(grey.data, width * static_cast<std::size_t>(grey.height), counts);
    } else {
        for (int y = 0; y < grey.height; ++y) simd::add_to_histogram(grey.row(y), width, counts);
    }
    return counts;
}

std::uint8_t otsu_threshold(const Histogram& histogram) {
    std::uint64_t pixels = 0;
    std::uint64_t sum = 0;
    for (std::size_t level = 0; level < histogram.size(); ++level) {
        pixels += histogram[level];
        sum += level * histogram[level];
    }
    const double all = static_cast<double>(pixels);
    const double page_mean = mean(static_cast<double>(sum), all);

    std::uint64_t dark_pixels = 0;
    std::uint64_t dark_sum = 0;
    double best = 0;
    std::uint8_t threshold = 0;
    for (std::size_t level = 0; level < histogram.size(); ++level) {
        dark_pixels += histogram[level];
        dark_sum += level * histogram[level];
        const double dark = static_cast<double>(dark_pixels);
        const double light = static_cast<double>(pixels - dark_pixels);
        const double dark_mean = mean(static_cast<double>(dark_sum), dark);
        const double light_mean = mean(static_cast<double>(sum - dark_sum), light);
        const double between = dark * squared_distance(dark_mean, page_mean) +
                               light * squared_distance(light_mean, page_mean);
        if (between > best) {
            best = between;
            threshold = static_cast<std::uint8_t>(level);
        }
    }
    return threshold;
}

}  // namespace binarization

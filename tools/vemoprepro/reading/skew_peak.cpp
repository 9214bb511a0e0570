#include "reading/skew_peak.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kSlopes = SlopeFan::kSlopes;
using Alignments = SlopeFan::Alignments;

// Lines of text are twice to nine times as high as what is usual, pictures and noise up to one and
// a half times; and those have broad humps, where lines have sharp peaks unless they are bent.
constexpr double kClearHeight = 1.6;
constexpr double kWidthPerHeight = 60;
constexpr double kWidest = 48;  // 5 degrees
constexpr double kClearOfRivals = 1.5;
constexpr double kLeastSupport = 0.5;
// A band has the peak when it is this much higher there than it usually is.
constexpr double kBandHeight = 1.12;

double median_of(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double median_of(const Alignments& all) {
    return median_of(std::vector<double>(all.begin(), all.end()));
}

int index_of_highest(const Alignments& heights) {
    return static_cast<int>(std::max_element(heights.begin(), heights.end()) - heights.begin());
}

double at(const Alignments& heights, int i) {
    return heights[static_cast<std::size_t>(std::clamp(i, 0, kSlopes - 1))];
}

// The slopes around the peak that are above a half of it. Ends inclusive.
struct Range {
    int first, last;

    int width() const { return last - first + 1; }
};

Range range_above(const Alignments& heights, int peak, double least) {
    Range range{peak, peak};
    while (range.first > 0 && at(heights, range.first - 1) > least) --range.first;
    while (range.last + 1 < kSlopes && at(heights, range.last + 1) > least) ++range.last;
    return range;
}

Range half_of(const Alignments& heights, int peak, double usual) {
    return range_above(heights, peak, (at(heights, peak) + usual) / 2);
}

Alignments averaged(const Alignments& heights, int reach) {
    Alignments result;
    for (int i = 0; i < kSlopes; ++i) {
        double sum = 0, weights = 0;
        for (int k = -reach; k <= reach; ++k) {
            const double weight = reach + 1 - std::abs(k);
            sum += weight * at(heights, i + k);
            weights += weight;
        }
        result[static_cast<std::size_t>(i)] = sum / weights;
    }
    return result;
}

// The highest of the parabola through a peak and its neighbours, from -0.5 to 0.5.
double vertex(double before, double peak, double after) {
    const double bend = before - 2 * peak + after;
    return bend < 0 ? std::clamp((before - after) / bend / 2, -0.5, 0.5) : 0;
}

void judge_shape(JudgedFan& judged) {
    const int peak = index_of_highest(judged.heights);
    const Range half = half_of(judged.heights, peak, 1);
    judged.width = half.width();
    judged.highest = peak - SlopeFan::kSteepest;
    const double past = vertex(at(judged.heights, peak - 1), at(judged.heights, peak),
                               at(judged.heights, peak + 1));
    judged.slope = judged.highest + past;
    judged.height = judged.height_near_peak(past);
    std::vector<double> elsewhere;
    for (int i = 0; i < kSlopes; ++i) {
        if (std::abs(i - peak) > 2 * half.width()) elsewhere.push_back(at(judged.heights, i));
    }
    if (elsewhere.empty()) return;
    const double ground = median_of(elsewhere);
    const double rival = *std::max_element(elsewhere.begin(), elsewhere.end());
    judged.rivals = (judged.height - ground) / std::max(rival - ground, 1e-3);
}

double support_of(const SlopeFan& fan, const JudgedFan& judged) {
    const int peak = index_of_highest(judged.heights);
    const int reach = std::max(4, static_cast<int>(judged.width) / 2);
    double all = 0, supporting = 0;
    for (const Alignments& band : fan.bands) {
        const double usual = median_of(band);
        double there = 0;
        for (int i = peak - reach; i <= peak + reach; ++i) there = std::max(there, at(band, i));
        all += usual;
        if (there > kBandHeight * usual) supporting += usual;
    }
    return all > 0 ? supporting / all : 0;
}

}  // namespace

double JudgedFan::height_near_peak(double from_highest) const {
    const int peak = highest + SlopeFan::kSteepest;
    const double before = at(heights, peak - 1), after = at(heights, peak + 1);
    return at(heights, peak) + from_highest * (after - before) / 2 +
           from_highest * from_highest * (before - 2 * at(heights, peak) + after) / 2;
}

bool JudgedFan::clear() const {
    return height >= kClearHeight + width / kWidthPerHeight && width <= kWidest &&
           rivals >= kClearOfRivals && support >= kLeastSupport;
}

JudgedFan judge(const SlopeFan& fan) {
    JudgedFan judged;
    Alignments sums{};
    for (const Alignments& band : fan.bands) {
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += band[i];
    }
    const double usual = median_of(sums);
    if (!(usual > 0)) return judged;
    for (double& sum : sums) sum /= usual;
    const int reach = half_of(sums, index_of_highest(sums), 1).width() / 4;
    judged.heights = averaged(sums, std::max(0, reach - 1));
    judge_shape(judged);
    judged.support = support_of(fan, judged);
    return judged;
}

}  // namespace tool::reading

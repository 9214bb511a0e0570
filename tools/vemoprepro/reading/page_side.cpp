#include "reading/page_side.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tool::reading {
namespace {

// In pixels of the small page, the step is looked for this far from where it is supposed.
constexpr int kReach = 8;
// The greys of a side are means of so many pixels beside the step.
constexpr int kDepth = 3;
// Corners are rounded or folded: the ends of a side say nothing about it.
constexpr double kEnds = 0.04;
constexpr double kOnLine = 1.0;
// The share of a side that has to be straight and to show a step. Fingers and a corner that is cut
// off take some of it.
constexpr double kMostOfIt = 0.75;
// The least step, and as a share of the light.
constexpr double kLeastStep = 10, kLeastShare = 0.1;
// What lies farther out, as a share of the longer side of the small page.
constexpr double kBandBegin = 0.012, kBandEnd = 0.04;
// Beyond a corner, as a share of the side's length, and the share of its step that is still one.
constexpr double kBeyondBegin = 0.03, kBeyondEnd = 0.13, kStillStep = 0.3;

// 0 outside of the page.
double grey_at(const Page& grey, Spot spot) {
    const int x = static_cast<int>(std::lround(spot.x)), y = static_cast<int>(std::lround(spot.y));
    if (x < 0 || y < 0 || x >= grey.width || y >= grey.height) return 0;
    return grey.row(y)[x];
}

bool is_on(const Page& grey, Spot spot) {
    return spot.x >= -0.5 && spot.y >= -0.5 && spot.x < grey.width - 0.5 &&
           spot.y < grey.height - 0.5;
}

// Outwards, one pixel long.
Spot outward(Spot from, Spot to) {
    const Spot along = to - from;
    return 1 / along.length() * Spot{along.y, -along.x};
}

double mean_of(const Page& grey, Spot spot, Spot direction, double begin, double end) {
    double sum = 0;
    int count = 0;
    for (double distance = begin; distance <= end; ++distance, ++count) {
        sum += grey_at(grey, spot + distance * direction);
    }
    return count == 0 ? 0 : sum / count;
}

struct Step {
    double light, dark;
    double size() const { return light - dark; }
    bool clear() const { return size() >= std::max(kLeastStep, kLeastShare * light); }
};

Step step_at(const Page& grey, Spot spot, Spot out) {
    return {mean_of(grey, spot, -1 * out, 0.5, kDepth), mean_of(grey, spot, out, 0.5, kDepth)};
}

// The place of the largest step across the line at this spot, in pixels outwards.
double best_step(const Page& grey, Spot spot, Spot out) {
    double best = 0, most = -1e9;
    for (int i = -2 * kReach; i <= 2 * kReach; ++i) {
        const double size = step_at(grey, spot + 0.5 * i * out, out).size();
        if (size <= most) continue;
        most = size;
        best = 0.5 * i;
    }
    return best;
}

struct Found {
    double along, out;
};

std::vector<Found> steps_along(const Page& grey, Spot from, Spot to) {
    std::vector<Found> steps;
    const double length = (to - from).length();
    const Spot direction = 1 / length * (to - from), out = outward(from, to);
    for (double along = kEnds * length; along <= (1 - kEnds) * length; along += 2) {
        steps.push_back({along, best_step(grey, from + along * direction, out)});
    }
    return steps;
}

// out = offset + slope * along
struct Line {
    double offset = 0, slope = 0;
    bool holds(const Found& step) const {
        return std::abs(offset + slope * step.along - step.out) <= kOnLine;
    }
};

// The line through two of the steps that most others lie on.
Line most_agreed(const std::vector<Found>& steps) {
    Line best;
    std::ptrdiff_t most = -1;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        for (std::size_t j = i + steps.size() / 4; j < steps.size(); j += 2) {
            const double run = steps[j].along - steps[i].along;
            if (run <= 0) continue;
            const double slope = (steps[j].out - steps[i].out) / run;
            const Line line{steps[i].out - slope * steps[i].along, slope};
            const std::ptrdiff_t count = std::count_if(
                steps.begin(), steps.end(), [&](const Found& step) { return line.holds(step); });
            if (count <= most) continue;
            most = count;
            best = line;
        }
    }
    return best;
}

// The line of least squares through the steps that lie on this one.
Line fitted(const std::vector<Found>& steps, const Line& line) {
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
    for (const Found& step : steps) {
        if (!line.holds(step)) continue;
        ++n;
        x += step.along;
        y += step.out;
        xx += step.along * step.along;
        xy += step.along * step.out;
    }
    const double spread = n * xx - x * x;
    if (spread <= 0) return line;
    const double slope = (n * xy - x * y) / spread;
    return {(y - slope * x) / n, slope};
}

double share_on(const std::vector<Found>& steps, const Line& line) {
    const auto count = std::count_if(steps.begin(), steps.end(),
                                     [&](const Found& step) { return line.holds(step); });
    return static_cast<double>(count) / static_cast<double>(steps.size());
}

// Calls visit(spot) every two pixels along a part of a side.
template <typename Visit>
void walk(const PageSide& side, double begin, double end, Visit visit) {
    const double length = (side.to - side.from).length();
    for (double share = begin; share <= end; share += 2 / length) {
        visit(side.from + share * (side.to - side.from));
    }
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The usual step on a part of a side's line. A corner may be a pixel or two away.
double usual_step(const Page& grey, const PageSide& side, double begin, double end) {
    const Spot out = outward(side.from, side.to);
    std::vector<double> sizes;
    walk(side, begin, end, [&](Spot spot) {
        if (!is_on(grey, spot + kDepth * out) || !is_on(grey, spot - kDepth * out)) return;
        double most = 0;
        for (int i = -2; i <= 2; ++i) {
            most = std::max(most, step_at(grey, spot + i * out, out).size());
        }
        sizes.push_back(most);
    });
    return median(std::move(sizes));
}

}  // namespace

std::optional<PageSide> fit_side(const Page& grey, Spot from, Spot to, std::string& doubt) {
    const double length = (to - from).length();
    if (length < 4 * kReach) {
        doubt = "a side is very short";
        return std::nullopt;
    }
    const std::vector<Found> steps = steps_along(grey, from, to);
    const Line line = fitted(steps, most_agreed(steps));
    if (share_on(steps, line) < kMostOfIt) {
        doubt = "a side is not straight";
        return std::nullopt;
    }
    const Spot out = outward(from, to);
    PageSide side{from + line.offset * out, to + (line.offset + line.slope * length) * out};
    side.step = usual_step(grey, side, kEnds, 1 - kEnds);
    return side;
}

bool is_seen(const Page& grey, const PageSide& side) {
    const Spot out = outward(side.from, side.to);
    const double longer = std::max(grey.width, grey.height);
    int all = 0, seen = 0;
    walk(side, kEnds, 1 - kEnds, [&](Spot spot) {
        ++all;
        if (!is_on(grey, spot + kBandBegin * longer * out)) return;
        const Step near = step_at(grey, spot, out);
        Step wide = near;
        double end = kBandEnd * longer;
        while (!is_on(grey, spot + end * out)) end -= 1;
        wide.dark = mean_of(grey, spot, out, kBandBegin * longer, end);
        if (near.clear() && wide.clear()) ++seen;
    });
    return all > 0 && seen >= kMostOfIt * all;
}

bool goes_on(const Page& grey, const PageSide& side) {
    const double still = std::max(kStillStep * side.step, kLeastStep / 2);
    return usual_step(grey, side, -kBeyondEnd, -kBeyondBegin) >= still ||
           usual_step(grey, side, 1 + kBeyondBegin, 1 + kBeyondEnd) >= still;
}

}  // namespace tool::reading

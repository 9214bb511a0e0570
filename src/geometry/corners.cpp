#include "geometry/corners.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace geometry {
namespace {

// The higher of the two leftmost corners. Of corners with one x the earlier is preferred, except
// that corner 1 is before corner 0; at one height the second of the two is taken.
std::size_t upper_left(const Corners& corners) {
    std::size_t leftmost = 1;
    std::size_t second = 0;
    if (corners[0].x < corners[1].x) std::swap(leftmost, second);
    for (const std::size_t i : {std::size_t{2}, std::size_t{3}}) {
        if (corners[i].x < corners[leftmost].x) {
            second = std::exchange(leftmost, i);
        } else if (corners[i].x < corners[second].x) {
            second = i;
        }
    }
    return corners[leftmost].y < corners[second].y ? leftmost : second;
}

// Seen from the upper left corner the others lie clockwise in the order of their slopes. One that
// is below it and to its left is the lower left one of a slightly turned page, whatever its slope.
double slope(const Point& from, const Point& to) {
    const double down = static_cast<double>(to.y) - from.y;
    const double value = down / (static_cast<double>(to.x) - from.x);
    return down > 0 && value < 0 ? std::numeric_limits<double>::infinity() : value;
}

// The mean of two sides, each cut off.
std::optional<std::int32_t> mean_side(const Corners& corners, std::size_t a, std::size_t b,
                                      std::size_t c, std::size_t d) {
    std::int32_t sum = 0;
    for (const auto& [from, to] : {std::pair{corners[a], corners[b]}, {corners[c], corners[d]}}) {
        const double x = static_cast<double>(from.x) - to.x;
        const double y = static_cast<double>(from.y) - to.y;
        const double square = x * x + y * y;
        if (square > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
        sum += static_cast<std::int32_t>(std::sqrt(square));
    }
    return sum / 2;
}

}  // namespace

Corners ordered(const Corners& corners) {
    const std::size_t first = upper_left(corners);
    Corners others;  // in their order
    std::copy(corners.begin(), corners.begin() + first, others.begin());
    std::copy(corners.begin() + first + 1, corners.end(), others.begin() + first);
    double slopes[3];
    for (std::size_t i = 0; i < 3; ++i) slopes[i] = slope(corners[first], others[i]);

    std::size_t least = 0;
    std::size_t most = 0;
    for (const std::size_t i : {std::size_t{1}, std::size_t{2}}) {
        if (slopes[i] < slopes[least]) {
            least = i;
        } else if (slopes[i] > slopes[most]) {
            most = i;
        }
    }
    // All on one line: they keep their order, so that none is lost.
    if (least == most) most = 2;
    return {corners[first], others[least], others[3 - least - most], others[most]};
}

PageSides sides_between(const Corners& corners) {
    return {mean_side(corners, 0, 3, 1, 2), mean_side(corners, 0, 1, 2, 3)};
}

}  // namespace geometry

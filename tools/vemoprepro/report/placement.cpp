#include "report/placement.h"

#include <cmath>

namespace tool::report {

Placement Placement::then(const Placement& next) const {
    const Point origin = next.of({e, f});
    return {next.a * a + next.c * b,
            next.b * a + next.d * b,
            next.a * c + next.c * d,
            next.b * c + next.d * d,
            origin.x,
            origin.y};
}

Placement Placement::inverse() const {
    const double area = a * d - b * c;
    return {
        d / area, -b / area, -c / area, a / area, (c * f - d * e) / area, (b * e - a * f) / area};
}

Placement scaled_to(Size from, Size to) {
    Placement placement;
    placement.a = static_cast<double>(to.width) / from.width;
    placement.d = static_cast<double>(to.height) / from.height;
    return placement;
}

Placement turned(double degrees_clockwise, Size from, Size to) {
    constexpr double kRadiansPerDegree = 0.017453292519943295;
    const double cosine = std::cos(degrees_clockwise * kRadiansPerDegree);
    const double sine = std::sin(degrees_clockwise * kRadiansPerDegree);
    const double x = from.width / 2.0, y = from.height / 2.0;
    return {cosine,
            sine,
            -sine,
            cosine,
            to.width / 2.0 - cosine * x + sine * y,
            to.height / 2.0 - sine * x - cosine * y};
}

}  // namespace tool::report

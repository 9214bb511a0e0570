// Where a picture lies: a map of its pixels into those of another one.
//
// Use: a page's Placement starts as it is; then() adds what a step does to it.
#pragma once

namespace tool::report {

struct Point {
    double x, y;
};

// (x, y) -> (a x + c y + e, b x + d y + f), the order of CSS and SVG.
struct Placement {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Point of(Point point) const {
        return {a * point.x + c * point.y + e, b * point.x + d * point.y + f};
    }
    Placement then(const Placement& next) const;
    // Of a map that is no more than a turn with a scale.
    Placement inverse() const;
};

struct Size {
    int width, height;
};

Placement scaled_to(Size from, Size to);
// About the centre of a page, whose place is the centre of the other one.
Placement turned(double degrees_clockwise, Size from, Size to);

}  // namespace tool::report

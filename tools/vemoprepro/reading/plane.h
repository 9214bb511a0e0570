// Points and lines on a picture, finer than its pixels.
#pragma once

#include <array>
#include <cmath>
#include <optional>

namespace tool::reading {

struct Spot {
    double x = 0, y = 0;

    friend Spot operator+(Spot a, Spot b) { return {a.x + b.x, a.y + b.y}; }
    friend Spot operator-(Spot a, Spot b) { return {a.x - b.x, a.y - b.y}; }
    friend Spot operator*(double factor, Spot a) { return {factor * a.x, factor * a.y}; }
    double length() const { return std::hypot(x, y); }
};

inline double dot(Spot a, Spot b) {
    return a.x * b.x + a.y * b.y;
}

// Positive when b lies clockwise of a, as y grows downwards.
inline double cross(Spot a, Spot b) {
    return a.x * b.y - a.y * b.x;
}

// Clockwise.
using Quadrilateral = std::array<Spot, 4>;

inline double area_of(const Quadrilateral& corners) {
    return (cross(corners[2] - corners[0], corners[3] - corners[1])) / 2;
}

// Where the line from a to b meets the line from c to d; none when they are nearly parallel.
inline std::optional<Spot> meeting(Spot a, Spot b, Spot c, Spot d) {
    const double turn = cross(b - a, d - c);
    if (std::abs(turn) < 1e-6 * (b - a).length() * (d - c).length()) return std::nullopt;
    return a + cross(c - a, d - c) / turn * (b - a);
}

}  // namespace tool::reading

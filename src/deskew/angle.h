// The angle of a skew, for people: what the traces of the estimators print.
#pragma once

#include "deskew/skew_unit.h"

namespace deskew {

// Degrees of a skew, positive when text lines rise to the right. The arctangent is the rational
// approximation x / (1 + 0.28 x^2) and its complement beyond 45 degrees, within 0.005 radians of
// the true one (Rajan et al., "Efficient approximations for the arctangent function", 2006, discuss
// the family). The constants are those of the trace format: a better pi would change printed
// digits.
inline double skew_degrees(int yskew) {
    constexpr double kPi = 3.14159265;
    constexpr double kHalfPi = 1.570796325;
    constexpr double kBend = 0.28;

    const double x = static_cast<double>(yskew) / kSkewScale;
    double angle;  // radians
    if (x > -1.0 && x < 1.0) {
        angle = x / (1.0 + kBend * (x * x));
    } else {
        angle = kHalfPi - x / (x * x + kBend);
        if (yskew < 0) angle -= kPi;
    }
    return 180.0 * angle / kPi;
}

}  // namespace deskew

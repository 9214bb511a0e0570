// The angle of a skew by a rational function, so that it is the same on every machine and with
// every mathematics library.
#pragma once

#include "deskew/skew_unit.h"

namespace deskew {

constexpr double kArctangentBend = 0.28;

// The arctangent of x in radians, for |x| < 1: off by less than 0.005, and by less than 4e-4 over
// the skews that are accepted (|x| <= 0.1875). Rajan et al., "Efficient approximations for the
// arctangent function", 2006, discuss the family.
constexpr double arctangent(double x) {
    return x / (1.0 + kArctangentBend * (x * x));
}

// Degrees of a skew for people to read, as the traces of the estimators print them: positive when
// text lines rise to the right. The constants are those of the trace format: a better pi would
// change printed digits.
inline double skew_degrees(int yskew) {
    constexpr double kPi = 3.14159265;
    constexpr double kHalfPi = 1.570796325;

    const double x = static_cast<double>(yskew) / kSkewScale;
    double angle;  // radians
    if (x > -1.0 && x < 1.0) {
        angle = arctangent(x);
    } else {
        angle = kHalfPi - x / (x * x + kArctangentBend);
        if (yskew < 0) angle -= kPi;
    }
    return 180.0 * angle / kPi;
}

}  // namespace deskew

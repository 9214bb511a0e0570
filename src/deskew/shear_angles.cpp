// Tangent and sine of the angle of a skew by polynomials, so that the factors are the same on every
// machine and with every mathematics library. Over the accepted skews they are good to eight
// digits. Products and sums are evaluated in the order that the parentheses show.
#include "deskew/shear_angles.h"

#include "deskew/angle.h"

namespace deskew {
namespace {

// Beyond this the error of two shears would show as uneven stems.
constexpr int kMaxTwoShearSkew = 25;

double tangent(double a) {
    const double a2 = a * a;
    return a * (1 + a2 * (0.3333314036 +
                          a2 * (0.1333923995 +
                                a2 * (0.0533740603 +
                                      a2 * (0.0245650893 +
                                            a2 * (0.002900525 + a2 * 0.00951680913567543))))));
}

double sine(double angle) {
    const double square = angle * angle;
    const double cube = square * angle;
    return angle +
           cube * (-0.16666666640797048 + 0.008333329304842563 * square +
                   square * square * (-0.00019839312269456257 + 2.718121627547973e-6 * square));
}

}  // namespace

ShearPlan shear_plan(int yskew) {
    const double angle = arctangent(static_cast<double>(yskew) / kSkewScale);
    const int shears = std::abs(yskew) > kMaxTwoShearSkew ? 3 : 2;
    return {.shears = shears,
            .row_factor = -tangent(shears == 3 ? angle / 2 : angle),
            .column_factor = sine(angle)};
}

ShearedSize sheared_size(const ShearPlan& plan, std::int64_t height, std::int64_t width) {
    ShearedSize size;
    size.first_width = width + LineShifts(height, plan.row_factor).growth();
    size.height = height + LineShifts(size.first_width, plan.column_factor).growth();
    size.width = size.first_width;
    if (plan.shears == 3) size.width += LineShifts(size.height, plan.row_factor).growth();
    return size;
}

}  // namespace deskew

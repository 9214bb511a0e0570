#include "steps/skew.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace tool::steps {
namespace {

constexpr double kDegreesPerRadian = 57.29577951308232;

}  // namespace

double Skew::degrees() const {
    return std::atan2(numerator, denominator) * kDegreesPerRadian;
}

bool Skew::in_range() const {
    const std::int64_t drift = std::abs(std::int64_t{numerator});
    return denominator >= 1 && drift * kScale <= std::int64_t{denominator} * kLargest;
}

std::optional<Skew> skew_of_degrees(double degrees) {
    constexpr double kSteepest = 89;  // steeper ones, and what is no number, have no tangent
    if (!(std::abs(degrees) < kSteepest)) return std::nullopt;
    const double units = std::round(std::tan(degrees / kDegreesPerRadian) * Skew::kScale);
    if (std::abs(units) > Skew::kLargest) return std::nullopt;
    return Skew{static_cast<int>(units), Skew::kScale};
}

}  // namespace tool::steps

// The skew of a page, in the numbers that the library takes.
#pragma once

#include <optional>

namespace tool::steps {

// Drift of `numerator` pixels over `denominator` pixels of width, positive when text rises to the
// right.
struct Skew {
    static constexpr int kScale = 512;
    static constexpr int kLargest = 96;  // of kScale: 10.6 degrees

    int numerator = 0;
    int denominator = kScale;

    double degrees() const;
    // Whether the library takes it.
    bool in_range() const;
};

// The nearest skew to an angle; none beyond the largest.
std::optional<Skew> skew_of_degrees(double degrees);

}  // namespace tool::steps

// The shears that turn a page by a small skew: how many, how steep, how far each line moves and how
// large the page becomes. Every deskew rotation that must agree with another pixel for pixel takes
// its numbers from here.
//
// Use: plan = shear_plan(yskew); size = sheared_size(plan, height, width); LineShifts rows(height,
// plan.row_factor) tells how far right row y moves, LineShifts columns(size.first_width,
// plan.column_factor) how far down column x moves, and with three shears LineShifts(size.height,
// plan.row_factor) how far right the rows move at last.
//
// Keep true: |yskew| <= kMaxSkew; no contraction of floating-point products and sums.
#pragma once

#include <cmath>
#include <cstdint>

namespace deskew {

// A rotation by an angle is a shear of the rows, a shear of the columns and a shear of the rows,
// with factors -tan(angle / 2), sin(angle), -tan(angle / 2) (Paeth 1986). Up to 25 skew units two
// shears with -tan(angle) and sin(angle) come close enough.
struct ShearPlan {
    int shears = 2;              // 2 or 3
    double row_factor = 0.0;     // pixels right per row
    double column_factor = 0.0;  // pixels down per column
};

ShearPlan shear_plan(int yskew);

// Whole pixels by which each of `lines` parallel lines moves under a shear; the least shift is 0.
// Line i is measured at its middle, i + 0.5.
class LineShifts {
  public:
    LineShifts(std::int64_t lines, double factor)
        : factor_(factor), growth_(std::abs(floored(displacement(lines - 1)))) {
        if (factor < 0) base_ = growth_;
    }

    // Where the line really moves, before the base is added; in pixels.
    double displacement(std::int64_t line) const {
        return (static_cast<double>(line) + 0.5) * factor_;
    }
    std::int64_t operator()(std::int64_t line) const { return floored(displacement(line)) + base_; }

    std::int64_t growth() const { return growth_; }  // pixels that the lines become longer

  private:
    static std::int64_t floored(double pixels) {
        return static_cast<std::int64_t>(std::floor(pixels));
    }

    double factor_;
    std::int64_t growth_;
    std::int64_t base_ = 0;  // makes every shift at least 0
};

struct ShearedSize {
    std::int64_t first_width = 0;  // pixels, after the first shear of the rows
    std::int64_t height = 0;       // rows of the rotated page
    std::int64_t width = 0;        // pixels of the rotated page
};

ShearedSize sheared_size(const ShearPlan& plan, std::int64_t height, std::int64_t width);

}  // namespace deskew

#include "geometry/perspective.h"

#include <cmath>
#include <cstring>

#include "common/luma_chroma.h"
#include "geometry/sampling.h"

namespace geometry {
namespace {

using common::Colour;
using common::LumaChroma;
using common::to_colour_directly;
using common::to_luma_chroma;

// Three linear forms of the place in the unit square: x / w and y / w is the place in the source.
struct Forms {
    double x, y, w;

    Forms& operator+=(const Forms& step) {
        x += step.x;
        y += step.y;
        w += step.w;
        return *this;
    }
};

struct Mapping {
    Forms to_right;  // what crossing the unit square adds
    Forms downwards;
    Forms upper_left;
};

Mapping mapping_to(const Corners& corners) {
    double x[4];
    double y[4];
    for (std::size_t i = 0; i < 4; ++i) {
        x[i] = corners[i].x;
        y[i] = corners[i].y;
    }
    const Forms upper_left{x[0], y[0], 1};
    const double sum_x = x[0] - x[1] + x[2] - x[3];
    const double sum_y = y[0] - y[1] + y[2] - y[3];
    if (sum_x == 0 && sum_y == 0) {  // a parallelogram
        return {{x[1] - x[0], y[1] - y[0], 0}, {x[2] - x[1], y[2] - y[1], 0}, upper_left};
    }
    const double dx1 = x[1] - x[2];
    const double dx2 = x[3] - x[2];
    const double dy1 = y[1] - y[2];
    const double dy2 = y[3] - y[2];
    const double denominator = dx1 * dy2 - dx2 * dy1;
    const double right = (sum_x * dy2 - dx2 * sum_y) / denominator;
    const double down = (dx1 * sum_y - sum_x * dy1) / denominator;
    return {{x[1] - x[0] + right * x[1], y[1] - y[0] + right * y[1], right},
            {x[3] - x[0] + down * x[3], y[3] - y[0] + down * y[3], down},
            upper_left};
}

Forms divided(const Forms& forms, std::int32_t by) {
    return {forms.x / by, forms.y / by, forms.w / by};
}

// The pixel at a place that may be outside, or no number.
std::int32_t nearest(double place, std::int32_t size) {
    if (!(place > 0)) return 0;
    return place < size ? static_cast<std::int32_t>(place) : size - 1;
}

// Values of one of the three bytes of the pixels around a place.
class Channel {
  public:
    Channel(const std::uint8_t* pixel, std::ptrdiff_t stride) : pixel_(pixel), stride_(stride) {}

    std::uint8_t cubic(double x, double y) const {
        return geometry::cubic(cubic_in_row(-1, x), cubic_in_row(0, x), cubic_in_row(1, x),
                               cubic_in_row(2, x), y);
    }
    std::uint8_t linear(double x, double y) const {
        return geometry::linear(linear_in_row(0, x), linear_in_row(1, x), y);
    }

  private:
    std::uint8_t cubic_in_row(std::ptrdiff_t row, double x) const {
        const std::uint8_t* const at = pixel_ + row * stride_;
        return geometry::cubic(at[-3], at[0], at[3], at[6], x);
    }
    std::uint8_t linear_in_row(std::ptrdiff_t row, double x) const {
        const std::uint8_t* const at = pixel_ + row * stride_;
        return geometry::linear(at[0], at[3], x);
    }

    const std::uint8_t* pixel_;
    std::ptrdiff_t stride_;
};

LumaChroma sample(common::ColourView src, double x, double y) {
    const double column = std::floor(x);
    const double row = std::floor(y);
    // Not true of places that are no numbers.
    const bool inside = column >= 1 && column + 2 < src.width && row >= 1 && row + 2 < src.height;
    const std::uint8_t* const pixel =
        src.row(nearest(row, src.height)) + std::ptrdiff_t{3} * nearest(column, src.width);
    if (!inside) return {pixel[0], pixel[1], pixel[2]};
    return {Channel(pixel, src.stride).cubic(x - column, y - row),
            Channel(pixel + 1, src.stride).linear(x - column, y - row),
            Channel(pixel + 2, src.stride).linear(x - column, y - row)};
}

}  // namespace

void to_luma_chroma(common::MutableColourView image) {
    for (std::int32_t y = 0; y < image.height; ++y) {
        std::uint8_t* pixel = image.row(y);
        for (std::int32_t x = 0; x < image.width; ++x, pixel += 3) {
            const LumaChroma values = to_luma_chroma(pixel[0], pixel[1], pixel[2]);
            pixel[0] = values.y;
            pixel[1] = values.cr;
            pixel[2] = values.cb;
        }
    }
}

void rectify(common::ColourView src, const Corners& corners, common::MutableColourView dst) {
    const Mapping mapping = mapping_to(corners);
    const Forms pixel_step = divided(mapping.to_right, dst.width);
    const Forms row_step = divided(mapping.downwards, dst.height);
    Forms row_start = mapping.upper_left;
    for (std::int32_t v = 0; v < dst.height; ++v, row_start += row_step) {
        Forms at = row_start;
        std::uint8_t* pixel = dst.row(v);
        for (std::int32_t u = 0; u < dst.width; ++u, pixel += 3, at += pixel_step) {
            const Colour colour = to_colour_directly(sample(src, at.x / at.w, at.y / at.w));
            pixel[0] = colour.red;
            pixel[1] = colour.green;
            pixel[2] = colour.blue;
        }
    }
}

}  // namespace geometry

#include "geometry/perspective.h"

#include <algorithm>

#include "common/luma_chroma.h"
#include "simd/pixels/sample_places.h"

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

// A piece of a row of the destination, and what it is made of.
class Piece {
  public:
    static constexpr std::int32_t kPixels = 64;

    // Walks on to the place behind the last pixel. The sums are part of the result: they are made
    // pixel by pixel.
    void walk(Forms& at, const Forms& step, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i, at += step) {
            x_[i] = at.x;
            y_[i] = at.y;
            w_[i] = at.w;
        }
    }

    void sample(common::ColourView src, std::size_t pixels) {
        simd::sample_places({src.data, src.stride, src.height, src.width}, {x_, y_, w_}, pixels,
                            {luma_, red_, blue_});
    }

    void store(std::uint8_t* out, std::size_t pixels) const {
        for (std::size_t i = 0; i < pixels; ++i, out += 3) {
            const Colour colour = to_colour_directly({luma_[i], red_[i], blue_[i]});
            out[0] = colour.red;
            out[1] = colour.green;
            out[2] = colour.blue;
        }
    }

  private:
    double x_[kPixels], y_[kPixels], w_[kPixels];
    std::uint8_t luma_[kPixels], red_[kPixels], blue_[kPixels];
};

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
    Piece piece;
    for (std::int32_t v = 0; v < dst.height; ++v, row_start += row_step) {
        Forms at = row_start;
        // In 64 bits: the last step may go beyond the widest row.
        for (std::int64_t u = 0; u < dst.width; u += Piece::kPixels) {
            const auto pixels =
                static_cast<std::size_t>(std::min<std::int64_t>(Piece::kPixels, dst.width - u));
            piece.walk(at, pixel_step, pixels);
            piece.sample(src, pixels);
            piece.store(dst.row(v) + 3 * u, pixels);
        }
    }
}

}  // namespace geometry

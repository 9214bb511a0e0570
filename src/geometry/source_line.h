// Where the rows of a turned image lie in its source: a line each, and of it the pixels that have
// four neighbours there.
//
// Places are fixed-point numbers with 14 fraction bits, in 64 bits: with sides up to 32,767 pixels
// they fit in 32, and larger images are not wrapped around.
#pragma once

#include <algorithm>
#include <cstdint>

namespace geometry {

constexpr int kFractionBits = 14;
constexpr std::int64_t kOnePixel = std::int64_t{1} << kFractionBits;
constexpr std::int64_t kHalfStep = 512;  // half of a sixteenth of a pixel: places are rounded

struct SourceLine {
    std::int64_t first, end;  // the destination pixels that are inside; first == end for none
    std::int64_t x, y;        // the place of the first one, at least 0
};

class SourceLines {
  public:
    struct Size {
        std::int64_t height, width;
    };

    // cosine, sine: of the angle, kOnePixel is 1. The destination has sides of at least 1.
    SourceLines(Size src, Size dst, std::int64_t cosine, std::int64_t sine)
        : inner_height_((src.height - 1) * kOnePixel),
          inner_width_((src.width - 1) * kOnePixel),
          dst_width_(dst.width),
          cosine_(cosine),
          sine_(sine),
          x_(src.width / 2 * kOnePixel + kHalfStep - dst.width / 2 * cosine -
             dst.height / 2 * sine),
          y_(src.height / 2 * kOnePixel + kHalfStep + dst.width / 2 * sine -
             dst.height / 2 * cosine) {}

    // From pixel to pixel of a row, x gains the cosine and y loses the sine.
    std::int64_t cosine() const { return cosine_; }
    std::int64_t sine() const { return sine_; }

    SourceLine of_row(std::int64_t v) const {
        const std::int64_t x = x_ + v * sine_;
        const std::int64_t y = y_ + v * cosine_;
        SourceLine line{0, dst_width_, 0, 0};
        cut(line, x, cosine_, inner_width_);
        cut(line, y, -sine_, inner_height_);
        line.x = x + line.first * cosine_;
        line.y = y - line.first * sine_;
        return line;
    }

  private:
    // Rounds up; the divisor is positive.
    static std::int64_t ceil_div(std::int64_t dividend, std::int64_t divisor) {
        return dividend / divisor + (dividend % divisor > 0 ? 1 : 0);
    }

    // Leaves the pixels u of the line for which 0 <= start + u * step < limit.
    static void cut(SourceLine& line, std::int64_t start, std::int64_t step, std::int64_t limit) {
        if (step < 0) {
            start = limit - 1 - start;
            step = -step;
        }
        if (step == 0) {
            if (start < 0 || start >= limit) line.end = line.first;
            return;
        }
        if (limit <= 0) {
            line.end = line.first;
            return;
        }
        line.first = std::max(line.first, std::min(line.end, ceil_div(-start, step)));
        line.end = std::max(line.first, std::min(line.end, ceil_div(limit - start, step)));
    }

    std::int64_t inner_height_, inner_width_;  // beyond it a place has no lower or right neighbour
    std::int64_t dst_width_;
    std::int64_t cosine_, sine_;
    std::int64_t x_, y_;  // of the first pixel of the first row
};

}  // namespace geometry

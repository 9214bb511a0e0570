// Two or three shears, each by fractions of a pixel: a pixel gives the fraction of its line to the
// pixel behind it, so that edges stay smooth (Paeth 1986). Products are taken as they are, where a
// table of all of them would give the same.
#include "deskew/colour_rotation.h"

#include <algorithm>
#include <cstring>

#include "deskew/shear_angles.h"
#include "frame/buffer.h"

namespace deskew {
namespace {

constexpr unsigned kSteps = 4;  // of the progress

// How the pixels of a format are sheared.
struct Mixing {
    std::uint32_t unit = 256;       // fractions of a pixel
    bool skips_below_half = false;  // fractions of 113 .. 127 become 112
    bool blends_ends = true;        // of lines, with the background
};

constexpr Mixing mixing_of(int pixel_bytes) {
    switch (pixel_bytes) {
        case 2:
            return {32, false, false};
        case 4:
            return {256, false, true};
        default:
            return {256, true, true};
    }
}

// Where a line goes: by whole pixels, and by a fraction in units of its format.
struct LineMove {
    std::int64_t whole;
    std::uint32_t fraction;
};

LineMove move_of(const LineShifts& shifts, std::int64_t line, const Mixing& mixing) {
    const double pixels = shifts.displacement(line);
    auto fraction = static_cast<std::uint32_t>(mixing.unit * (pixels - std::floor(pixels)));
    if (mixing.skips_below_half && fraction >= 113 && fraction <= 127) fraction = 112;
    return {shifts(line), fraction};
}

// Fields of 5 bits.
constexpr int kFieldShifts[] = {10, 5, 0};

std::uint32_t load_fields(const std::uint8_t* pixel) {
    return static_cast<std::uint32_t>(pixel[0]) << 8 | pixel[1];
}

void store_fields(std::uint32_t fields, std::uint8_t* pixel) {
    pixel[0] = static_cast<std::uint8_t>(fields >> 8);
    pixel[1] = static_cast<std::uint8_t>(fields);
}

// One line of pixels on its way to another place.
class LineShear {
  public:
    LineShear(int pixel_bytes, const std::uint8_t* background)
        : bytes_(static_cast<std::size_t>(pixel_bytes)),
          mixing_(mixing_of(pixel_bytes)),
          background_(background) {}

    const Mixing& mixing() const { return mixing_; }

    // `line` has `count` pixels `step` bytes apart and becomes `moved`, of `length` packed pixels.
    void shear(const std::uint8_t* line, std::size_t step, std::size_t count, LineMove move,
               std::uint8_t* moved, std::size_t length) const {
        const auto first = static_cast<std::size_t>(move.whole);
        for (std::size_t i = 0; i < length; ++i) {
            std::uint8_t* to = moved + i * bytes_;
            if (i + 1 == first) {
                end_pixel(line, to);
            } else if (i == first + count) {
                end_pixel(line + (count - 1) * step, to);
            } else if (i < first || i > first + count) {
                mix(background_, background_, 0, to);
            } else if (i == first) {
                mix(line, line, 0, to);
            } else {
                const std::uint8_t* pixel = line + (i - first) * step;
                mix(pixel, pixel - step, move.fraction, to);
            }
        }
    }

  private:
    // The pixel beside an end of the line.
    void end_pixel(const std::uint8_t* end, std::uint8_t* to) const {
        if (!mixing_.blends_ends) return mix(background_, background_, 0, to);
        for (std::size_t i = 0; i < bytes_; ++i)
            to[i] = static_cast<std::uint8_t>((background_[i] + end[i]) >> 1);
    }

    // The pixel without the fraction that it gives away and with that of the one before it.
    void mix(const std::uint8_t* pixel, const std::uint8_t* before, std::uint32_t fraction,
             std::uint8_t* to) const {
        const auto mixed = [&](std::uint32_t value, std::uint32_t other) {
            return value + fraction * other / mixing_.unit - fraction * value / mixing_.unit;
        };
        if (bytes_ == 2) {
            std::uint32_t fields = 0;
            for (const int shift : kFieldShifts)
                fields |= mixed(load_fields(pixel) >> shift & 31, load_fields(before) >> shift & 31)
                          << shift;
            store_fields(fields, to);
            return;
        }
        for (std::size_t i = 0; i < bytes_; ++i)
            to[i] = static_cast<std::uint8_t>(mixed(pixel[i], before[i]));
    }

    std::size_t bytes_;
    Mixing mixing_;
    const std::uint8_t* background_;
};

// The page in its buffer, whose rows have room for the rotated page.
class Canvas {
  public:
    Canvas(const PixelPage& page, Size room, const std::uint8_t* background)
        : data_(page.data),
          pixel_(static_cast<std::size_t>(page.pixel_bytes)),
          stride_(static_cast<std::size_t>(room.width) * pixel_),
          shear_(page.pixel_bytes, background) {}

    // Moves the rows of the page apart and clears what it does not cover.
    void lay_out(Size page, Size room) {
        const std::size_t used = static_cast<std::size_t>(page.width) * pixel_;
        for (auto y = static_cast<std::size_t>(page.height); y-- > 0;) {
            std::memmove(data_ + y * stride_, data_ + y * used, used);
            std::memset(data_ + y * stride_ + used, 0, stride_ - used);
        }
        std::memset(data_ + static_cast<std::size_t>(page.height) * stride_, 0,
                    static_cast<std::size_t>(room.height - page.height) * stride_);
    }

    // `rows` rows of `width` pixels, which become longer.
    void shear_rows(std::int64_t rows, std::int64_t width, double factor) {
        shear_lines(LineShifts(rows, factor), rows, width, {stride_, pixel_});
    }

    // `columns` columns of `height` pixels.
    void shear_columns(std::int64_t columns, std::int64_t height, double factor) {
        shear_lines(LineShifts(columns, factor), columns, height, {pixel_, stride_});
    }

  private:
    struct Steps {
        std::size_t line;   // bytes from line to line
        std::size_t pixel;  // bytes from pixel to pixel of a line
    };

    void shear_lines(const LineShifts& shifts, std::int64_t lines, std::int64_t count,
                     Steps steps) {
        const auto length = static_cast<std::size_t>(count + shifts.growth());
        frame::Buffer<std::uint8_t> moved(length * pixel_);
        for (std::int64_t i = 0; i < lines; ++i) {
            std::uint8_t* line = data_ + static_cast<std::size_t>(i) * steps.line;
            shear_.shear(line, steps.pixel, static_cast<std::size_t>(count),
                         move_of(shifts, i, shear_.mixing()), moved.data(), length);
            for (std::size_t k = 0; k < length; ++k)
                std::memcpy(line + k * steps.pixel, moved.data() + k * pixel_, pixel_);
        }
    }

    std::uint8_t* data_;
    std::size_t pixel_;   // bytes
    std::size_t stride_;  // bytes
    LineShear shear_;
};

}  // namespace

bool straighten_in_place(const PixelPage& page, Skew skew, Size result,
                         const std::uint8_t* background, const Progress& progress) {
    if (skew.numerator == 0 && page.size == result) {
        progress(0, kSteps);
        progress(kSteps, kSteps);
        return true;
    }
    const ShearPlan plan = shear_plan(skew_units(skew));
    const ShearedSize turned = sheared_size(plan, page.size.height, page.size.width);
    if (result.width < turned.width || result.height < turned.height) return false;
    progress(0, kSteps);
    Canvas canvas(page, result, background);
    canvas.lay_out(page.size, result);
    progress(1, kSteps);
    canvas.shear_rows(page.size.height, page.size.width, plan.row_factor);
    progress(2, kSteps);
    canvas.shear_columns(turned.first_width, page.size.height, plan.column_factor);
    progress(3, kSteps);
    if (plan.shears == 3) canvas.shear_rows(turned.height, turned.first_width, plan.row_factor);
    progress(4, kSteps);
    return true;
}

}  // namespace deskew

// Two or three shears, each by fractions of a pixel: a pixel gives the fraction of its line to the
// pixel behind it, so that edges stay smooth (Paeth 1986). The products of fractions and channels
// are computed, which costs less than a table of them. Every shear is made in place and allocates
// once, before it moves anything.
#include "deskew/colour_rotation.h"

#include <algorithm>
#include <cstring>

#include "deskew/shear_angles.h"
#include "frame/buffer.h"
#include "simd/pixels/shear_pixels.h"

namespace deskew {
namespace {

constexpr int kSteps = 4;  // of the progress

// Fractions of this range become the least of it, for grey pixels and those of three bytes.
constexpr std::uint8_t kLeastBelowHalf = 112;
constexpr std::uint8_t kMostBelowHalf = 127;

// How the pixels of a format are sheared.
struct Format {
    simd::ShearFormat shear;
    double unit = 256;  // fractions of a pixel
    bool has_below_half = true;

    explicit Format(int pixel_bytes) {
        shear.pixel_bytes = static_cast<std::size_t>(pixel_bytes);
        has_below_half = pixel_bytes == 4;
        if (pixel_bytes != 2) return;
        shear.channels = simd::ShearedChannels::kFiveBits;
        unit = 32;
        has_below_half = true;
    }

    std::size_t pixel_bytes() const { return shear.pixel_bytes; }
    bool of_fields() const { return shear.channels == simd::ShearedChannels::kFiveBits; }

    // The fraction of a pixel by which a line moves beyond whole pixels, in units.
    std::uint8_t fraction(double pixels) const {
        const auto parts = static_cast<std::uint8_t>(unit * (pixels - std::floor(pixels)));
        const bool skipped = parts > kLeastBelowHalf && parts <= kMostBelowHalf && !has_below_half;
        return skipped ? kLeastBelowHalf : parts;
    }
};

// The page in its buffer, whose rows have room for the rotated page.
class Canvas {
  public:
    Canvas(const PixelPage& page, Size room, const std::uint8_t* background)
        : data_(page.data),
          format_(page.pixel_bytes),
          pixel_(format_.pixel_bytes()),
          stride_(static_cast<std::size_t>(room.width) * pixel_) {
        std::copy_n(background, pixel_, background_);
        if (format_.of_fields()) background_[0] &= 0x7F;
    }

    // Moves the rows of the page apart and clears what it does not cover.
    void lay_out(Size page, Size room) {
        const std::size_t used = static_cast<std::size_t>(page.width) * pixel_;
        for (std::int64_t y = page.height; y-- > 0;) {
            std::memmove(row(y), data_ + static_cast<std::size_t>(y) * used, used);
            std::memset(row(y) + used, 0, stride_ - used);
        }
        std::memset(row(page.height), 0,
                    static_cast<std::size_t>(room.height - page.height) * stride_);
    }

    // `rows` rows of `width` pixels, which become longer.
    void shear_rows(std::int64_t rows, std::int64_t width, double factor) {
        const LineShifts shifts(rows, factor);
        const auto count = static_cast<std::size_t>(width);
        const std::size_t length = count + static_cast<std::size_t>(shifts.growth());
        frame::Buffer<std::uint8_t> background(length * pixel_);
        fill_background(background.data(), length);
        for (std::int64_t y = 0; y < rows; ++y)
            shear_row(row(y), count, length, static_cast<std::size_t>(shifts(y)),
                      format_.fraction(shifts.displacement(y)), background.data());
    }

    // `columns` columns of `height` pixels.
    void shear_columns(std::int64_t columns, std::int64_t height, double factor) {
        const LineShifts shifts(columns, factor);
        const std::size_t row_bytes = static_cast<std::size_t>(columns) * pixel_;
        constexpr std::size_t kBlock = simd::ColumnMoves::kBlock;
        const std::size_t blocks = (row_bytes + kBlock - 1) / kBlock;
        // The shifts of blocks, and behind them three rows of bytes.
        frame::Buffer<std::int32_t> table(blocks + (3 * row_bytes + 3) / 4);
        std::int32_t* block_shifts = table.data();
        auto* low_shifts = reinterpret_cast<std::uint8_t*>(block_shifts + blocks);
        std::uint8_t* fractions = low_shifts + row_bytes;
        std::uint8_t* background = fractions + row_bytes;
        for (std::size_t x = 0; x < row_bytes; x += pixel_) {
            const auto column = static_cast<std::int64_t>(x / pixel_);
            const std::int64_t shift = shifts(column);
            const std::uint8_t fraction = format_.fraction(shifts.displacement(column));
            for (std::size_t byte = x; byte < x + pixel_; ++byte) {
                low_shifts[byte] = static_cast<std::uint8_t>(shift);
                fractions[byte] = fraction;
                if (byte % kBlock == 0)
                    block_shifts[byte / kBlock] = static_cast<std::int32_t>(shift);
            }
        }
        fill_background(background, static_cast<std::size_t>(columns));
        const auto rows = static_cast<std::size_t>(height);
        simd::shear_columns(format_.shear.channels,
                            {data_, static_cast<std::ptrdiff_t>(stride_), row_bytes, rows,
                             rows + static_cast<std::size_t>(shifts.growth())},
                            {block_shifts, low_shifts, fractions, background});
    }

  private:
    std::uint8_t* row(std::int64_t y) const {
        return data_ + static_cast<std::size_t>(y) * stride_;
    }

    void fill_background(std::uint8_t* pixels, std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(pixels + i * pixel_, background_, pixel_);
    }

    // A row of `count` pixels becomes one of `length`.
    void shear_row(std::uint8_t* row, std::size_t count, std::size_t length, std::size_t shift,
                   std::uint8_t fraction, const std::uint8_t* background) const {
        std::uint8_t first[4];
        std::uint8_t last[4];
        std::memcpy(first, row, pixel_);
        std::memcpy(last, row + (count - 1) * pixel_, pixel_);
        simd::shear_row(format_.shear, row, count, shift, fraction);
        std::memcpy(row, background, shift * pixel_);
        if (shift > 0) blend_end(first, row + (shift - 1) * pixel_);
        const std::size_t behind = shift + count;
        std::memcpy(row + behind * pixel_, background, (length - behind) * pixel_);
        if (behind < length) blend_end(last, row + behind * pixel_);
    }

    // Makes the background beside an end of a line the mean of both.
    void blend_end(const std::uint8_t* end, std::uint8_t* beside) const {
        if (format_.of_fields()) return;
        for (std::size_t i = 0; i < pixel_; ++i)
            beside[i] = static_cast<std::uint8_t>((beside[i] + end[i]) >> 1);
    }

    std::uint8_t* data_;
    Format format_;
    std::size_t pixel_;   // bytes
    std::size_t stride_;  // bytes
    std::uint8_t background_[4];
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

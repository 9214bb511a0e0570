// The rotation of a bitonal page that lines up with the grey and colour deskew rotation: two or
// three shears by whole pixels, with the factors and shifts that those rotations use. The first two
// shears are made strip by strip, the third row by row.
#include <cstring>

#include "common/basic_image.h"
#include "deskew/bitonal_shears.h"
#include "deskew/shear_angles.h"
#include "deskew/strip_shear.h"

namespace deskew {
namespace {

constexpr int kResolution = 300;  // dots per inch

frame::Buffer<std::int64_t> all_shifts(std::int64_t lines, double factor) {
    const LineShifts shift(lines, factor);
    frame::Buffer<std::int64_t> shifts(static_cast<std::size_t>(lines));
    for (std::int64_t line = 0; line < lines; ++line) {
        shifts[static_cast<std::size_t>(line)] = shift(line);
    }
    return shifts;
}

void shear_twice(common::BitonalView source, const ShearPlan& plan,
                 common::MutableBitonalView result) {
    const auto row_shifts = all_shifts(source.height, plan.row_factor);
    const auto steps = column_steps(result.width, 1, LineShifts(result.width, plan.column_factor));
    StripShear shear(source, row_shifts, steps, result);
    for (std::int64_t strip = 0; strip < shear.strips(); ++strip) shear.run(strip);
}

}  // namespace

void aligned_shear(common::BitonalView source, int yskew, std::uint8_t* block,
                   const Progress& progress) {
    const ShearPlan plan = shear_plan(yskew);
    const ShearedSize size = sheared_size(plan, source.height, source.width);
    const auto height = static_cast<std::int32_t>(size.height);
    const auto first_width = static_cast<std::int32_t>(size.first_width);
    common::BasicImage image(height, static_cast<std::int32_t>(size.width), common::kBitonal,
                             kResolution, kResolution);
    const common::MutableBitonalView result{image.getData(), height, image.getWidth(),
                                            image.getBytesPerLine()};
    progress(0, 3);
    if (plan.shears == 2) {
        shear_twice(source, plan, result);
        progress(1, 3);
        progress(2, 3);
    } else {
        const std::int64_t stride = common::bitonal_stride(first_width);
        frame::Buffer<std::uint8_t> upright(static_cast<std::size_t>(height) *
                                            static_cast<std::size_t>(stride));
        const common::MutableBitonalView twice{upright.data(), height, first_width, stride};
        shear_twice(source, plan, twice);
        progress(1, 3);
        progress(2, 3);
        shear_rows(twice, all_shifts(height, plan.row_factor), result);
    }
    std::memcpy(block, image.getData(), result.size());
    progress(3, 3);
}

}  // namespace deskew

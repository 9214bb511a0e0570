#include "geometry/colour_scaling.h"

#include "frame/buffer.h"
#include "geometry/plane_scaling.h"
#include "simd/pixels/luma_chroma_rows.h"

namespace geometry {
namespace {

using common::ColourView;
using common::MutableColourView;
using common::MutableGreyView;

// Luma, red difference and blue difference, in one block of memory.
class Planes {
  public:
    Planes(std::int32_t height, std::int32_t width)
        : height_(height),
          width_(width),
          memory_(3 * static_cast<std::size_t>(height) * static_cast<std::size_t>(width)) {}

    MutableGreyView plane(std::size_t i) {
        return {memory_.data() + i * (memory_.size() / 3), height_, width_, width_};
    }
    simd::LumaChromaRows rows(std::int32_t y) {
        return {plane(0).row(y), plane(1).row(y), plane(2).row(y)};
    }

  private:
    std::int32_t height_;
    std::int32_t width_;
    frame::Buffer<std::uint8_t> memory_;
};

}  // namespace

void scale_colour(const ColourFilters& filters, ColourView src, MutableColourView dst,
                  std::int32_t threads) {
    Planes from(src.height, src.width);
    Planes to(dst.height, dst.width);
    for (std::int32_t y = 0; y < src.height; ++y)
        simd::separate_row(src.row(y), static_cast<std::size_t>(src.width), from.rows(y));
    for (std::size_t i = 0; i < 3; ++i) {
        const Filter filter = i == 0 ? filters.luma : filters.chroma;
        scale_plane(filter, from.plane(i), to.plane(i), filter == Filter::kBicubic ? threads : 1);
    }
    for (std::int32_t y = 0; y < dst.height; ++y)
        simd::join_row(to.rows(y), static_cast<std::size_t>(dst.width), dst.row(y));
}

}  // namespace geometry

#include "geometry/colour_scaling.h"

#include "frame/buffer.h"
#include "geometry/luma_chroma.h"
#include "geometry/plane_scaling.h"

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

  private:
    std::int32_t height_;
    std::int32_t width_;
    frame::Buffer<std::uint8_t> memory_;
};

void separate(ColourView src, Planes& planes) {
    const MutableGreyView luma = planes.plane(0), red = planes.plane(1), blue = planes.plane(2);
    for (std::int32_t y = 0; y < src.height; ++y) {
        const std::uint8_t* pixel = src.row(y);
        for (std::int32_t x = 0; x < src.width; ++x, pixel += 3) {
            const LumaChroma value = to_luma_chroma(pixel[0], pixel[1], pixel[2]);
            luma.row(y)[x] = value.y;
            red.row(y)[x] = value.cr;
            blue.row(y)[x] = value.cb;
        }
    }
}

void join(Planes& planes, MutableColourView dst) {
    const MutableGreyView luma = planes.plane(0), red = planes.plane(1), blue = planes.plane(2);
    for (std::int32_t y = 0; y < dst.height; ++y) {
        std::uint8_t* pixel = dst.row(y);
        for (std::int32_t x = 0; x < dst.width; ++x, pixel += 3) {
            const Colour value = to_colour({luma.row(y)[x], red.row(y)[x], blue.row(y)[x]});
            pixel[0] = value.red;
            pixel[1] = value.green;
            pixel[2] = value.blue;
        }
    }
}

}  // namespace

void scale_colour(const ColourFilters& filters, ColourView src, MutableColourView dst,
                  std::int32_t threads) {
    Planes from(src.height, src.width);
    Planes to(dst.height, dst.width);
    separate(src, from);
    for (std::size_t i = 0; i < 3; ++i) {
        const Filter filter = i == 0 ? filters.luma : filters.chroma;
        scale_plane(filter, from.plane(i), to.plane(i), filter == Filter::kBicubic ? threads : 1);
    }
    join(to, dst);
}

}  // namespace geometry

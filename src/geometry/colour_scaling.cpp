#include "geometry/colour_scaling.h"

#include <algorithm>

#include "frame/buffer.h"
#include "geometry/plane_scaling.h"
#include "simd/pixels/luma_chroma_rows.h"
#include "threads/bands.h"

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

void separate_rows(ColourView src, Planes& planes) {
    for (std::int32_t y = 0; y < src.height; ++y)
        simd::separate_row(src.row(y), static_cast<std::size_t>(src.width), planes.rows(y));
}

void scale_on_threads(const ColourFilters& filters, ColourView src, MutableColourView dst,
                      std::int32_t threads) {
    Planes from(src.height, src.width);
    Planes to(dst.height, dst.width);
    separate_rows(src, from);
    for (std::size_t i = 0; i < 3; ++i) {
        const Filter filter = i == 0 ? filters.luma : filters.chroma;
        scale_plane(filter, from.plane(i), to.plane(i), filter == Filter::kBicubic ? threads : 1);
    }
    for (std::int32_t y = 0; y < dst.height; ++y)
        simd::join_row(to.rows(y), static_cast<std::size_t>(dst.width), dst.row(y));
}

// A strip of rows at a time from the page to the result, through planes of a strip.
void scale_in_strips(const ColourFilters& filters, ColourView src, MutableColourView dst) {
    const StripScaler::Size from{src.height, src.width}, to{dst.height, dst.width};
    StripScaler scalers[] = {
        {filters.luma, from, to}, {filters.chroma, from, to}, {filters.chroma, from, to}};
    Planes strip(WidthScaler::kRows, src.width);
    Planes row(1, dst.width);
    std::int32_t j = 0;
    for (std::int32_t y = 0; y < src.height; y += WidthScaler::kRows) {
        const std::int32_t rows = std::min(WidthScaler::kRows, src.height - y);
        separate_rows({src.row(y), rows, src.width, src.stride}, strip);
        for (std::size_t i = 0; i < 3; ++i) {
            MutableGreyView plane = strip.plane(i);
            plane.height = rows;
            scalers[i].add(plane);
        }
        for (; scalers[0].has_row(); ++j) {
            for (std::size_t i = 0; i < 3; ++i) scalers[i].make_row(row.plane(i).data);
            simd::join_row(row.rows(0), static_cast<std::size_t>(dst.width), dst.row(j));
        }
    }
}

}  // namespace

void scale_colour(const ColourFilters& filters, ColourView src, MutableColourView dst,
                  std::int32_t threads) {
    if (threads::effective_threads(threads, src.height) > 1) {
        scale_on_threads(filters, src, dst, threads);
    } else {
        scale_in_strips(filters, src, dst);
    }
}

}  // namespace geometry

// Columns are scaled as rows of transposed strips: all pixels of a row then have one position and
// one set of weights.
#include "geometry/plane_scaling.h"

#include <algorithm>

#include "frame/buffer.h"
#include "simd/pixels/turn_pixels.h"
#include "threads/worker_pool.h"

namespace geometry {
namespace {

using common::GreyView;
using common::MutableGreyView;
using threads::Band;

// Rows that are scaled in width at a time: a strip and its result stay in the second-level cache.
constexpr std::int32_t kStripRows = 64;

void scale_width(const Axis& axis, GreyView src, const Band& band, MutableGreyView dst) {
    const auto strip = static_cast<std::size_t>(std::min(kStripRows, band.last - band.first));
    const auto stride = static_cast<std::ptrdiff_t>(strip);
    const auto columns = static_cast<std::size_t>(src.width);
    const auto scaled_columns = static_cast<std::size_t>(dst.width);
    frame::Buffer<std::uint8_t> from(strip * columns);
    frame::Buffer<std::uint8_t> to(strip * scaled_columns);
    const auto column = [&](std::int32_t i) { return from.data() + i * stride; };
    for (std::int32_t y = band.first; y < band.last; y += kStripRows) {
        const auto rows = static_cast<std::size_t>(std::min(kStripRows, band.last - y));
        simd::transpose_pixels(src.row(y), src.stride, rows, columns, 1, from.data(), stride);
        for (std::int32_t j = 0; j < dst.width; ++j)
            axis.make(j, column, rows, to.data() + j * stride);
        simd::transpose_pixels(to.data(), stride, scaled_columns, rows, 1, dst.row(y), dst.stride);
    }
}

void scale_height(const Axis& axis, GreyView src, const Band& band, MutableGreyView dst) {
    const auto width = static_cast<std::size_t>(dst.width);
    const auto row = [&](std::int32_t i) { return src.row(i); };
    for (std::int32_t j = band.first; j < band.last; ++j) axis.make(j, row, width, dst.row(j));
}

}  // namespace

void scale_plane(Filter filter, GreyView src, MutableGreyView dst, std::int32_t threads) {
    const std::int32_t n = threads::effective_threads(threads, src.height);
    const Axis columns(filter, src.width, dst.width);
    const Axis rows(filter, src.height, dst.height);
    frame::Buffer<std::uint8_t> memory(static_cast<std::size_t>(src.height) *
                                       static_cast<std::size_t>(dst.width));
    const MutableGreyView widened{memory.data(), src.height, dst.width, dst.width};
    threads::run_in_bands(threads::open_bands(src.height, n), n,
                          [&](const Band& band) { scale_width(columns, src, band, widened); });
    threads::run_in_bands(threads::open_bands(dst.height, n), n,
                          [&](const Band& band) { scale_height(rows, widened, band, dst); });
}

}  // namespace geometry

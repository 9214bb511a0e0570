#include "geometry/plane_scaling.h"

#include <algorithm>
#include <cstring>

#include "simd/pixels/turn_pixels.h"
#include "threads/worker_pool.h"

namespace geometry {
namespace {

using common::GreyView;
using common::MutableGreyView;
using threads::Band;

// The rows from y on, at most WidthScaler::kRows of them and none from `end` on.
template <class View>
View strip_of(View plane, std::int32_t y, std::int32_t end) {
    plane.data = plane.row(y);
    plane.height = std::min(WidthScaler::kRows, end - y);
    return plane;
}

std::size_t strip_bytes(std::int32_t width) {
    return static_cast<std::size_t>(WidthScaler::kRows) * static_cast<std::size_t>(width);
}

void scale_width(const Axis& axis, GreyView src, const Band& band, MutableGreyView dst) {
    WidthScaler scaler(axis, src.width);
    for (std::int32_t y = band.first; y < band.last; y += WidthScaler::kRows)
        scaler.scale(strip_of(src, y, band.last), strip_of(dst, y, band.last));
}

void scale_height(const Axis& axis, GreyView src, const Band& band, MutableGreyView dst) {
    const auto width = static_cast<std::size_t>(dst.width);
    const auto row = [&](std::int32_t i) { return src.row(i); };
    for (std::int32_t j = band.first; j < band.last; ++j) axis.make(j, row, width, dst.row(j));
}

void scale_on_threads(Filter filter, GreyView src, MutableGreyView dst, std::int32_t n) {
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

// Every k-th row and pixel, no row that is left out being read.
void pick(GreyView src, MutableGreyView dst) {
    const std::ptrdiff_t down = src.height / dst.height;
    const std::ptrdiff_t right = src.width / dst.width;
    for (std::ptrdiff_t y = 0; y < dst.height; ++y) {
        const std::uint8_t* const from = src.row(y * down);
        std::uint8_t* const to = dst.row(y);
        if (right == 2) {
            for (std::ptrdiff_t x = 0; x < dst.width; ++x) to[x] = from[2 * x];
        } else {
            for (std::ptrdiff_t x = 0; x < dst.width; ++x) to[x] = from[right * x];
        }
    }
}

bool picks(std::int32_t source, std::int32_t target) {
    return source % target == 0 && ratio_of(source, target) == Ratio::kOther;
}

}  // namespace

WidthScaler::WidthScaler(const Axis& axis, std::int32_t source_width)
    : axis_(axis), from_(strip_bytes(source_width)), to_(strip_bytes(axis.target())) {}

void WidthScaler::scale(GreyView strip, MutableGreyView to) {
    constexpr std::ptrdiff_t kStride = kRows;
    const auto rows = static_cast<std::size_t>(strip.height);
    const auto column = [&](std::int32_t i) { return from_.data() + i * kStride; };
    simd::transpose_pixels(strip.data, strip.stride, rows, static_cast<std::size_t>(strip.width), 1,
                           from_.data(), kStride);
    for (std::int32_t j = 0; j < to.width; ++j)
        axis_.make(j, column, rows, to_.data() + j * kStride);
    simd::transpose_pixels(to_.data(), kStride, static_cast<std::size_t>(to.width), rows, 1,
                           to.data, to.stride);
}

// Rows of the strip before that the target rows not yet made can ask for: from one before their
// position to two behind it.
constexpr std::int32_t kKept = 3;

StripScaler::StripScaler(Filter filter, const Size& source, const Size& target)
    : source_(source),
      target_(target),
      columns_(filter, source.width, target.width),
      rows_(filter, source.height, target.height),
      width_(columns_, source.width),
      memory_(strip_bytes(target.width) + kKept * static_cast<std::size_t>(target.width)) {}

void StripScaler::add(GreyView strip) {
    const std::int32_t kept = std::min(kKept, end_ - first_);
    std::memmove(memory_.data(), row(end_ - kept),
                 static_cast<std::size_t>(kept) * static_cast<std::size_t>(target_.width));
    first_ = end_ - kept;
    width_.scale(strip, {row(end_), strip.height, target_.width, target_.width});
    end_ += strip.height;
}

bool StripScaler::has_row() const {
    return next_ < target_.height && rows_.last(next_) < end_;
}

void StripScaler::make_row(std::uint8_t* out) {
    rows_.make(
        next_++, [&](std::int32_t i) { return row(i); }, static_cast<std::size_t>(target_.width),
        out);
}

void scale_plane(Filter filter, GreyView src, MutableGreyView dst, std::int32_t threads) {
    const std::int32_t n = threads::effective_threads(threads, src.height);
    if (n > 1) return scale_on_threads(filter, src, dst, n);
    if (picks(src.height, dst.height) && picks(src.width, dst.width)) return pick(src, dst);
    StripScaler scaler(filter, {src.height, src.width}, {dst.height, dst.width});
    std::int32_t j = 0;
    for (std::int32_t y = 0; y < src.height; y += WidthScaler::kRows) {
        scaler.add(strip_of(src, y, src.height));
        while (scaler.has_row()) scaler.make_row(dst.row(j++));
    }
}

}  // namespace geometry

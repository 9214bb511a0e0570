// The filter reads unfiltered pixels only. It works in place all the same: the two rows that the
// results would overwrite too early are kept aside, so a page needs no second page.
#include "binarization/smoothing.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/buffer.h"
#include "simd/grey_rows.h"

namespace binarization {
namespace {

constexpr std::uint8_t kContrast = 112;

}  // namespace

void ContrastSearch::visit(const common::GreyView& grey, int y) {
    if (!searching_) return;
    const auto width = static_cast<std::size_t>(grey.width);
    const std::uint8_t* row = grey.row(y);
    found_ = simd::differs_above(row, row + 1, width - 1, kContrast) ||
             (y > 0 && simd::differs_above(grey.row(y - 1), row, width, kContrast));
    searching_ = !found_;
}

int Smoothing::undithering_parameter() const {
    return std::max(1, parameter_ - 4);
}

void Smoothing::apply(const common::MutableGreyView& grey) const {
    if (grey.height < 3 || grey.width < 3) return;
    const auto weight = static_cast<simd::NeighbourWeight>(1024 / (parameter_ + 8));
    const auto width = static_cast<std::size_t>(grey.width);
    frame::Buffer<std::uint8_t> above(width);
    frame::Buffer<std::uint8_t> here(width);
    std::memcpy(above.data(), grey.row(0), width);
    for (int y = 1; y + 1 < grey.height; ++y) {
        std::memcpy(here.data(), grey.row(y), width);
        simd::smooth_row(above.data(), here.data(), grey.row(y + 1), width, weight, grey.row(y));
        std::swap(above, here);
    }
}

}  // namespace binarization

// The filter reads unfiltered pixels only. It works in place all the same: the two rows that the
// results would overwrite too early are kept aside, so a page needs no second page.
#include "grey/smoothing.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace grey {
namespace {

constexpr std::uint8_t kContrast = 112;

// 1 .. 255, from strong to weak.
int weakness(std::uint8_t smooth) {
    return 256 - smooth;
}

}  // namespace

void ContrastSearch::visit(const common::GreyView& grey, int y) {
    if (!searching_) return;
    const auto width = static_cast<std::size_t>(grey.width);
    const std::uint8_t* row = grey.row(y);
    found_ = simd::differs_above(row, row + 1, width - 1, kContrast) ||
             (y > 0 && simd::differs_above(grey.row(y - 1), row, width, kContrast));
    searching_ = !found_;
}

Smoothing::Smoothing(std::uint8_t smooth, std::int32_t width)
    : weight_(static_cast<simd::NeighbourWeight>(1024 / (weakness(smooth) + 8))),
      above_(static_cast<std::size_t>(width)),
      here_(static_cast<std::size_t>(width)) {}

void Smoothing::advance(const common::MutableGreyView& grey, std::int32_t rows) {
    const auto width = static_cast<std::size_t>(grey.width);
    if (width < 3) return;
    for (; filtered_ + 1 < rows; ++filtered_) {
        std::uint8_t* row = grey.row(filtered_);
        std::memcpy(here_.data(), row, width);
        if (filtered_ > 0) {
            simd::smooth_row(above_.data(), here_.data(), grey.row(filtered_ + 1), width, weight_,
                             row);
        }
        std::swap(above_, here_);
    }
}

int undithering_parameter(std::uint8_t smooth) {
    return std::max(1, weakness(smooth) - 4);
}

}  // namespace grey

// A grey source with a fixed threshold and without smoothing needs no grey image: its rows turn
// into bits as they come.
#include "binarization/threshold.h"

#include <cstring>

#include "binarization/otsu.h"
#include "simd/pixels/threshold_bits.h"

namespace binarization {
namespace {

void binarize_row(const std::uint8_t* grey, std::uint8_t threshold,
                  const common::MutableBitonalView& page, int y) {
    simd::pack_below(grey, static_cast<std::size_t>(page.width), threshold, page.row(y));
    const auto written = common::bitonal_bytes(page.width);
    std::memset(page.row(y) + written, 0, static_cast<std::size_t>(page.stride - written));
}

void binarize_as_read(const grey::Source& source, const grey::Region& region,
                      std::uint8_t threshold, const common::MutableBitonalView& page) {
    grey::RowBuffer buffer(source.row_bytes());
    grey::visit_rows(source, region, buffer, [&](int y, const std::uint8_t* row) {
        binarize_row(row + region.x0, threshold, page, y);
    });
}

}  // namespace

void binarize_by_threshold(const common::GreyView& grey, std::uint8_t threshold,
                           const common::MutableBitonalView& page) {
    if (threshold == kAutomaticThreshold) threshold = otsu_threshold(histogram(grey));
    for (int y = 0; y < page.height; ++y) binarize_row(grey.row(y), threshold, page, y);
}

void binarize_by_threshold(const grey::Source& source, const grey::Region& region,
                           const grey::GreyOptions& options, std::uint8_t threshold,
                           const common::MutableBitonalView& page) {
    if (!source.colour() && options.smooth == 0 && threshold != kAutomaticThreshold) {
        return binarize_as_read(source, region, threshold, page);
    }
    const auto pixels = grey::prepare_grey(source, region, options);
    const common::GreyView grey{pixels.data(), region.height(), region.width(), region.width()};
    binarize_by_threshold(grey, threshold, page);
}

}  // namespace binarization

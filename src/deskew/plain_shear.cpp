// The plain shear of a bitonal page: every row right by whole pixels, then every byte column of the
// result down by whole rows. Steep skews go this way; characters come out sheared.
//
// The last source byte's padding takes part, whatever it holds. It reaches at most 7 pixels beyond
// the straight page's width, so at most into the byte after the last 32-bit word, whose columns
// still move within the page's growth. Columns further right hold nothing and are left alone.
#include <algorithm>

#include "deskew/bitonal_shears.h"
#include "deskew/page_shear.h"
#include "deskew/strip_shear.h"

namespace deskew {
namespace {

constexpr std::int64_t kReportInterval = 256;  // rows, then byte columns
constexpr std::int64_t kStripBytes = kStripPixels / 8;

std::int64_t intervals(std::int64_t count) {
    return (count + kReportInterval - 1) / kReportInterval;
}

}  // namespace

void plain_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                 const Progress& progress) {
    const PageShear page(yskew, source.height, source.width);
    const std::int64_t row_intervals = intervals(source.height);
    const std::int64_t total = row_intervals + intervals(destination.stride);

    frame::Buffer<std::int64_t> row_shifts(static_cast<std::size_t>(source.height));
    for (std::int64_t y = 0; y < source.height; ++y) {
        row_shifts[static_cast<std::size_t>(y)] = page.row_shift(y);
    }
    common::BitonalView whole_bytes = source;
    whole_bytes.width = static_cast<std::int32_t>(8 * common::bitonal_bytes(source.width));
    common::MutableBitonalView reached = destination;
    reached.height = static_cast<std::int32_t>(page.size().height);
    reached.width = static_cast<std::int32_t>(std::min<std::int64_t>(
        8 * destination.stride, page.size().width - source.width + whole_bytes.width));
    const auto steps =
        column_steps(reached.width, 8, [&page](std::int64_t x) { return page.column_shift(x); });
    StripShear shear(whole_bytes, row_shifts, steps, reached);

    // A strip shears its rows when its columns are reached, so all the rows' reports come first.
    for (std::int64_t interval = 0; interval <= row_intervals; ++interval) {
        progress(interval, total);
    }
    for (std::int64_t byte = 0; byte < destination.stride; byte += kReportInterval) {
        progress(row_intervals + byte / kReportInterval, total);
        const std::int64_t end = std::min((byte + kReportInterval) / kStripBytes, shear.strips());
        for (std::int64_t strip = byte / kStripBytes; strip < end; ++strip) shear.run(strip);
    }
    progress(total, total);
}

}  // namespace deskew

// Every operation is a sliding window over the zone, then a second one in the other direction:
//
//   dilate        OR of n + 1 pixels before, then of n + 1 behind
//   erode         AND of n + 1 pixels before, then behind; outside the zone is white
//   remove_short  AND of n pixels behind: where runs of n start; OR of n pixels before: those runs
//   fill_gaps     OR of n pixels before, then AND of n behind, which closes gaps below n
#include "ink/run_morphology.h"

#include <algorithm>
#include <cstddef>

#include "ink/column_strips.h"
#include "ink/logged_status.h"
#include "ink/row_batches.h"
#include "ink/sliding_windows.h"

namespace ink {
namespace {

template <CombineStep kFirst, CombineStep kSecond, class Parts>
void slide_over(Parts parts, std::size_t length) {
    parts.for_each([length](std::uint64_t* words, std::size_t count, std::size_t distance) {
        return slide_window<kFirst>(words, count, length, distance) &&
               slide_window<kSecond>(words, count, length, distance);
    });
}

// Windows of n + `own` pixels in one direction, then in the other.
template <CombineStep kFirst, CombineStep kSecond>
void slide_windows(Along along, std::int32_t n, std::size_t own, common::MutableBitonalView page,
                   const common::Rectangle& zone) {
    if (n <= 0 || zone.empty()) return;
    const bool rows = along == Along::kRows;
    // Beyond one more than the zone has pixels along the runs no length makes a difference.
    const std::int32_t extent = rows ? zone.width() : zone.height();
    const auto length =
        static_cast<std::size_t>(std::min<std::int64_t>(n, std::int64_t{extent} + 1)) + own;
    if (rows) {
        slide_over<kFirst, kSecond>(RowBatches(page, zone, length), length);
    } else {
        slide_over<kFirst, kSecond>(ColumnStrips(page, zone, length), length);
    }
}

template <decltype(dilate) kOperation, Along kAlong>
std::int32_t logged(diag::LoggerSlot logger, std::int32_t n, std::uint8_t* image,
                    std::int32_t stride, std::int32_t x0, std::int32_t x1, std::int32_t y0,
                    std::int32_t y1) {
    return logged_status(logger, diag::kListGrowthCode, [&] {
        kOperation(kAlong, n, {image, y1, x1, stride}, {x0, x1, y0, y1});
    });
}

}  // namespace

// A gap, like a run, is at least a pixel long: none is shorter than 1.
void fill_gaps(Along along, std::int32_t n, common::MutableBitonalView page,
               const common::Rectangle& zone) {
    if (n == 1) return;
    slide_windows<simd::or_preceding, simd::and_following>(along, n, 0, page, zone);
}

void remove_short(Along along, std::int32_t n, common::MutableBitonalView page,
                  const common::Rectangle& zone) {
    if (n == 1) return;
    slide_windows<simd::and_following, simd::or_preceding>(along, n, 0, page, zone);
}

void dilate(Along along, std::int32_t n, common::MutableBitonalView page,
            const common::Rectangle& zone) {
    slide_windows<simd::or_preceding, simd::or_following>(along, n, 1, page, zone);
}

void erode(Along along, std::int32_t n, common::MutableBitonalView page,
           const common::Rectangle& zone) {
    slide_windows<simd::and_preceding, simd::and_following>(along, n, 1, page, zone);
}

constinit LoggedRunOperation* const h_fill_gaps = logged<fill_gaps, Along::kRows>;
constinit LoggedRunOperation* const v_fill_gaps = logged<fill_gaps, Along::kColumns>;
constinit LoggedRunOperation* const h_remove_short = logged<remove_short, Along::kRows>;
constinit LoggedRunOperation* const v_remove_short = logged<remove_short, Along::kColumns>;
constinit LoggedRunOperation* const h_dilate = logged<dilate, Along::kRows>;
constinit LoggedRunOperation* const v_dilate = logged<dilate, Along::kColumns>;
constinit LoggedRunOperation* const h_erode = logged<erode, Along::kRows>;
constinit LoggedRunOperation* const v_erode = logged<erode, Along::kColumns>;

}  // namespace ink

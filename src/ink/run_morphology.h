// Morphology on runs of ink: gaps filled, short runs removed, runs dilated or eroded, along the
// rows or the columns of a zone of a bitonal image.
//
// Use: dilate(Along::kRows, 3, page, common::whole(page));
//
// All operations change the zone's pixels in place; ink is the 1-bits, a run a maximal stretch of
// ink inside the zone. Pixels outside the zone are neither used nor changed, also those that share
// a byte with it. A zone without columns or rows and an `n` below 1 change nothing.
//
// Keep true: the zone lies inside the image.
#pragma once

#include <cstdint>

#include "common/rectangle.h"
#include "common/views.h"
#include "diag/logger.h"

namespace ink {

enum class Along { kRows, kColumns };

// The four throw std::bad_alloc, with the image unchanged.

// Fills the gaps of fewer than `n` pixels between two runs. The white before the first and after
// the last run is no gap.
void fill_gaps(Along along, std::int32_t n, common::MutableBitonalView page,
               const common::Rectangle& zone);

// Clears the runs of fewer than `n` pixels.
void remove_short(Along along, std::int32_t n, common::MutableBitonalView page,
                  const common::Rectangle& zone);

// Widens every run by `n` pixels at both ends, up to the border of the zone.
void dilate(Along along, std::int32_t n, common::MutableBitonalView page,
            const common::Rectangle& zone);

// Takes `n` pixels from both ends of every run of more than 2 n pixels and clears the others.
// Nothing in the library calls it yet.
void erode(Along along, std::int32_t n, common::MutableBitonalView page,
           const common::Rectangle& zone);

// The same along rows (h) and along columns (v) of the zone x0 <= x < x1, y0 <= y < y1, for callers
// with an error log: these return 0, or -1 with the image unchanged and a record in the log when
// there is no memory, and do not throw. Nothing calls them yet: the families have no log.
using LoggedRunOperation = std::int32_t(diag::LoggerSlot logger, std::int32_t n,
                                        std::uint8_t* image, std::int32_t stride, std::int32_t x0,
                                        std::int32_t x1, std::int32_t y0, std::int32_t y1);
extern LoggedRunOperation* const h_fill_gaps;
extern LoggedRunOperation* const v_fill_gaps;
extern LoggedRunOperation* const h_remove_short;
extern LoggedRunOperation* const v_remove_short;
extern LoggedRunOperation* const h_dilate;
extern LoggedRunOperation* const v_dilate;
extern LoggedRunOperation* const h_erode;
extern LoggedRunOperation* const v_erode;

}  // namespace ink

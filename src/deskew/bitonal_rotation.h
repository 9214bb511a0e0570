// The bitonal deskew rotations.
//
// Use: straighten() turns a page by two shears into a destination of at least deskewed_size();
// straighten_aligned() turns it exactly as the grey and colour deskew rotation turns its page, into
// a destination of at least sheared_size(). The forms for complements turn the complemented page.
// Each returns false, with nothing written, when the destination is smaller than that.
//
// Keep true: strides hold their pages' whole 32-bit words; source and destination do not overlap.
// A skew out of range throws std::out_of_range. An allocation that fails is logged before it
// throws; the destination may then be partly written, that of the aligned rotation is as it was.
#pragma once

#include "common/views.h"
#include "deskew/progress.h"
#include "deskew/skew_unit.h"
#include "diag/logger.h"

namespace deskew {

// Writes the whole destination; of equal size and stride, without a skew, it becomes the source to
// the byte. Up to 32 units connected pieces of ink that are small enough keep their shape.
bool straighten(common::BitonalView source, Skew skew, common::MutableBitonalView destination,
                const Progress& progress, diag::LoggerSlot logger = nullptr);

// Writes one block of rows of 4 * ceil(width / 32) bytes, whatever the destination's stride;
// without a skew it copies the page row by row into the whole destination.
bool straighten_aligned(common::BitonalView source, Skew skew,
                        common::MutableBitonalView destination, const Progress& progress,
                        diag::LoggerSlot logger = nullptr);

// The source is complemented in place and comes back whatever ends the call.
bool straighten_complement(common::MutableBitonalView source, Skew skew,
                           common::MutableBitonalView destination, const Progress& progress);
bool straighten_complement_aligned(common::MutableBitonalView source, Skew skew,
                                   common::MutableBitonalView destination,
                                   const Progress& progress);

}  // namespace deskew

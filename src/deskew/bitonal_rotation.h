// The bitonal deskew rotations on views.
//
// Use: straighten() turns a page by two shears into a destination of at least deskewed_size();
// straighten_aligned() turns it exactly as the grey and colour deskew rotation turns its page, into
// a destination of at least sheared_size(). A skew of 0 is copy_page().
//
// Keep true: 0 < |yskew| <= kMaxSkew; the destination is large enough, its stride holds its width
// and at least the straight page's whole 32-bit words, and it does not overlap the source. An
// allocation that fails throws.
#pragma once

#include "common/views.h"
#include "deskew/progress.h"
#include "diag/logger.h"

namespace deskew {

// Steepest skew for which small pieces of ink move as a whole.
constexpr int kMaxComponentSkew = 32;

// Copies the bytes that hold the page, its last byte's padding included, and clears the rest of the
// destination. Reports (0, 1) and (1, 1).
void copy_page(common::BitonalView source, common::MutableBitonalView destination,
               const Progress& progress);

// Writes the whole destination. Up to kMaxComponentSkew connected pieces of ink keep their shape.
void straighten(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                const Progress& progress, diag::LoggerSlot logger = nullptr);

// Both shears on everything, bits of the source's last padding byte included as far as they stay
// inside a destination row. Columns move by whole bytes. Writes the columns that the page can
// reach, in a destination that was cleared. Reports every 256 rows, then every 256 byte columns.
void plain_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                 const Progress& progress);

// Moves each connected piece of ink that is small enough as a whole and shears the others.
// Adds ink to a destination that was cleared. Reports every 256 rows. An allocation that fails is
// logged before it throws.
void component_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                     const Progress& progress, diag::LoggerSlot logger);

// Writes the rotated page as one block of rows of 4 * ceil(width / 32) bytes to block, of the size
// that sheared_size() gives; nothing is written when an allocation fails. Reports (0, 3) .. (3, 3).
void straighten_aligned(common::BitonalView source, int yskew, std::uint8_t* block,
                        const Progress& progress);

}  // namespace deskew

// The three ways in which the bitonal deskew moves a page.
//
// Keep true: 0 < |yskew| <= kMaxSkew; the destination does not overlap the source, is as large as
// the shear says, and its stride holds its width and at least the straight page's whole 32-bit
// words. An allocation that fails throws.
#pragma once

#include "common/views.h"
#include "deskew/progress.h"

namespace deskew {

// Both shears on everything, bits of the source's last padding byte included as far as they stay
// inside a destination row. Columns move by whole bytes. Writes the columns that the page can
// reach, in a destination of at least deskewed_size() that was cleared. Reports every 256 rows,
// then every 256 byte columns.
void plain_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                 const Progress& progress);

// Moves each connected piece of ink that is small enough as a whole and shears the others.
// Adds ink to a destination of at least deskewed_size() that was cleared. Reports every 256 rows.
void component_shear(common::BitonalView source, int yskew, common::MutableBitonalView destination,
                     const Progress& progress);

// Moves every pixel as the grey and colour deskew rotation moves it. Writes the rotated page as one
// block of rows of 4 * ceil(width / 32) bytes, of the size that sheared_size() gives; nothing is
// written when an allocation fails. Reports (0, 3) .. (3, 3).
void aligned_shear(common::BitonalView source, int yskew, std::uint8_t* block,
                   const Progress& progress);

}  // namespace deskew

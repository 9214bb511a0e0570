// The page between four corners of a photograph, resampled to a rectangle by the projective mapping
// that takes the unit square to the corners.
//
// Source of the mapping: P. Heckbert, Fundamentals of texture mapping and image warping, 1989,
// chapter 2.
#pragma once

#include "common/views.h"
#include "geometry/corners.h"

namespace geometry {

// Red, green and blue become luma, red difference and blue difference, in place.
void to_luma_chroma(common::MutableColourView image);

// The source holds luma and chroma, the destination becomes red, green and blue. Places outside of
// the source take the nearest pixel of its border, and places that are no numbers its first one.
//
// Keep true: rows have no padding; the source has pixels.
void rectify(common::ColourView src, const Corners& corners, common::MutableColourView dst);

}  // namespace geometry

// What makes a grey page read better before it is binarized.
//
// Use, in this order: remove_impulses(), even_light(), sharpen(), then ink_contrast() for the
// binarization's settings. Lengths are those of a page at 300 dots per inch and grow with the
// resolution.
//
// Keep true: the page is grey.
#pragma once

#include "page/page.h"

namespace tool {

// Share of the pixels that stand out from their neighbours, black or white.
double impulse_share(const Page& grey);

// Gives such pixels the median of their neighbourhood. Twice removes pairs, too.
void remove_impulses(Page& grey);

// Divides the page by the grey of its paper, so that lit and shaded, clean and stained paper get
// the same grey and ink on them the same contrast. Pictures get paler.
void even_light(Page& grey);

// Undoes some of the blur of a coarse page, where fine strokes are no wider than the blur and much
// paler than the thick ones, so that one threshold for both would take them off.
void sharpen(Page& grey);

// How much darker than the paper the page's strong ink is: nine tenths of the places with ink have
// no more contrast. 0 without ink.
int ink_contrast(const Page& grey);

// The page in black and white, by edges as strong as the page's ink makes them. They are looked for
// on a smoothed copy, against the sensor's noise and a JPEG file's.
Page bits_for_reading(const Page& grey);

// Whether something is printed where `cropped`, of the same size, has been painted white: then it
// was no border but paper in the dark.
bool print_was_painted(const Page& grey, const Page& cropped);

}  // namespace tool

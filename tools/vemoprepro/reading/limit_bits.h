// Grey pages in black and white, by limits that change from block to block.
#pragma once

#include "page/page.h"
#include "reading/block_grid.h"

namespace tool::reading {

// Limits have so many parts of a grey.
constexpr int kLimitParts = 16;

// What is no lighter than the limit at its place is black.
Page bits_within(const Page& grey, const BlockGrid& limits);

// The same for a part of the page, whose left and right edges are multiples of 8, the right one
// unless it is the page's: what is black is added to the bits.
void add_bits_within(const Page& grey, const BlockGrid& limits, const Box& part, Page& bits);

}  // namespace tool::reading

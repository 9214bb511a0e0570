// How dark a pixel must be to be ink, block by block.
#pragma once

#include "reading/block_depths.h"
#include "reading/block_grid.h"

namespace tool::reading {

// The depth from which on pixels of the page are ink, unless their block says otherwise.
double page_threshold(const PageDepths& depths);

// What pale ink asks for: this share of its depth.
constexpr double kPaleShare = 0.45;

// What is no lighter than its block's limit becomes black, in parts of a grey (limit_bits.h).
// threshold: of the page; where all ink around is pale, less is enough, but not less than this
// share of it: lowest. Noisy paper asks for more. Large dark areas without print are black.
BlockGrid limits(const PageDepths& depths, double threshold, double lowest);

}  // namespace tool::reading

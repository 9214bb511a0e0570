// The paper of a grey page.
#pragma once

#include <vector>

#include "reading/block_grid.h"
#include "reading/grey_counts.h"

namespace tool::reading {

struct Paper {
    BlockGrid greys;         // of the paper in every block, also under ink of up to 7 blocks
    std::vector<bool> seen;  // in the same order: it is paper, in the light or in the shade
};

Paper paper_of(const Page& grey);

// The same in two parts, for those who want more of the counts. The counts are of every second row.
GreyCounts count_greys(const Page& grey, const Box& block);
int upper_quartile(const GreyCounts& block);
Paper paper_from(BlockGrid upper_quartiles);

// The grey that a tenth of the blocks reach.
int white_of(const BlockGrid& greys);

}  // namespace tool::reading

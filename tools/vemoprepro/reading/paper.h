// The paper of a grey page.
#pragma once

#include "reading/block_grid.h"

namespace tool::reading {

struct Paper {
    BlockGrid greys;         // of the paper in every block, also under ink of up to 7 blocks
    std::vector<bool> seen;  // in the same order: it is paper, in the light or in the shade
};

Paper paper_of(const Page& grey);

// The grey that a tenth of the blocks reach.
int white_of(const BlockGrid& greys);

}  // namespace tool::reading

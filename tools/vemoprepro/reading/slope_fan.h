// How well the ink of a page lines up along every slope of a fan.
#pragma once

#include <array>

#include "page/page.h"

namespace tool::reading {

struct SlopeFan {
    // Slopes are drifts in pixels over kRun pixels of width, positive for lines that rise to the
    // right. The fan reaches beyond the slopes that pages are straightened by, so that a page
    // beyond them shows as such.
    static constexpr int kRun = 512;
    static constexpr int kSteepest = 112;

    static constexpr int kSlopes = 2 * kSteepest + 1;
    static constexpr int kBands = 4;

    // Of the slopes -kSteepest .. kSteepest, one after the other, in each band of the page from top
    // to bottom; all 0 without ink.
    using Alignments = std::array<double, kSlopes>;
    std::array<Alignments, kBands> bands{};
};

// Along rows of a bitonal page of at least 8 pixels a side; along its columns it is the fan of the
// page turned by a quarter.
SlopeFan fan_along_rows(const Page& ink);

}  // namespace tool::reading

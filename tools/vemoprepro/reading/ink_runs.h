// Connected ink of a bitonal page, taken off it run by run. Touching by a corner connects.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "page/ink.h"
#include "page/page.h"

namespace tool::reading {

// Ink in one row; it cannot be longer.
struct InkRun {
    int y, begin, end;  // columns begin .. end - 1
};

// Erases the run at a pixel of ink and notes it behind the others.
inline void take_run(Page& page, int x, int y, std::vector<InkRun>& runs) {
    unsigned char* row = page.row(y);
    const InkRun run{y, last_pixel(row, x, false) + 1, next_pixel(row, x, page.width, false)};
    erase_inks(row, run.begin, run.end);
    runs.push_back(run);
}

// Erases what is connected with a pixel of ink and notes its runs behind the others.
inline void take_connected(Page& page, int x, int y, std::vector<InkRun>& runs) {
    std::size_t i = runs.size();
    take_run(page, x, y, runs);
    for (; i < runs.size(); ++i) {
        const InkRun run = runs[i];
        const int begin = std::max(0, run.begin - 1), end = std::min(page.width, run.end + 1);
        for (const int j : {run.y - 1, run.y + 1}) {
            if (j < 0 || j >= page.height) continue;
            for (int k = begin; (k = next_pixel(page.row(j), k, end, true)) < end;) {
                take_run(page, k, j, runs);
            }
        }
    }
}

}  // namespace tool::reading

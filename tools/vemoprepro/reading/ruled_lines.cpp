// Lines begin as seeds, long runs of ink in a row. Each is followed from end to end
// (ruled_line.cpp). If it then turns out to be a line (line_evidence.cpp), it is erased but for the
// columns where letters touch it (line_letters.cpp). Seeds of a line that has been followed already
// are passed over. Upright lines are followed on the page without the level ones, which leaves them
// alone where they crossed.
#include "reading/ruled_lines.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "page/ink.h"
#include "page/turn.h"
#include "reading/followed_lines.h"
#include "reading/line_letters.h"
#include "reading/ruled_line.h"

namespace tool::reading {
namespace {

void erase_line(Page& page, const RuledLine& line, const LineScale& scale) {
    const std::vector<bool> kept = find_letters(line, scale);
    for (int x = line.x0; x < line.x1(); ++x) {
        if (kept[static_cast<std::size_t>(x - line.x0)]) continue;
        const LineColumn& column = line.at(x);
        for (int y = column.y0; y < column.y1; ++y) erase_ink(page, x, y);
    }
}

Sureness remove_level_lines(Page& page, const Page& untouched, const LineScale& scale,
                            Sureness least) {
    Sureness least_taken = Sureness::kSure;
    const Page before = copy_of(page);
    FollowedLines followed(page.width, page.height);  // lines and what turned out to be none
    for (const Seed& seed : find_seeds(before, scale)) {
        if (followed.covers(seed.middle(), seed.y)) continue;
        if (lies_in_dark_area(before, seed, scale)) continue;
        const int thickness = thickness_along(before, seed, scale);
        if (thickness > scale.thickest) continue;
        const RuledLine line = follow_line(before, seed, scale, thickness, followed);
        followed.add(line);
        const Sureness sureness = judge(before, untouched, line, scale);
        if (sureness < least) continue;
        erase_line(page, line, scale);
        least_taken = std::min(least_taken, sureness);
    }
    return least_taken;
}

}  // namespace

Sureness remove_ruled_lines(Page& page, const LineScale& scale, LineDirections directions,
                            Sureness least) {
    Sureness least_taken = Sureness::kSure;
    Page untouched = copy_of(page);
    if (directions.level) least_taken = remove_level_lines(page, untouched, scale, least);
    if (directions.upright) {
        turn(page, 1);
        turn(untouched, 1);
        least_taken = std::min(least_taken, remove_level_lines(page, untouched, scale, least));
        turn(page, 3);
    }
    return least_taken;
}

}  // namespace tool::reading

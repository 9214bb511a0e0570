// Lines begin as seeds, long runs of ink in a row. Each is followed from end to end
// (ruled_line.cpp). If it then turns out to be a line (line_evidence.cpp), it is erased but for the
// columns where letters touch it (line_letters.cpp). Seeds of a line that has been followed already
// are passed over. Upright lines are followed on the page without the level ones, which leaves them
// alone where they crossed.
#include "reading/ruled_lines.h"

#include <algorithm>
#include <cstddef>
#include <utility>
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

// The level lines of a page; `untouched` has the lines across as well.
std::vector<RuledLine> find_lines(const Page& page, const Page& untouched, const LineScale& scale,
                                  Sureness least, Sureness& least_found) {
    std::vector<RuledLine> lines;
    FollowedLines followed(page.width, page.height);  // lines and what turned out to be none
    for (const Seed& seed : find_seeds(page, scale)) {
        if (followed.covers(seed.middle(), seed.y)) continue;
        if (lies_in_dark_area(page, seed, scale)) continue;
        const int thickness = thickness_along(page, seed, scale);
        if (thickness > scale.thickest) continue;
        RuledLine line = follow_line(page, seed, scale, thickness, followed);
        followed.add(line);
        const Sureness sureness = judge(page, untouched, line, scale);
        if (sureness < least) continue;
        least_found = std::min(least_found, sureness);
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace

// Most pages have no lines, and are neither copied nor turned back.
Sureness remove_ruled_lines(Page& page, const LineScale& scale, LineDirections directions,
                            Sureness least) {
    Sureness least_taken = Sureness::kSure;
    Page untouched;
    if (directions.level) {
        const auto lines = find_lines(page, page, scale, least, least_taken);
        if (directions.upright && !lines.empty()) untouched = copy_of(page);
        for (const RuledLine& line : lines) erase_line(page, line, scale);
    }
    if (!directions.upright) return least_taken;
    const bool touched = untouched.bytes != nullptr;
    if (touched) turn(untouched, 1);
    Page turned = copy_of(page);
    turn(turned, 1);
    const auto lines = find_lines(turned, touched ? untouched : turned, scale, least, least_taken);
    if (lines.empty()) return least_taken;
    for (const RuledLine& line : lines) erase_line(turned, line, scale);
    turn(turned, 3);
    page = std::move(turned);
    return least_taken;
}

}  // namespace tool::reading

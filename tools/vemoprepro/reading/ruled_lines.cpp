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
#include "reading/line_surroundings.h"
#include "reading/ruled_line.h"

namespace tool::reading {
namespace {

struct FoundLine {
    RuledLine line;
    Sureness sureness;
};

// The level lines of a page; `untouched` has the lines across as well.
std::vector<FoundLine> find_lines(const Page& page, const Page& untouched, const LineScale& scale,
                                  Sureness least) {
    std::vector<FoundLine> lines;
    FollowedLines followed(page.width, page.height);  // lines and what turned out to be none
    for (const Seed& seed : find_seeds(page, scale)) {
        if (followed.covers(seed.middle(), seed.y)) continue;
        if (lies_in_dark_area(page, seed, scale)) continue;
        const int thickness = thickness_along(page, seed, scale);
        if (thickness > scale.thickest) continue;
        RuledLine line = follow_line(page, seed, scale, thickness, followed);
        followed.add(line);
        const Sureness sureness = judge(page, untouched, line, scale);
        if (sureness >= least) lines.push_back({std::move(line), sureness});
    }
    return lines;
}

void erase_line(Page& page, const RuledLine& line, const LineScale& scale) {
    const std::vector<bool> kept = find_letters(line, scale);
    for (int x = line.x0; x < line.x1(); ++x) {
        if (kept[static_cast<std::size_t>(x - line.x0)]) continue;
        const LineColumn& column = line.at(x);
        for (int y = column.y0; y < column.y1; ++y) erase_ink(page, x, y);
    }
}

void erase_lines(Page& page, const std::vector<FoundLine>& lines, const LineScale& scale) {
    for (const FoundLine& found : lines) erase_line(page, found.line, scale);
}

// What was found and erased on a page: level lines, and upright ones, which are level on the page
// turned clockwise.
struct ErasedLines {
    std::vector<FoundLine> level, upright;
};

ErasedLines erase_lines(Page& page, const LineScale& scale, LineChoice choice, Sureness least) {
    ErasedLines erased;
    Page untouched;
    if (choice.level) {
        erased.level = find_lines(page, page, scale, least);
        if (choice.upright && !erased.level.empty()) untouched = copy_of(page);
        erase_lines(page, erased.level, scale);
    }
    if (!choice.upright) return erased;
    const bool touched = untouched.bytes != nullptr;
    if (touched) turn(untouched, 1);
    Page turned = copy_of(page);
    turn(turned, 1);
    erased.upright = find_lines(turned, touched ? untouched : turned, scale, least);
    if (erased.upright.empty()) return erased;
    erase_lines(turned, erased.upright, scale);
    turn(turned, 3);
    page = std::move(turned);
    return erased;
}

// On the page, or on the page turned clockwise.
LineBox box_of(const RuledLine& line) {
    LineBox box{line.x0, line.at(line.x0).row(), line.x1(), 0};
    for (const LineColumn& column : line.columns) {
        box.y0 = std::min(box.y0, column.row());
        box.y1 = std::max(box.y1, column.row() + 1);
    }
    return box;
}

std::vector<LineBox> boxes_of(const ErasedLines& lines, const Page& page) {
    std::vector<LineBox> boxes;
    for (const FoundLine& found : lines.level) boxes.push_back(box_of(found.line));
    for (const FoundLine& found : lines.upright) {
        const LineBox box = box_of(found.line);
        boxes.push_back({box.y0, page.height - box.x1, box.y1, page.height - box.x0});
    }
    return boxes;
}

void put_back_level(Page& page, const RuledLine& line) {
    for (int x = line.x0; x < line.x1(); ++x) {
        for (int y = line.at(x).y0; y < line.at(x).y1; ++y) set_ink(page.row(y), x);
    }
}

void put_back_upright(Page& page, const RuledLine& line) {
    for (int x = line.x0; x < line.x1(); ++x) {
        const LineColumn& column = line.at(x);
        if (column.height() == 0) continue;
        set_inks(page.row(page.height - 1 - x), column.y0, column.y1);
    }
}

}  // namespace

// Most pages have no lines, and are neither copied nor turned back.
Sureness remove_ruled_lines(Page& page, const LineScale& scale, LineChoice choice, Sureness least) {
    Sureness least_taken = Sureness::kSure;
    const ErasedLines lines = erase_lines(page, scale, choice, least);
    if (lines.level.empty() && lines.upright.empty()) return least_taken;
    const std::vector<LineBox> boxes = boxes_of(lines, page);
    const std::vector<bool> taken = choice.of_drawings
                                        ? std::vector<bool>(boxes.size(), true)
                                        : find_lines_of_text(page, boxes, scale.letter);
    std::size_t i = 0;
    const auto settle = [&](const std::vector<FoundLine>& found_lines, auto put_back) {
        for (const FoundLine& found : found_lines) {
            if (taken[i++]) {
                least_taken = std::min(least_taken, found.sureness);
            } else {
                put_back(page, found.line);
            }
        }
    };
    settle(lines.level, put_back_level);
    settle(lines.upright, put_back_upright);
    return least_taken;
}

}  // namespace tool::reading

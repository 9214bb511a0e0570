// Lines begin as seeds, long runs of ink in a row. Each is followed from end to end
// (ruled_line.cpp). If it then turns out to be a line, it is erased but for the columns where
// letters touch it (line_letters.cpp). Seeds of a line that has been followed already are passed
// over. All decisions are taken on the page as it came.
#include "reading/ruled_lines.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "page/ink.h"
#include "page/turn.h"
#include "reading/line_letters.h"
#include "reading/ruled_line.h"

namespace tool::reading {
namespace {

// A line is alone in at least so many per cent of its columns with ink; text may cover the others.
constexpr int kLeastAlone = 40;
// At most so many per cent of the pixels beside a line are ink. In text up to 22 are, beside a
// double line 26, in a screen 32 and more unless it is so light that its dots do not join.
constexpr int kMostInkBeside = 30;
// The rows nearest to a line are not counted among those: its ragged edge reaches into them.
constexpr int kBesideLine = 3;

// Where a line ran: its row at every kApart columns. On a large page full of screen dots there are
// thousands of lines, so little is kept of each.
class LinePath {
  public:
    explicit LinePath(const RuledLine& line) : x0_(line.x0), x1_(line.x1()) {
        for (int x = x0_; x < x1_; x += kApart) {
            rows_.push_back(static_cast<short>(line.at(x).row()));
        }
    }

    bool covers(const Seed& seed, int reach) const {
        const int middle = seed.middle();
        if (middle < x0_ || middle >= x1_) return false;
        const int row = rows_[static_cast<std::size_t>((middle - x0_) / kApart)];
        return std::abs(row - seed.y) <= reach;
    }

  private:
    static constexpr int kApart = 16;

    int x0_, x1_;
    std::vector<short> rows_;
};

bool known(const std::vector<LinePath>& paths, const Seed& seed, int reach) {
    return std::any_of(paths.begin(), paths.end(),
                       [&](const LinePath& path) { return path.covers(seed, reach); });
}

// Part of a picture is seldom as thick all along as a line is.
bool is_even(const RuledLine& line) {
    int alone = 0, ink = 0;
    for (const LineColumn& column : line.columns) {
        ink += column.height() > 0;
        alone += line.is_alone_in(column);
    }
    return alone * 100 >= ink * kLeastAlone;
}

// Rows of screen dots lie among dots, a line lies among paper and perhaps letters.
bool lies_among_paper(const Page& page, const RuledLine& line, int around) {
    const int nearest = line.thickness / 2 + kBesideLine;
    int beside = 0, seen = 0;
    for (int x = line.x0; x < line.x1(); ++x) {
        const int row = line.at(x).row();
        for (int away = nearest; away < nearest + around; ++away) {
            for (const int y : {row - away, row + away}) {
                if (y < 0 || y >= page.height) continue;
                ++seen;
                beside += is_ink(page, x, y);
            }
        }
    }
    return beside * 100 <= seen * kMostInkBeside;
}

void erase_line(Page& page, const RuledLine& line) {
    const std::vector<bool> letter = find_letters(line);
    for (int x = line.x0; x < line.x1(); ++x) {
        if (letter[static_cast<std::size_t>(x - line.x0)]) continue;
        const LineColumn& column = line.at(x);
        for (int y = column.y0; y < column.y1; ++y) erase_ink(page, x, y);
    }
}

}  // namespace

void remove_level_lines(Page& page, const LineScale& scale) {
    const Page before = copy_of(page);
    std::vector<LinePath> followed;  // lines and what turned out to be none
    for (const Seed& seed : find_seeds(before, scale)) {
        if (known(followed, seed, scale.thickest / 2 + 1)) continue;
        if (lies_in_dark_area(before, seed, scale)) continue;
        const int thickness = thickness_along(before, seed, scale);
        if (thickness > scale.thickest) continue;
        const RuledLine line = follow_line(before, seed, scale, thickness);
        followed.emplace_back(line);
        if (is_even(line) && lies_among_paper(before, line, scale.around)) erase_line(page, line);
    }
}

void remove_upright_lines(Page& page, const LineScale& scale) {
    turn(page, 1);
    remove_level_lines(page, scale);
    turn(page, 3);
}

}  // namespace tool::reading

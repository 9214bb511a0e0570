// One ruled line of a bitonal page, column by column.
//
// Use: find_seeds() gives the places where lines may run. For each, thickness_along() says how
// thick the line is there, and follow_line() follows it over the page to both sides.
#pragma once

#include <cstddef>
#include <vector>

#include "page/page.h"
#include "reading/line_scale.h"

namespace tool::reading {

class FollowedLines;

// A run of ink in one row, breaks closed: the start of a line.
struct Seed {
    int y, x0, x1;  // x1 exclusive

    int length() const { return x1 - x0; }
    int middle() const { return (x0 + x1) / 2; }
};

// Places between two rows are counted in parts of a pixel.
constexpr int kRowParts = 64;

// The vertical run of ink that a line lies in at one column; empty where the line has a gap.
struct LineColumn {
    int y0 = 0, y1 = 0;  // y1 exclusive
    int centre = 0;      // of the line there, in 1 / kRowParts of a row

    int height() const { return y1 - y0; }
    int row() const { return centre / kRowParts; }
};

struct RuledLine {
    int x0 = 0;
    int thickness = 0;
    std::vector<LineColumn> columns;  // from x0 on

    int x1() const { return x0 + static_cast<int>(columns.size()); }
    const LineColumn& at(int x) const { return columns[static_cast<std::size_t>(x - x0)]; }

    // The edge of a line is ragged by a pixel. Ink that is higher is not the line alone.
    int thickest() const { return thickness + 1; }
    bool is_alone_in(const LineColumn& column) const {
        return column.height() > 0 && column.height() <= thickest();
    }
};

// The longest first. A seed has an unbroken piece of some length.
std::vector<Seed> find_seeds(const Page& page, const LineScale& scale);

// Whether a look at some columns of a seed finds few that are thin enough for a line. Most seeds
// lie in dark areas, where looking at every column takes long.
bool lies_in_dark_area(const Page& page, const Seed& seed, const LineScale& scale);

// The thickness of a line is that of its thinner columns: in the others there are letters, too.
int thickness_along(const Page& page, const Seed& seed, const LineScale& scale);

// Outside of its seed a line ends where it meets one that was followed before.
RuledLine follow_line(const Page& page, const Seed& seed, const LineScale& scale, int thickness,
                      const FollowedLines& followed);

}  // namespace tool::reading

// The edges of ink are counted by cells about as large as a letter: those of letters in rows, and
// those of other ink. So a black bar weighs less than text of its size. Around a group of lines
// that meet, the sums are compared. Lines within a drawing belong to it, whatever stands beside
// them: the length of a part is written over a line as a title is.
#include "reading/line_surroundings.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "reading/cells.h"
#include "reading/components.h"
#include "reading/letter_rows.h"

namespace tool::reading {
namespace {

// How far around a group of lines ink is counted, in heights of small letters.
constexpr double kAround = 4;
// So much more edge has the ink of letters than other ink where lines serve text. Tables and forms
// have 5 times as much and more, drawings about as much as other ink or less, staves up to 2.7.
constexpr int kLettersToOthers = 3;
// Lines no farther apart than this meet, in heights of small letters.
constexpr double kMeet = 0.5;

// Groups of numbers, each under its least one.
class Groups {
  public:
    explicit Groups(std::size_t size) : parents_(size) {
        std::iota(parents_.begin(), parents_.end(), std::size_t{0});
    }
    std::size_t find(std::size_t i) {
        while (parents_[i] != i) i = parents_[i] = parents_[parents_[i]];
        return i;
    }
    void join(std::size_t i, std::size_t j) {
        i = find(i);
        j = find(j);
        parents_[std::max(i, j)] = std::min(i, j);
    }

  private:
    std::vector<std::size_t> parents_;
};

Groups lines_that_meet(const std::vector<LineBox>& lines, const Page& page, int side) {
    Groups groups(lines.size());
    Cells<int> seen(page.width, page.height, side, -1);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const LineBox& line = lines[i];
        for (int row = seen.row(line.y0 - side); row <= seen.row(line.y1 + side); ++row) {
            for (int column = seen.column(line.x0 - side); column <= seen.column(line.x1 + side);
                 ++column) {
                int& other = seen.at(column, row);
                if (other >= 0) groups.join(static_cast<std::size_t>(other), i);
                other = static_cast<int>(i);
            }
        }
    }
    return groups;
}

struct Edges {
    double letters = 0, others = 0;

    Edges& operator+=(const Edges& more) {
        letters += more.letters;
        others += more.others;
        return *this;
    }
    Edges& operator-=(const Edges& less) {
        letters -= less.letters;
        others -= less.others;
        return *this;
    }
    Edges operator-() const { return {-letters, -others}; }
};

// The value of each cell becomes the sum of those above it and to its left, itself among them.
template <class Value>
void sum_up(Cells<Value>& cells) {
    for (int row = 0; row < cells.down(); ++row) {
        Value own{};
        for (int column = 0; column < cells.across(); ++column) {
            own += cells.at(column, row);
            cells.at(column, row) = own;
            if (row > 0) cells.at(column, row) += cells.at(column, row - 1);
        }
    }
}

// What each cell of a box is to get more than the cell above and to the left; sum_up() adds it.
template <class Value>
void add_to_box(Cells<Value>& cells, const LineBox& box, const Value& value) {
    const int left = cells.column(box.x0), right = cells.column(box.x1 - 1) + 1;
    const int top = cells.row(box.y0), bottom = cells.row(box.y1 - 1) + 1;
    const auto add = [&](int column, int row, const Value& to_add) {
        if (column < cells.across() && row < cells.down()) cells.at(column, row) += to_add;
    };
    add(left, top, value);
    add(right, top, -value);
    add(left, bottom, -value);
    add(right, bottom, value);
}

// The edges of each component count as if they lay evenly in its box.
Cells<Edges> sums_of_edges(const Page& page, int side, double letter_height) {
    const std::vector<Component> components = components_of(page);
    const std::vector<bool> in_row = find_letters_in_rows(components, page, letter_height);
    Cells<Edges> sums(page.width, page.height, side, {});
    for (std::size_t i = 0; i < components.size(); ++i) {
        const Component& component = components[i];
        const LineBox box{component.x0, component.y0, component.x1, component.y1};
        const int across = sums.column(box.x1 - 1) - sums.column(box.x0) + 1;
        const int down = sums.row(box.y1 - 1) - sums.row(box.y0) + 1;
        const double share = 1.0 * component.perimeter / across / down;
        add_to_box(sums, box, in_row[i] ? Edges{share, 0} : Edges{0, share});
    }
    sum_up(sums);
    sum_up(sums);
    return sums;
}

Edges edges_around(Cells<Edges>& sums, const LineBox& box, int around) {
    const int left = sums.column(box.x0 - around), right = sums.column(box.x1 + around);
    const int top = sums.row(box.y0 - around), bottom = sums.row(box.y1 + around);
    Edges edges = sums.at(right, bottom);
    if (left > 0) edges -= sums.at(left - 1, bottom);
    if (top > 0) edges -= sums.at(right, top - 1);
    if (left > 0 && top > 0) edges += sums.at(left - 1, top - 1);
    return edges;
}

// The boxes of groups, each at the number of the group.
std::vector<LineBox> boxes_of_groups(const std::vector<LineBox>& lines, Groups& groups) {
    std::vector<LineBox> boxes = lines;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        LineBox& box = boxes[groups.find(i)];
        box = {std::min(box.x0, lines[i].x0), std::min(box.y0, lines[i].y0),
               std::max(box.x1, lines[i].x1), std::max(box.y1, lines[i].y1)};
    }
    return boxes;
}

}  // namespace

std::vector<bool> find_lines_of_text(const Page& without_lines, const std::vector<LineBox>& lines,
                                     double letter_height) {
    const int side = std::max(2, static_cast<int>(letter_height));
    Groups groups =
        lines_that_meet(lines, without_lines, std::max(2, static_cast<int>(kMeet * letter_height)));
    const std::vector<LineBox> boxes = boxes_of_groups(lines, groups);
    Cells<Edges> sums = sums_of_edges(without_lines, side, letter_height);
    Cells<int> drawings(without_lines.width, without_lines.height, side, 0);
    std::vector<bool> of_text(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (groups.find(i) != i) continue;
        const Edges edges = edges_around(sums, boxes[i], static_cast<int>(kAround * letter_height));
        of_text[i] = edges.letters > kLettersToOthers * edges.others;
        if (!of_text[i]) add_to_box(drawings, boxes[i], 1);
    }
    sum_up(drawings);
    const auto lies_in_drawing = [&](const LineBox& box) {
        return drawings.at(drawings.column((box.x0 + box.x1) / 2),
                           drawings.row((box.y0 + box.y1) / 2)) > 0;
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t group = groups.find(i);
        of_text[i] = of_text[group] && !lies_in_drawing(boxes[group]);
    }
    return of_text;
}

}  // namespace tool::reading

// All small ink, specks and the dots of letters, is lifted off the page, so that dirt near dirt is
// not taken for dirt near letters; what is no dirt is put down again.
#include "reading/specks.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>
#include <vector>

#include "page/ink.h"
#include "reading/components.h"
#include "reading/ink_runs.h"

namespace tool::reading {
namespace {

// So many equal dots at equal distances are a row: leaders, or a dotted line.
constexpr int kDotsOfRow = 4;
// By how much their distances differ.
constexpr double kSameDistance = 0.2;

bool has_ink(const Page& page, const Box& box) {
    const int x0 = std::max(0, box.x), x1 = std::min(page.width, box.x + box.width);
    const int y1 = std::min(page.height, box.y + box.height);
    for (int y = std::max(0, box.y); y < y1; ++y) {
        if (next_pixel(page.row(y), x0, x1, true) < x1) return true;
    }
    return false;
}

Box around(const Component& dot, int margin) {
    return {dot.x0 - margin, dot.y0 - margin, dot.width() + 2 * margin, dot.height() + 2 * margin};
}

// Whether two dots may be of one row.
bool equal(const Component& a, const Component& b) {
    const auto alike = [](int one, int other) {
        return std::abs(one - other) <= 2 + std::min(one, other) / 4;
    };
    return alike(a.width(), b.width()) && alike(a.height(), b.height());
}

// Dots by their places, in cells.
class DotGrid {
  public:
    DotGrid(const std::vector<Component>& dots, int side, int width, int height)
        : dots_(dots),
          side_(side),
          across_(width / side + 1),
          down_(height / side + 1),
          first_(static_cast<std::size_t>(across_) * static_cast<std::size_t>(down_), -1),
          next_(dots.size(), -1) {
        for (std::size_t i = 0; i < dots.size(); ++i) {
            int& first = first_[cell(dots[i].x0 / side, dots[i].y0 / side)];
            next_[i] = std::exchange(first, static_cast<int>(i));
        }
    }

    // The nearest equal dot to the right of one, hardly higher or lower, or -1.
    int right_of(const Component& dot, int reach) const {
        const int end = std::min(across_ - 1, (dot.x1 + reach) / side_);
        int nearest = -1;
        for (int column = dot.x1 / side_; column <= end && nearest < 0; ++column) {
            for (int row = std::max(0, dot.y0 / side_ - 1);
                 row <= std::min(down_ - 1, dot.y0 / side_ + 1); ++row) {
                nearest = nearest_in(cell(column, row), dot, reach, nearest);
            }
        }
        return nearest;
    }

  private:
    const Component& at(int i) const { return dots_[static_cast<std::size_t>(i)]; }
    std::size_t cell(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(across_) +
               static_cast<std::size_t>(column);
    }

    int nearest_in(std::size_t cell, const Component& dot, int reach, int nearest) const {
        for (int i = first_[cell]; i >= 0; i = next_[static_cast<std::size_t>(i)]) {
            const int off = std::abs(at(i).y0 + at(i).y1 - dot.y0 - dot.y1);  // twice the rows
            if (at(i).x0 <= dot.x1 || at(i).x0 > dot.x1 + reach || off > side_ ||
                !equal(dot, at(i)))
                continue;
            if (nearest < 0 || at(i).x0 < at(nearest).x0) nearest = i;
        }
        return nearest;
    }

    const std::vector<Component>& dots_;
    int side_, across_, down_;
    std::vector<int> first_, next_;  // lists of the dots of cells
};

// Marks the dots that stand in rows from the left to the right.
void mark_rows(const std::vector<Component>& dots, int reach, int width, int height,
               std::vector<bool>& marked) {
    const DotGrid grid(dots, std::max(2, reach / 8), width, height);
    std::vector<int> next(dots.size()), order(dots.size());
    for (std::size_t i = 0; i < dots.size(); ++i) {
        next[i] = grid.right_of(dots[i], reach);
        order[i] = static_cast<int>(i);
    }
    std::sort(order.begin(), order.end(), [&](int a, int b) {
        return dots[static_cast<std::size_t>(a)].x0 > dots[static_cast<std::size_t>(b)].x0;
    });
    const auto step = [&](std::size_t i) {
        return dots[static_cast<std::size_t>(next[i])].x0 - dots[i].x0;
    };
    std::vector<int> left(dots.size(), 1);  // dots at equal distances from this one on
    for (const int index : order) {
        const auto i = static_cast<std::size_t>(index);
        if (next[i] < 0) continue;
        const auto n = static_cast<std::size_t>(next[i]);
        const bool even =
            next[n] >= 0 && std::abs(step(i) - step(n)) <= 1 + kSameDistance * step(i);
        left[i] = even ? left[n] + 1 : 2;
    }
    std::vector<bool> done(dots.size());
    for (auto index = order.rbegin(); index != order.rend(); ++index) {
        auto i = static_cast<std::size_t>(*index);
        if (left[i] < kDotsOfRow || done[i]) continue;
        for (int count = left[i]; count > 0; --count) {
            marked[i] = true;
            done[i] = done[i] || left[i] == count;
            if (count > 1) i = static_cast<std::size_t>(next[i]);
        }
    }
}

std::vector<Component> turned(std::vector<Component> dots) {
    for (Component& dot : dots) {
        std::swap(dot.x0, dot.y0);
        std::swap(dot.x1, dot.y1);
    }
    return dots;
}

}  // namespace

void remove_dirt(Page& page, const SpeckRule& rule) {
    std::vector<Component> small = components_of(page);
    const auto is_large = [&](const Component& component) {
        return component.width() >= rule.letter || component.height() >= rule.letter;
    };
    small.erase(std::remove_if(small.begin(), small.end(), is_large), small.end());
    std::vector<InkRun> runs;
    std::vector<std::size_t> ends;  // of the runs of each
    for (const Component& dot : small) {
        take_connected(page, dot.first_x, dot.y0, runs);
        ends.push_back(runs.size());
    }

    std::vector<bool> keep(small.size());
    for (std::size_t i = 0; i < small.size(); ++i) {
        const Component& dot = small[i];
        keep[i] = dot.area > rule.max_area ||
                  (dot.area >= rule.least_dot && has_ink(page, around(dot, rule.near)));
    }
    if (std::find(keep.begin(), keep.end(), false) != keep.end()) {
        mark_rows(small, rule.row_distance, page.width, page.height, keep);
        mark_rows(turned(small), rule.row_distance, page.height, page.width, keep);
    }
    std::size_t begin = 0;
    for (std::size_t i = 0; i < small.size(); begin = ends[i++]) {
        for (std::size_t j = begin; j < ends[i] && keep[i]; ++j)
            set_inks(page.row(runs[j].y), runs[j].begin, runs[j].end);
    }
}

}  // namespace tool::reading

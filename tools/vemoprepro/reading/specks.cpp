// All small ink, specks and the dots of letters, is lifted off the page, so that dirt near dirt is
// not taken for dirt near letters; what is no dirt is put down again.
#include "reading/specks.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <span>
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

// The numbers of the dots by where they begin, from the left to the right; those that begin in one
// column from the last to the first.
std::vector<int> from_left(const std::vector<Component>& dots, int width) {
    std::vector<int> places(static_cast<std::size_t>(width) + 1);
    for (const Component& dot : dots) ++places[static_cast<std::size_t>(dot.x0) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<int> order(dots.size());
    for (std::size_t i = dots.size(); i-- > 0;) {
        int& place = places[static_cast<std::size_t>(dots[i].x0)];
        order[static_cast<std::size_t>(place++)] = static_cast<int>(i);
    }
    return order;
}

// Dots by their places, in bands across the page, to be asked for from the left to the right.
class DotBands {
  public:
    DotBands(const std::vector<Component>& dots, const std::vector<int>& from_left, int band,
             int height)
        : dots_(dots), band_(band), bands_(static_cast<std::size_t>(height / band + 1)) {
        for (const int i : from_left) bands_[band_of(at(i))].dots.push_back({at(i).x0, i});
    }

    // The nearest equal dot to the right of one, hardly higher or lower, or -1.
    int right_of(const Component& dot, int reach) {
        const std::size_t band = band_of(dot);
        int nearest = -1, end = dot.x1 + reach + 1;
        for (std::size_t i = band - std::min<std::size_t>(band, 1);
             i <= std::min(bands_.size() - 1, band + 1); ++i) {
            for (const Place& place : bands_[i].from(dot.x0)) {
                if (place.x0 >= end) break;
                if (place.x0 <= dot.x1 || !in_row(dot, at(place.dot))) continue;
                nearest = place.dot;
                end = place.x0;
            }
        }
        return nearest;
    }

  private:
    struct Place {
        int x0, dot;
    };
    struct Band {
        std::vector<Place> dots;
        std::size_t passed = 0;

        // x does not become less from call to call.
        std::span<const Place> from(int x) {
            while (passed < dots.size() && dots[passed].x0 < x) ++passed;
            return std::span(dots).subspan(passed);
        }
    };

    const Component& at(int i) const { return dots_[static_cast<std::size_t>(i)]; }
    std::size_t band_of(const Component& dot) const {
        return static_cast<std::size_t>(dot.y0 / band_);
    }
    bool in_row(const Component& dot, const Component& next) const {
        const int off = std::abs(next.y0 + next.y1 - dot.y0 - dot.y1);  // twice the rows
        return off <= band_ && equal(dot, next);
    }

    const std::vector<Component>& dots_;
    int band_;
    std::vector<Band> bands_;
};

// Marks the dots that stand in rows from the left to the right.
void mark_rows(const std::vector<Component>& dots, int reach, int width, int height,
               std::vector<bool>& marked) {
    const std::vector<int> order = from_left(dots, width);
    DotBands bands(dots, order, std::max(2, reach / 8), height);
    std::vector<int> next(dots.size());
    for (const int index : order) {
        const auto i = static_cast<std::size_t>(index);
        next[i] = bands.right_of(dots[i], reach);
    }
    const auto step = [&](std::size_t i) {
        return dots[static_cast<std::size_t>(next[i])].x0 - dots[i].x0;
    };
    std::vector<int> left(dots.size(), 1);  // dots at equal distances from this one on
    for (auto index = order.rbegin(); index != order.rend(); ++index) {
        const auto i = static_cast<std::size_t>(*index);
        if (next[i] < 0) continue;
        const auto n = static_cast<std::size_t>(next[i]);
        const bool even =
            next[n] >= 0 && std::abs(step(i) - step(n)) <= 1 + kSameDistance * step(i);
        left[i] = even ? left[n] + 1 : 2;
    }
    std::vector<bool> done(dots.size());
    for (const int index : order) {
        auto i = static_cast<std::size_t>(index);
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

// Puts down the dots that are kept.
void put_down(Page& page, const std::vector<InkRun>& runs, const std::vector<std::size_t>& ends,
              const std::vector<bool>& keep) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < keep.size(); begin = ends[i++]) {
        for (std::size_t j = begin; j < ends[i] && keep[i]; ++j) {
            set_inks(page.row(runs[j].y), runs[j].begin, runs[j].end);
        }
    }
}

// Marks the dots that are no farther than their own size from those marked before, as three dots
// over one letter are.
void keep_beside_kept(Page& page, const std::vector<Component>& dots,
                      const std::vector<InkRun>& runs, const std::vector<std::size_t>& ends,
                      int least_dot, std::vector<bool>& keep) {
    put_down(page, runs, ends, keep);
    for (std::size_t i = 0; i < dots.size(); ++i) {
        if (keep[i] || dots[i].area < least_dot) continue;
        const int size = std::max(dots[i].width(), dots[i].height());
        keep[i] = has_ink(page, around(dots[i], size + 1));
    }
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
        const int near = dot.area >= rule.full_dot ? rule.near_full : rule.near;
        keep[i] = dot.area > rule.max_area ||
                  (dot.area >= rule.least_dot && has_ink(page, around(dot, near)));
    }
    if (std::find(keep.begin(), keep.end(), false) != keep.end()) {
        keep_beside_kept(page, small, runs, ends, rule.least_dot, keep);
        mark_rows(small, rule.row_distance, page.width, page.height, keep);
        mark_rows(turned(small), rule.row_distance, page.height, page.width, keep);
    }
    put_down(page, runs, ends, keep);
}

}  // namespace tool::reading

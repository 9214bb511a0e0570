// From the middle of its seed a line is followed to the left and to the right. In each column the
// run of ink at the line's row is looked up. Where that run is about as thick as the line, the
// line's row moves towards the middle of the run; elsewhere, in gaps and under letters, it goes
// straight on. Behind the end of the seed the line ends where no piece of it has come for a while;
// what lies behind its last piece does not belong to it. Neither does a piece that is shorter than
// the paper before it, nor pieces behind a short gap that are no longer than a stem in all: these
// are strokes of letters.
#include "reading/ruled_line.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

#include "page/ink.h"
#include "reading/followed_lines.h"

namespace tool::reading {
namespace {

constexpr int kThicknessPercentile = 35;

// The pieces of a broken line lie no farther apart than this many dashes, 5 mm.
constexpr int kAwayInDashes = 4;
// Stems of book type are shorter than this, 4 mm.
constexpr int kStemInDashes = 3;

// The run of ink in column x that row y lies in, or else the one of the row above or below. A run
// is cut where it goes on for more than `tallest` rows to either side.
LineColumn column_at(const Page& page, int x, int y, int tallest) {
    LineColumn column;
    for (const int start : {y, y - 1, y + 1}) {
        if (start < 0 || start >= page.height || !is_ink(page, x, start)) continue;
        const int top = std::max(0, start - tallest);
        const int bottom = std::min(page.height, start + tallest);
        column.y0 = start;
        column.y1 = start + 1;
        while (column.y0 > top && is_ink(page, x, column.y0 - 1)) --column.y0;
        while (column.y1 < bottom && is_ink(page, x, column.y1)) ++column.y1;
        break;
    }
    return column;
}

// Runs that are cut at this height are still told from the thickest line.
int tallest_looked_at(const LineScale& scale) {
    return scale.thickest + 1;
}

// Follows a line to one side.
class LineFollower {
  public:
    LineFollower(const Page& page, const LineScale& scale, const RuledLine& line,
                 const FollowedLines& followed, int y)
        : page_(page),
          scale_(scale),
          line_(line),
          followed_(followed),
          centre_(y * kRowParts + kRowParts / 2) {}

    // The columns of the line from x on, in the order in which they are reached; step: 1 or -1. All
    // columns of the seed, whose end in this direction is seed_end, belong to the line.
    std::vector<LineColumn> follow(int x, int seed_end, int step) {
        std::vector<LineColumn> columns;
        std::size_t kept = 0;  // columns up to the last one that belongs to the line
        for (; x >= 0 && x < page_.width; x += step) {
            const bool on_seed = step > 0 ? x < seed_end : x > seed_end;
            if (!on_seed && followed_.covers(x, centre_ / kRowParts)) break;
            columns.push_back(look(x));
            if (on_seed || goes_on()) {
                kept = columns.size();
                away_ = paper_ = before_ = 0;
                has_wide_gap_ = false;
            } else if (away_ > kAwayInDashes * scale_.dash) {
                break;
            }
        }
        columns.resize(kept);
        return columns;
    }

  private:
    LineColumn look(int x) {
        LineColumn column = column_at(page_, x, centre_ / kRowParts, tallest_looked_at(scale_));
        column.centre = centre_;
        if (line_.is_alone_in(column)) {
            ++piece_;
            gap_ = 0;
            approach(column);
        } else {
            if (piece_ >= scale_.dash) before_ += piece_;
            piece_ = 0;
            ++away_;
            const bool is_paper = column.height() == 0;
            paper_ += is_paper;
            gap_ = is_paper ? gap_ + 1 : 0;
            has_wide_gap_ |= gap_ > scale_.gap;
        }
        return column;
    }

    // Whether the piece up to here belongs to the line.
    bool goes_on() const {
        if (piece_ < scale_.dash) return false;
        if (paper_ == 0) return true;
        if (has_wide_gap_) return piece_ >= paper_;
        return before_ + piece_ >= kStemInDashes * scale_.dash;
    }

    // Slowly, since a letter's stroke may look like the line.
    void approach(const LineColumn& column) {
        const int middle = (column.y0 + column.y1) * kRowParts / 2;
        centre_ += (middle - centre_) / 16;
    }

    const Page& page_;
    const LineScale& scale_;
    const RuledLine& line_;
    const FollowedLines& followed_;
    int centre_;     // in 1 / kRowParts of a row
    int piece_ = 0;  // columns of the line in a row, up to here
    int gap_ = 0;    // columns of paper up to here
    // Since the last piece that belongs to the line:
    int before_ = 0;  // columns of pieces before this one
    bool has_wide_gap_ = false;
    int away_ = 0;   // columns without the line since the last piece that belongs to it
    int paper_ = 0;  // of those, columns without ink
};

// By counting, since a page full of dots has millions of seeds.
std::vector<Seed> longest_first(const std::vector<Seed>& seeds, int longest) {
    std::vector<std::size_t> places(static_cast<std::size_t>(longest) + 2);
    const auto shortness = [=](const Seed& seed) {
        return static_cast<std::size_t>(longest - seed.length());
    };
    for (const Seed& seed : seeds) ++places[shortness(seed) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<Seed> sorted(seeds.size());
    for (const Seed& seed : seeds) sorted[places[shortness(seed)]++] = seed;
    return sorted;
}

// Of 32 pixels, each group of `size` that is all ink, as its first pixel. A run of 2 x size - 1 has
// such a group wherever it begins.
constexpr std::uint32_t full_groups(std::uint32_t pixels, int size) {
    std::uint32_t firsts = 0x80000000;
    for (int width = 32; width > size; width /= 2) firsts |= firsts >> width / 2;
    for (int width = 1; width < size; width *= 2) pixels &= pixels << width;
    return pixels & firsts;
}

int group_size(int shortest_run) {
    int size = 1;
    while (size < 32 && 4 * size - 1 <= shortest_run) size *= 2;
    return size;
}

// Runs of ink in a row, as far as the gaps between them are shorter than `gap`, around the run from
// x0 to x1.
Seed joined_runs(const Page& page, int y, int x0, int x1, int gap) {
    const unsigned char* row = page.row(y);
    for (;;) {
        const int before = last_pixel(row, x0, true);
        if (before < 0 || x0 - before - 1 >= gap) break;
        x0 = last_pixel(row, before, false) + 1;
    }
    for (;;) {
        const int next = next_pixel(row, x1, page.width, true);
        if (next == page.width || next - x1 >= gap) break;
        x1 = next_pixel(row, next, page.width, false);
    }
    return {y, x0, x1};
}

// A seed has an unbroken piece, and few runs of ink are that long: those are looked up by words.
void add_seeds_of_row(const Page& page, int y, const LineScale& scale, std::vector<Seed>& seeds) {
    const unsigned char* row = page.row(y);
    const int size = group_size(scale.dash);
    const auto words = static_cast<int>(page.stride() / 4);
    int done = 0;
    for (int i = 0; i < words; i = std::max(i + 1, done / 32)) {
        std::uint32_t firsts = full_groups(pixels_at(row, static_cast<std::size_t>(i)), size);
        for (; firsts != 0; firsts &= ~(0x80000000 >> std::countl_zero(firsts))) {
            const int x = 32 * i + std::countl_zero(firsts);
            if (x < done) continue;
            const int x0 = last_pixel(row, x, false) + 1;
            done = next_pixel(row, x, page.width, false);
            if (done - x0 < scale.dash) continue;
            const Seed seed = joined_runs(page, y, x0, done, scale.gap);
            if (seed.length() >= scale.shortest) seeds.push_back(seed);
            done = seed.x1;
        }
    }
}

}  // namespace

std::vector<Seed> find_seeds(const Page& page, const LineScale& scale) {
    std::vector<Seed> seeds;
    for (int y = 0; y < page.height; ++y) add_seeds_of_row(page, y, scale, seeds);
    return longest_first(seeds, page.width);
}

bool lies_in_dark_area(const Page& page, const Seed& seed, const LineScale& scale) {
    constexpr int kLooks = 64;
    constexpr int kLeastThin = 5;  // one column in so many
    const int apart = seed.length() / kLooks + 1;
    int looked_at = 0, thin = 0;
    for (int x = seed.x0; x < seed.x1; x += apart) {
        const int height = column_at(page, x, seed.y, tallest_looked_at(scale)).height();
        looked_at += height > 0;
        thin += height > 0 && height <= scale.thickest;
    }
    return thin * kLeastThin < looked_at;
}

int thickness_along(const Page& page, const Seed& seed, const LineScale& scale) {
    std::vector<int> heights;
    for (int x = seed.x0; x < seed.x1; ++x) {
        const int height = column_at(page, x, seed.y, tallest_looked_at(scale)).height();
        if (height > 0) heights.push_back(height);
    }
    const auto wanted =
        heights.begin() + static_cast<std::ptrdiff_t>(heights.size()) * kThicknessPercentile / 100;
    std::nth_element(heights.begin(), wanted, heights.end());
    return *wanted;
}

RuledLine follow_line(const Page& page, const Seed& seed, const LineScale& scale, int thickness,
                      const FollowedLines& followed) {
    RuledLine line;
    line.thickness = thickness;
    const int middle = seed.middle();
    std::vector<LineColumn> left =
        LineFollower(page, scale, line, followed, seed.y).follow(middle - 1, seed.x0 - 1, -1);
    const std::vector<LineColumn> right =
        LineFollower(page, scale, line, followed, seed.y).follow(middle, seed.x1, 1);
    line.x0 = middle - static_cast<int>(left.size());
    std::reverse(left.begin(), left.end());
    line.columns = std::move(left);
    line.columns.insert(line.columns.end(), right.begin(), right.end());
    return line;
}

}  // namespace tool::reading

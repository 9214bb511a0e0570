// The core is looked at in square cells of about a quarter of the least thickness, of which one is
// set when three quarters of its pixels are: borders have specks. Thick is what an opening by a
// square of cells leaves; from the edges it is followed by flooding.
#include "reading/thick_parts.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

constexpr int kCellsOfThickness = 4;
constexpr int kSmallestCell = 2, kLargestCell = 16;  // pixels a side

// Along a line, a cell becomes `value` when one of the cells from `back` before it to `ahead` after
// it is.
void spread_along(unsigned char* line, int count, unsigned char value, int back, int ahead) {
    int last = -1 - back;  // the last cell that was `value`; none yet
    for (int i = 0; i < count + ahead; ++i) {
        if (i < count && line[i] == value) last = i;
        const int target = i - ahead;
        if (target >= 0 && last >= target - back) line[target] = value;
    }
}

// In which row the columns last had the value.
void note_places(const unsigned char* row, int count, unsigned char value, int y, int* last) {
    for (int x = 0; x < count; ++x) last[x] = row[x] == value ? y : last[x];
}

void take_near(const int* last, int count, int earliest, unsigned char value, unsigned char* row) {
    for (int x = 0; x < count; ++x) row[x] = last[x] >= earliest ? value : row[x];
}

// Cells with a margin around them that stands for what lies outside of the page.
class Cells {
  public:
    Cells(int columns, int rows, int margin)
        : width_(columns + 2 * margin),
          height_(rows + 2 * margin),
          margin_(margin),
          set_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), 1) {}

    // Rows and columns of the page; the margin has negative ones and those beyond the last.
    unsigned char* row(int y) { return &at(margin_, y + margin_); }

    // An opening is an erosion and a dilation by the same size: the square of cells that a cell
    // looks at reaches half the size back and the rest ahead, and for dilating the other way
    // round. What lies beyond the margin counts as set.
    void erode(int size) { spread(0, size / 2, size - 1 - size / 2); }
    void dilate(int size) { spread(1, size - 1 - size / 2, size / 2); }

    // Of the page's cells; the margin's are unset afterwards.
    void keep_flooded_from_margin();

  private:
    // From the margin's first cell on.
    unsigned char& at(int x, int y) {
        return set_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                    static_cast<std::size_t>(x)];
    }

    // Along rows and columns, see spread_along.
    void spread(unsigned char value, int back, int ahead);

    int width_, height_, margin_;
    std::vector<unsigned char> set_;
};

void Cells::spread(unsigned char value, int back, int ahead) {
    for (int y = 0; y < height_; ++y) spread_along(&at(0, y), width_, value, back, ahead);
    // Down all columns at once.
    std::vector<int> last(static_cast<std::size_t>(width_), -1 - back);
    for (int y = 0; y < height_ + ahead; ++y) {
        if (y < height_) note_places(&at(0, y), width_, value, y, last.data());
        const int target = y - ahead;
        if (target >= 0) take_near(last.data(), width_, target - back, value, &at(0, target));
    }
}

void Cells::keep_flooded_from_margin() {
    constexpr unsigned char kFlooded = 2;
    std::vector<std::pair<int, int>> open = {{0, 0}};
    set_[0] = kFlooded;
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        for (int v = std::max(0, y - 1); v <= std::min(height_ - 1, y + 1); ++v) {
            for (int u = std::max(0, x - 1); u <= std::min(width_ - 1, x + 1); ++u) {
                unsigned char& cell = at(u, v);
                if (cell != 1) continue;
                cell = kFlooded;
                open.emplace_back(u, v);
            }
        }
    }
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            const bool in_page =
                x >= margin_ && x < width_ - margin_ && y >= margin_ && y < height_ - margin_;
            unsigned char& cell = at(x, y);
            cell = in_page && cell == kFlooded ? 1 : 0;
        }
    }
}

// How many of the pixels x0 .. x1 - 1 of a row are set, at most kLargestCell.
int count_set(const unsigned char* row, int x0, int x1) {
    unsigned bits = row[x0 / 8] & (0xFFU >> x0 % 8);
    for (int i = x0 / 8 + 1; i <= (x1 - 1) / 8; ++i) bits = bits << 8 | row[i];
    return count_bits(bits >> (7 - (x1 - 1) % 8));
}

void clear_cells_with_holes(Cells& cells, const Page& core, int side) {
    std::vector<int> holes(static_cast<std::size_t>((core.width + side - 1) / side));
    for (int y = 0; y < core.height; ++y) {
        if (y % side == 0) std::fill(holes.begin(), holes.end(), 0);
        const unsigned char* bits = core.row(y);
        int x = 0;
        for (int& hole : holes) {
            const int end = std::min(core.width, x + side);
            hole += end - x - count_set(bits, x, end);
            x = end;
        }
        if (y % side != side - 1 && y != core.height - 1) continue;
        unsigned char* row = cells.row(y / side);
        for (std::size_t i = 0; i < holes.size(); ++i) {
            if (holes[i] * 4 > side * side) row[i] = 0;
        }
    }
}

void erase_outside_cells(Page& mask, Cells& cells, int side) {
    for (int y = 0; y < mask.height; ++y) {
        const unsigned char* cell = cells.row(y / side);
        for (int x = 0; x < mask.width;) {
            const int begin = x;
            while (x < mask.width && cell[x / side] == 0) x += side;
            if (x > begin) erase_inks(mask.row(y), begin, std::min(x, mask.width));
            while (x < mask.width && cell[x / side] != 0) x += side;
        }
    }
}

}  // namespace

void keep_thick_at_edges(Page& mask, const Page& core, int least, int fringe) {
    const int side = std::clamp(least / kCellsOfThickness, kSmallestCell, kLargestCell);
    const int thick = std::max(2, least / side);  // in cells
    const auto cells_of = [side](int pixels) { return (pixels + side - 1) / side; };
    Cells cells(cells_of(mask.width), cells_of(mask.height), thick);
    clear_cells_with_holes(cells, core, side);
    cells.erode(thick);
    cells.dilate(thick);
    cells.keep_flooded_from_margin();
    cells.dilate(2 * cells_of(fringe) + 1);
    erase_outside_cells(mask, cells, side);
}

}  // namespace tool::reading

// The pages are compared in cells of 32 x 32 pixels with the cells around each.
#include "reading/light_print.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "page/ink.h"
#include "reading/euler_number.h"
#include "reading/limit_bits.h"
#include "reading/paper_limits.h"
#include "reading/sharp_ink.h"

namespace tool::reading {
namespace {

constexpr int kCell = 32;
// The page is as good as blank with less than this share of the other's ink, in per cent; print
// itself fills less than this share of a cell.
constexpr int kBlank = 5;
constexpr int kMostPrint = 50;
// Print fills no more than this share of several cells together.
constexpr int kWidePrint = 20;
// Noise falls into smaller pieces than this many pixels.
constexpr int kPiece = 10;

struct Cells {
    int across, down;
    std::vector<int> ink;

    explicit Cells(const Page& bits)
        : across(static_cast<int>(bits.stride()) / 4),
          down((bits.height + kCell - 1) / kCell),
          ink(static_cast<std::size_t>(across) * static_cast<std::size_t>(down)) {
        for (int y = 0; y < bits.height; ++y) {
            int* row = &ink[index(0, y / kCell)];
            for (int i = 0; i < across; ++i) {
                row[i] += count_bits(pixels_at(bits.row(y), static_cast<std::size_t>(i)));
            }
        }
    }

    std::size_t index(int i, int j) const {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(across) +
               static_cast<std::size_t>(i);
    }
    // Calls visit(index) for the cell and those within `reach` around it.
    template <class Visit>
    void around(int i, int j, int reach, Visit visit) const {
        for (int v = std::max(0, j - reach); v <= std::min(down - 1, j + reach); ++v) {
            for (int u = std::max(0, i - reach); u <= std::min(across - 1, i + reach); ++u) {
                visit(index(u, v));
            }
        }
    }
    int ink_around(int i, int j) const {
        int sum = 0;
        around(i, j, 1, [&](std::size_t cell) { sum += ink[cell]; });
        return sum;
    }
    // Near dark areas the edges are those of the dark.
    bool may_be_print(int i, int j) const {
        int most = 0;
        around(i, j, 2, [&](std::size_t cell) { most = std::max(most, ink[cell]); });
        return ink[index(i, j)] > 0 && most * 100 <= kMostPrint * kCell * kCell;
    }
};

Box box_of_cell(int i, int j) {
    return {i * kCell, j * kCell, kCell, kCell};
}

// By cells: there is ink, and so little of it is black that print there would be far more.
std::vector<bool> cells_without_print(const Cells& own, SharpInk& ink) {
    constexpr int kMostAround = 9 * kCell * kCell * kWidePrint / 100;
    std::vector<bool> cells(own.ink.size());
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            cells[own.index(i, j)] = own.ink_around(i, j) * 100 < kBlank * kMostAround &&
                                     ink.is_print(box_of_cell(i, j), kCell);
        }
    }
    return cells;
}

// The cells within reach of these.
std::vector<bool> grown(const Cells& cells, const std::vector<bool>& these, int reach) {
    std::vector<bool> wide(these.size());
    for (int j = 0; j < cells.down; ++j) {
        for (int i = 0; i < cells.across; ++i) {
            if (!these[cells.index(i, j)]) continue;
            cells.around(i, j, reach, [&](std::size_t cell) { wide[cell] = true; });
        }
    }
    return wide;
}

// The limits, in these cells half way between sharp ink and its paper where there is some around.
BlockGrid with_limits_of_sharp_ink(BlockGrid limits, const PageDepths& depths, SharpInk& ink,
                                   const Cells& cells, const std::vector<bool>& these) {
    const auto half_way = [&](int i, int j) {
        int contrast = 0;
        const Box around{(i - 1) * limits.side, (j - 1) * limits.side, 3 * limits.side,
                         3 * limits.side};
        for_each_block(limits, around, [&](int u, int v) {
            if (!ink.is_sharp(u, v)) return;
            contrast = std::max(contrast, depths.blocks[limits.index(u, v)].contrast);
        });
        if (contrast == 0) return;
        const int half = depths.blocks[limits.index(i, j)].paper - contrast / 2;
        limits.at(i, j) = std::max(limits.at(i, j), half * kLimitParts);
    };
    for (int j = 0; j < cells.down; ++j) {
        for (int i = 0; i < cells.across; ++i) {
            if (these[cells.index(i, j)]) for_each_block(limits, box_of_cell(i, j), half_way);
        }
    }
    return limits;
}

// The page by these limits in these cells, blank in others.
Page bits_in_cells(const Page& grey, const BlockGrid& limits, const Cells& cells,
                   const std::vector<bool>& these) {
    Page bits = blank_page_like(grey);
    for (int j = 0; j < cells.down; ++j) {
        for (int i = 0, end; i < cells.across; i = end + 1) {
            for (end = i; end < cells.across && these[cells.index(end, j)];) ++end;
            if (end == i) continue;
            const int x = i * kCell, y = j * kCell;
            add_bits_within(
                grey, limits,
                {x, y, std::min(end * kCell, grey.width) - x, std::min(kCell, grey.height - y)},
                bits);
        }
    }
    return bits;
}

// In a cell and those around it, less the holes in them.
std::int64_t pieces_around(const Page& bits, int i, int j) {
    const int left = 4 * std::max(0, i - 1), top = kCell * std::max(0, j - 1);
    const int right = std::min(4 * (i + 2), static_cast<int>(bits.stride()));
    const int bottom = std::min(kCell * (j + 2), bits.height);
    const Page part = make_page(PageKind::kBitonal, 8 * (right - left), bottom - top, bits.dpi);
    for (int y = top; y < bottom; ++y) {
        std::copy(bits.row(y) + left, bits.row(y) + right, part.row(y - top));
    }
    return euler_number(part);
}

}  // namespace

void add_light_print(Page& bits, const Page& grey, const PageDepths& depths) {
    const Cells own(bits);
    SharpInk ink(grey, depths);
    const std::vector<bool> cells = cells_without_print(own, ink);
    if (std::find(cells.begin(), cells.end(), true) == cells.end()) return;
    const std::vector<bool> near = grown(own, cells, 1);
    const BlockGrid sharp =
        with_limits_of_sharp_ink(limits(depths, page_threshold(depths), 1), depths, ink, own, near);
    // May_be_print() looks two cells beyond those that are near.
    const Page lighter = bits_in_cells(grey, sharp, own, grown(own, cells, 3));
    const Cells other(lighter);
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            if (!near[own.index(i, j)] || !other.may_be_print(i, j)) continue;
            const int black = other.ink_around(i, j);
            if (own.ink_around(i, j) * 100 >= kBlank * black) continue;
            if (black < kPiece * pieces_around(lighter, i, j)) continue;
            for (int y = j * kCell; y < std::min(bits.height, (j + 1) * kCell); ++y) {
                for (int k = 4 * i; k < 4 * i + 4; ++k) bits.row(y)[k] |= lighter.row(y)[k];
            }
        }
    }
}

}  // namespace tool::reading

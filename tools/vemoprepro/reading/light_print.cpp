// The pages are compared in cells of 32 x 32 pixels with the cells around each: what is added keeps
// its distance from what is there, whose edges the other page has a little elsewhere.
#include "reading/light_print.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

constexpr int kCell = 32;
// The page is as good as blank with less than this share of the other's ink, in per cent; print
// itself fills less than this share of a cell.
constexpr int kBlank = 5;
constexpr int kMostPrint = 50;
// Print fills no more than this share of several cells together.
constexpr int kWidePrint = 20;

struct Cells {
    int across, down;
    std::vector<int> ink;

    explicit Cells(const Page& bits)
        : across(static_cast<int>(bits.stride()) / 4),
          down((bits.height + kCell - 1) / kCell),
          ink(static_cast<std::size_t>(across) * static_cast<std::size_t>(down)) {
        for (int y = 0; y < bits.height; ++y) {
            for (int i = 0; i < across; ++i) {
                std::uint32_t pixels;
                std::memcpy(&pixels, bits.row(y) + 4 * i, 4);
                ink[index(i, y / kCell)] += count_bits(pixels);
            }
        }
    }

    std::size_t index(int i, int j) const {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(across) +
               static_cast<std::size_t>(i);
    }
    // Calls visit(ink) for the cell and those within `reach` around it.
    template <class Visit>
    void around(int i, int j, int reach, Visit visit) const {
        for (int v = std::max(0, j - reach); v <= std::min(down - 1, j + reach); ++v) {
            for (int u = std::max(0, i - reach); u <= std::min(across - 1, i + reach); ++u) {
                visit(ink[index(u, v)]);
            }
        }
    }
    int ink_around(int i, int j) const {
        int sum = 0;
        around(i, j, 1, [&](int cell) { sum += cell; });
        return sum;
    }
    // Near dark areas the edges are those of the dark.
    bool may_be_print(int i, int j) const {
        int most = 0;
        around(i, j, 2, [&](int cell) { most = std::max(most, cell); });
        return ink[index(i, j)] > 0 && most * 100 <= kMostPrint * kCell * kCell;
    }
};

// Whether some block in the cell, or the one next to it at the edge of the page, has so much
// contrast.
bool has_contrast(const Contrasts& contrasts, int i, int j, int least) {
    const auto block = [&](int pixel, int blocks) {
        return std::min(pixel / contrasts.side, blocks - 1);
    };
    for (int v = block(j * kCell, contrasts.down); v <= block((j + 1) * kCell - 1, contrasts.down);
         ++v) {
        for (int u = block(i * kCell, contrasts.across);
             u <= block((i + 1) * kCell - 1, contrasts.across); ++u) {
            if (contrasts.values[static_cast<std::size_t>(v * contrasts.across + u)] >= least) {
                return true;
            }
        }
    }
    return false;
}

// Whether there is a cell with contrast and so little ink that print there would be far more.
bool may_lack_print(const Cells& own, const Contrasts& contrasts, int least) {
    if (contrasts.values.empty()) return true;
    constexpr int kMostAround = 9 * kCell * kCell * kWidePrint / 100;
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            if (has_contrast(contrasts, i, j, least) &&
                own.ink_around(i, j) * 100 < kBlank * kMostAround) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void add_light_print(Page& bits, const Contrasts& contrasts, int least,
                     const std::function<Page()>& make_by_edges) {
    const Cells own(bits);
    if (!may_lack_print(own, contrasts, least)) return;
    const Page by_edges = make_by_edges();
    const Cells other(by_edges);
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            if (!other.may_be_print(i, j)) continue;
            if (own.ink_around(i, j) * 100 >= kBlank * other.ink_around(i, j)) continue;
            for (int y = j * kCell; y < std::min(bits.height, (j + 1) * kCell); ++y) {
                for (int k = 4 * i; k < 4 * i + 4; ++k) bits.row(y)[k] |= by_edges.row(y)[k];
            }
        }
    }
}

}  // namespace tool::reading

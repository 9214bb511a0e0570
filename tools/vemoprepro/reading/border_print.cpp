// The page is looked at in blocks. There is print in a block when its greys lie far apart once
// noise is smoothed out. A block is in the border when it and the eight blocks around it are all
// in the mask. The blocks around it are asked for because a border may reach a block's
// width into the page's own edge, where print is no mistake.
#include "reading/border_print.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kBlock = 16;  // pixels a side
constexpr int kCell = 4;    // pixels a side of what noise is smoothed over
// Print lies in the border when more than one block with print in so many does.
constexpr int kPrintedPerCovered = 50;

// Four neighbours at once, each two in halves of a word that hold their sums.
int mean_of_cell(const Page& grey, int x0, int y0) {
    static_assert(kCell == sizeof(std::uint32_t));
    std::uint32_t sums = 0;
    for (int y = y0; y < y0 + kCell; ++y) {
        std::uint32_t pixels;
        std::memcpy(&pixels, grey.row(y) + x0, sizeof pixels);
        sums += (pixels & 0x00FF00FF) + (pixels >> 8 & 0x00FF00FF);
    }
    return static_cast<int>((sums & 0xFFFF) + (sums >> 16)) / (kCell * kCell);
}

// Whether the darkest cell of the block is darker than its lightest by two fifths of the lightest.
bool is_printed(const Page& grey, int x0, int y0) {
    int darkest = 255, lightest = 0;
    for (int y = y0; y < y0 + kBlock; y += kCell) {
        for (int x = x0; x < x0 + kBlock; x += kCell) {
            const int mean = mean_of_cell(grey, x, y);
            darkest = std::min(darkest, mean);
            lightest = std::max(lightest, mean);
        }
    }
    return (lightest - darkest) * 5 >= lightest * 2;
}

// Which blocks are all in the mask.
class CoveredBlocks {
  public:
    explicit CoveredBlocks(const Page& mask) : across_(mask.width / kBlock) {
        const auto across = static_cast<std::size_t>(across_);
        for (int y = 0; y + kBlock <= mask.height; y += kBlock) {
            std::vector<std::uint16_t> all(across, 0xFFFF);
            for (int row = y; row < y + kBlock; ++row) {
                for (std::size_t i = 0; i < across; ++i) {
                    std::uint16_t bits;
                    std::memcpy(&bits, mask.row(row) + sizeof bits * i, sizeof bits);
                    all[i] &= bits;
                }
            }
            for (const std::uint16_t bits : all) covered_.push_back(bits == 0xFFFF);
        }
    }

    // The block and the eight around it.
    bool around(int x, int y) const {
        for (int j = y / kBlock - 1; j <= y / kBlock + 1; ++j) {
            for (int i = x / kBlock - 1; i <= x / kBlock + 1; ++i) {
                if (!covered_[static_cast<std::size_t>(j * across_ + i)]) return false;
            }
        }
        return true;
    }

  private:
    int across_;
    std::vector<bool> covered_;
};

// The corners of all blocks that have a block beside them on every side.
template <typename Take>
void for_blocks(const Page& grey, Take take) {
    for (int y = kBlock; y + 2 * kBlock <= grey.height; y += kBlock) {
        for (int x = kBlock; x + 2 * kBlock <= grey.width; x += kBlock) take(x, y);
    }
}

}  // namespace

bool covers_print(const Page& mask, const Page& grey) {
    const CoveredBlocks blocks(mask);
    int covered = 0, printed = 0;
    for_blocks(grey, [&](int x, int y) {
        covered += blocks.around(x, y) && is_printed(grey, x, y) ? 1 : 0;
    });
    if (covered == 0) return false;
    for_blocks(grey, [&](int x, int y) { printed += is_printed(grey, x, y) ? 1 : 0; });
    return covered * kPrintedPerCovered > printed;
}

}  // namespace tool::reading

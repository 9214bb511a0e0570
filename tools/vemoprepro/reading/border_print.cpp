// The page is looked at in blocks. There is print in a block when its greys lie far apart once
// noise is smoothed out. A block is in the border when it and the eight blocks around it are all
// in the mask. The blocks around it are asked for because a border may reach a block's
// width into the page's own edge, where print is no mistake.
//
// On a bitonal page the mask leaves white letters out, and the ink between them, which is no border
// since it is thin. They are the pieces of white of a letter's size that have the border on both
// sides, above and below or to the left and to the right, no farther away than they are large.
#include "reading/border_print.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "page/ink.h"
#include "page/negative.h"
#include "reading/coarse_bits.h"
#include "reading/components.h"

namespace tool::reading {
namespace {

constexpr int kBlock = 16;  // pixels a side
constexpr int kCell = 4;    // pixels a side of what noise is smoothed over
// Print lies in the border when more than one block with print in so many does.
constexpr int kPrintedPerCovered = 50;
// White letters, in heights of small letters: a border has holes of its own, few of that size.
constexpr double kLeastLetter = 0.7, kLargestLetter = 8;
constexpr int kFewLetters = 5;
// From this height on half of the pixels a side show letters as well.
constexpr double kLetterToHalve = 20;

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

// Whether the mask is set on both sides of [low, high), no farther away than that is long; `at`
// tells where it is set.
template <typename At>
bool lies_between(int low, int high, At at) {
    const auto is_set = [&](int start, int step) {
        for (int d = 0; d < high - low; ++d) {
            if (at(start + d * step)) return true;
        }
        return false;
    };
    return is_set(low - 1, -1) && is_set(high, 1);
}

bool lies_in(const Page& mask, const Component& white) {
    const auto at = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < mask.width && y < mask.height && is_ink(mask, x, y);
    };
    const int x = (white.x0 + white.x1) / 2, y = (white.y0 + white.y1) / 2;
    return lies_between(white.y0, white.y1, [&](int v) { return at(x, v); }) ||
           lies_between(white.x0, white.x1, [&](int u) { return at(u, y); });
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

bool covers_white_print(const Page& mask, const Page& bits, double letter) {
    const int halvings = letter >= kLetterToHalve ? 1 : 0;
    const Page border = coarse_bits(mask, halvings).bits;
    Page white = coarse_bits(bits, halvings).bits;
    complement(white);
    const std::vector<Component> pieces = components_of(white);
    const double height = letter / (1 << halvings);
    const auto is_letter = [&](const Component& piece) {
        const int size = std::max(piece.width(), piece.height());
        return size >= kLeastLetter * height && size <= kLargestLetter * height &&
               lies_in(border, piece);
    };
    return std::count_if(pieces.begin(), pieces.end(), is_letter) > kFewLetters;
}

}  // namespace tool::reading

#include "reading/lined_ink.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kSpeck = 2;           // pixels a side
constexpr int kLowestLetter = 4;    // pixels
constexpr int kUsualLetter = 10;    // pixels; of pages without any
constexpr int kLettersOfLarge = 8;  // a large piece is as long as so many letters are high
constexpr int kDarkPercent = 30;    // of a picture's box, and more; tables and staves have less

// What two thirds of the pieces do not exceed.
int letter_height(const std::vector<InkPiece>& pieces, const Page& page) {
    std::vector<int> heights;
    for (const InkPiece& piece : pieces) {
        const bool letter = piece.box.height >= kLowestLetter && piece.box.width >= kSpeck &&
                            piece.box.height < page.height / 6;
        if (letter) heights.push_back(piece.box.height);
    }
    if (heights.empty()) return kUsualLetter;
    const auto high = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() * 2 / 3);
    std::nth_element(heights.begin(), high, heights.end());
    return std::max(*high, kUsualLetter / 2);
}

bool touches_edge(const InkPiece& piece, const Page& page) {
    return piece.box.x <= 2 || piece.box.y <= 2 || piece.right() >= page.width - 2 ||
           piece.bottom() >= page.height - 2;
}

}  // namespace

Page lined_ink(const InkPieces& ink) {
    const int large = letter_height(ink.pieces(), ink.page()) * kLettersOfLarge;
    return ink.page_with([&](const InkPiece& piece) {
        const Box& box = piece.box;
        if (box.width <= kSpeck && box.height <= kSpeck) return false;
        if ((box.width > large || box.height > large) && touches_edge(piece, ink.page()))
            return false;
        return box.width <= large || box.height <= large ||
               piece.area * 100.0 <= kDarkPercent * 1.0 * box.width * box.height;
    });
}

}  // namespace tool::reading

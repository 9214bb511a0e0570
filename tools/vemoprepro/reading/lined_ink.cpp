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
int letter_height(const std::vector<Component>& pieces, const Page& page) {
    std::vector<int> heights;
    for (const Component& piece : pieces) {
        const bool letter = piece.height() >= kLowestLetter && piece.width() >= kSpeck &&
                            piece.height() < page.height / 6;
        if (letter) heights.push_back(piece.height());
    }
    if (heights.empty()) return kUsualLetter;
    const auto high = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() * 2 / 3);
    std::nth_element(heights.begin(), high, heights.end());
    return std::max(*high, kUsualLetter / 2);
}

bool touches_edge(const Component& piece, const Page& page) {
    return piece.x0 <= 2 || piece.y0 <= 2 || piece.x1 >= page.width - 2 ||
           piece.y1 >= page.height - 2;
}

}  // namespace

Page lined_ink(const InkPieces& ink) {
    const int large = letter_height(ink.pieces(), ink.page()) * kLettersOfLarge;
    return ink.page_with([&](const Component& piece) {
        const int width = piece.width(), height = piece.height();
        if (width <= kSpeck && height <= kSpeck) return false;
        if ((width > large || height > large) && touches_edge(piece, ink.page())) return false;
        return width <= large || height <= large ||
               piece.area * 100.0 <= kDarkPercent * 1.0 * width * height;
    });
}

}  // namespace tool::reading

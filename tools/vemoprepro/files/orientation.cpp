#include "files/orientation.h"

#include <algorithm>
#include <cstddef>

namespace tool::files {
namespace {

template <std::size_t kBytes>
void mirror_row(unsigned char* row, int width) {
    unsigned char* left = row;
    unsigned char* right = row + kBytes * static_cast<std::size_t>(width - 1);
    for (; left < right; left += kBytes, right -= kBytes) {
        std::swap_ranges(left, left + kBytes, right);
    }
}

}  // namespace

void orient(Page& page, int tag) {
    if (tag < 1 || tag > 8) return;
    constexpr bool kMirror[] = {false, true, false, true, true, false, true, false};
    constexpr int kQuarterTurns[] = {0, 0, 2, 2, 3, 1, 1, 3};
    page.quarter_turns = kQuarterTurns[tag - 1];
    if (!kMirror[tag - 1]) return;
    for (int y = 0; y < page.height; ++y) {
        if (page.kind == PageKind::kGrey) mirror_row<1>(page.row(y), page.width);
        if (page.kind == PageKind::kColour) mirror_row<3>(page.row(y), page.width);
    }
}

}  // namespace tool::files

#include "reading/followed_lines.h"

#include <algorithm>

namespace tool::reading {
namespace {

constexpr int kColumns = 16;
// The ink of a line that is not quite level, and its ragged edge, lie this far beside it.
constexpr int kBeside = 2;

}  // namespace

FollowedLines::FollowedLines(int width, int height)
    : height_(height),
      rows_((static_cast<std::size_t>(width) / kColumns + 1) * static_cast<std::size_t>(height)) {}

std::size_t FollowedLines::index_of(int x, int y) const {
    return static_cast<std::size_t>(x / kColumns) * static_cast<std::size_t>(height_) +
           static_cast<std::size_t>(y);
}

void FollowedLines::add(const RuledLine& line) {
    const int reach = line.thickness / 2 + kBeside;
    for (int x = line.x0; x < line.x1(); x = (x / kColumns + 1) * kColumns) {
        const int row = line.at(x).row();
        const int end = std::min(height_, row + reach + 1);
        for (int y = std::max(0, row - reach); y < end; ++y) rows_[index_of(x, y)] = true;
    }
}

}  // namespace tool::reading

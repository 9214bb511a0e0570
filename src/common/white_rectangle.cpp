// Largest white rectangle by column histograms: per column the height of the white run that ends in
// the current row, and the widest span around the column over which that height holds.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "common/basic_image.h"

namespace common {
namespace {

struct Columns {
    explicit Columns(int width)
        : height(static_cast<std::size_t>(width), 0),
          left(static_cast<std::size_t>(width), 0),
          right(static_cast<std::size_t>(width), width) {}

    std::vector<int> height;  // white rows that end in the current one
    std::vector<int> left;    // first column of the span
    std::vector<int> right;   // one past its last column
};

void add_row(const std::uint8_t* row, int width, Columns& columns) {
    const auto black = [row](int x) { return (row[x / 8] >> (7 - x % 8) & 1) != 0; };
    int bound = 0;
    for (int x = 0; x < width; ++x) {
        const auto i = static_cast<std::size_t>(x);
        if (black(x)) {
            columns.height[i] = 0;
            columns.left[i] = 0;
            bound = x + 1;
        } else {
            ++columns.height[i];
            columns.left[i] = std::max(columns.left[i], bound);
        }
    }
    bound = width;
    for (int x = width - 1; x >= 0; --x) {
        const auto i = static_cast<std::size_t>(x);
        if (black(x)) {
            columns.right[i] = width;
            bound = x;
        } else {
            columns.right[i] = std::min(columns.right[i], bound);
        }
    }
}

}  // namespace

WhiteRectangle BasicImage::findLargestWhiteRectangle() const {
    WhiteRectangle best;
    if (type_ != kBitonal || data_ == nullptr || width_ < 1 || height_ < 1) return best;
    Columns columns(width_);
    std::int64_t best_area = 0;
    for (int y = 0; y < height_; ++y) {
        add_row(getRow(y), width_, columns);
        for (std::size_t i = 0; i < static_cast<std::size_t>(width_); ++i) {
            const std::int64_t area =
                std::int64_t{columns.right[i] - columns.left[i]} * columns.height[i];
            if (area <= best_area) continue;
            best_area = area;
            best = {static_cast<double>(columns.right[i]), static_cast<double>(y + 1),
                    static_cast<double>(columns.left[i]),
                    static_cast<double>(y - columns.height[i] + 1)};
        }
    }
    return best;
}

}  // namespace common

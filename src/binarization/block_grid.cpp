#include "binarization/block_grid.h"

#include <algorithm>
#include <cstring>

#include "simd/block_fill.h"
#include "simd/block_rows.h"

namespace binarization {
namespace {

void copy(const BlockGrid& map, BlockGrid& out) {
    by_rows(
        out,
        [](std::uint8_t* to, const std::uint8_t* from, std::size_t width) {
            std::memcpy(to, from, width);
        },
        map);
}

bool has_threshold(const BlockGrid& map) {
    for (std::size_t y = 0; y < map.height(); ++y) {
        const std::uint8_t* row = map.row(y);
        unsigned found = 0;
        for (std::size_t x = 0; x < map.width(); ++x) found |= row[x] != 0 && row[x] != 255;
        if (found != 0) return true;
    }
    return false;
}

void fill_by_lowest(const BlockGrid& map, PaddedRows& scratch, BlockGrid& out) {
    const std::size_t width = map.width();
    const std::size_t last = map.height() - 1;
    std::uint8_t* above = scratch.row(0);
    std::memset(above, 255, width);
    for (std::size_t y = 0; y <= last; ++y) {
        simd::pull_forward(map.row(y), above, width, out.row(y));
        above = out.row(y);
    }
    for (std::size_t y = map.height(); y-- > 0;) {
        simd::pull_backward(map.row(y), out.row(std::min(y + 1, last)), width, out.row(y));
    }
}

// The cells of five rows that are not 0, column by column: their sum in the low 16 bits of a
// number, how many they are above. Filled cells count at once.
class FilledAround {
  public:
    static constexpr std::size_t kReach = 2;

    // `columns` has room for the width of the map and kReach numbers on either side.
    FilledAround(BlockGrid& map, std::uint32_t* columns)
        : map_(map), columns_(columns + kReach), width_(map.width()) {
        std::fill_n(columns, width_ + 2 * kReach, 0);
    }

    void add_row(std::size_t y) {
        const std::uint8_t* row = map_.row(y);
        for (std::size_t x = 0; x < width_; ++x) columns_[x] += counted(row[x]);
    }

    void take_row(std::size_t y) {
        const std::uint8_t* row = map_.row(y);
        for (std::size_t x = 0; x < width_; ++x) columns_[x] -= counted(row[x]);
    }

    // Gives (y, x), in the middle row, the mean of the cells that are not 0, if there are any.
    void fill(std::size_t y, std::size_t x) {
        const std::uint32_t* at = columns_ + x;
        const std::uint32_t all = at[-2] + at[-1] + at[0] + at[1] + at[2];
        if (all == 0) return;
        const auto mean = static_cast<std::uint8_t>((all & 0xFFFF) / (all >> 16));
        map_.row(y)[x] = mean;
        columns_[x] += counted(mean);
    }

  private:
    static std::uint32_t counted(std::uint8_t cell) { return cell | (cell != 0 ? 1U << 16 : 0U); }

    BlockGrid& map_;
    std::uint32_t* columns_;
    std::size_t width_;
};

// In raster order.
void fill_forward(BlockGrid& map, std::uint32_t* columns) {
    const std::size_t height = map.height();
    constexpr std::size_t kReach = FilledAround::kReach;
    FilledAround around(map, columns);
    for (std::size_t y = 0; y < std::min(kReach, height); ++y) around.add_row(y);
    for (std::size_t y = 0; y < height; ++y) {
        if (y + kReach < height) around.add_row(y + kReach);
        if (y > kReach) around.take_row(y - kReach - 1);
        std::uint8_t* row = map.row(y);
        for (std::size_t x = 0; x < map.width(); ++x) {
            if (row[x] == 0) around.fill(y, x);
        }
    }
}

// In the reverse of raster order.
void fill_backward(BlockGrid& map, std::uint32_t* columns) {
    const std::size_t height = map.height();
    constexpr std::size_t kReach = FilledAround::kReach;
    FilledAround around(map, columns);
    for (std::size_t i = 0; i < std::min(kReach, height); ++i) around.add_row(height - 1 - i);
    for (std::size_t y = height; y-- > 0;) {
        if (y >= kReach) around.add_row(y - kReach);
        if (y + kReach + 1 < height) around.take_row(y + kReach + 1);
        std::uint8_t* row = map.row(y);
        for (std::size_t x = map.width(); x-- > 0;) {
            if (row[x] == 0) around.fill(y, x);
        }
    }
}

bool has_empty(const BlockGrid& map) {
    for (std::size_t y = 0; y < map.height(); ++y) {
        if (std::memchr(map.row(y), 0, map.width()) != nullptr) return true;
    }
    return false;
}

void fill_by_mean(const BlockGrid& map, GridScratch& scratch, BlockGrid& out) {
    constexpr int kSpreads = 8;
    copy(map, out);
    for (int i = 0; i < kSpreads; ++i) spread(out, scratch.rows);
    if (has_empty(out)) fill_forward(out, scratch.columns.data());
    if (has_empty(out)) fill_backward(out, scratch.columns.data());
}

}  // namespace

void spread(BlockGrid& map, PaddedRows& saved) {
    by_inner_rows(map, saved, [&](const simd::ThreeRows& around, std::uint8_t* row) {
        simd::spread_row(around, map.width(), row);
    });
}

void fill(const BlockGrid& map, bool by_mean, GridScratch& scratch, BlockGrid& out) {
    if (by_mean) {
        fill_by_mean(map, scratch, out);
    } else if (has_threshold(map)) {
        fill_by_lowest(map, scratch.rows, out);
    } else {
        copy(map, out);
    }
}

}  // namespace binarization

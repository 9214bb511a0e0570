#include "binarization/block_grid.h"

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

void fill_by_lowest(const BlockGrid& map, PaddedRows& saved, BlockGrid& out) {
    const std::size_t width = map.width();
    const std::size_t last = map.height() - 1;
    std::uint8_t* above = saved.row(0);
    std::memset(above, 255, width);
    for (std::size_t y = 0; y <= last; ++y) {
        simd::pull_forward(map.row(y), above, width, out.row(y));
        above = out.row(y);
    }
    for (std::size_t y = map.height(); y-- > 0;) {
        simd::pull_backward(map.row(y), out.row(std::min(y + 1, last)), width, out.row(y));
    }
}

// The mean of the cells around (y, x), up to two away, that are not 0.
std::uint8_t mean_around(const BlockGrid& map, std::size_t y, std::size_t x) {
    constexpr std::size_t kReach = 2;
    const std::size_t y1 = std::min(y + kReach, map.height() - 1);
    const std::size_t x0 = x < kReach ? 0 : x - kReach;
    const std::size_t x1 = std::min(x + kReach, map.width() - 1);
    unsigned sum = 0;
    unsigned count = 0;
    for (std::size_t i = y < kReach ? 0 : y - kReach; i <= y1; ++i) {
        for (std::size_t j = x0; j <= x1; ++j) {
            sum += map.row(i)[j];
            count += map.row(i)[j] != 0 ? 1U : 0U;
        }
    }
    return static_cast<std::uint8_t>(count == 0 ? 0 : sum / count);
}

void fill_by_mean(const BlockGrid& map, PaddedRows& saved, BlockGrid& out) {
    constexpr int kSpreads = 8;
    copy(map, out);
    for (int i = 0; i < kSpreads; ++i) spread(out, saved);
    const auto fill_cell = [&](std::size_t y, std::size_t x) {
        if (out.row(y)[x] == 0) out.row(y)[x] = mean_around(out, y, x);
    };
    for (std::size_t y = 0; y < out.height(); ++y) {
        for (std::size_t x = 0; x < out.width(); ++x) fill_cell(y, x);
    }
    for (std::size_t y = out.height(); y-- > 0;) {
        for (std::size_t x = out.width(); x-- > 0;) fill_cell(y, x);
    }
}

}  // namespace

void spread(BlockGrid& map, PaddedRows& saved) {
    by_inner_rows(map, saved, [&](const simd::ThreeRows& around, std::uint8_t* row) {
        simd::spread_row(around, map.width(), row);
    });
}

void fill(const BlockGrid& map, bool by_mean, PaddedRows& saved, BlockGrid& out) {
    if (by_mean) {
        fill_by_mean(map, saved, out);
    } else if (has_threshold(map)) {
        fill_by_lowest(map, saved, out);
    } else {
        copy(map, out);
    }
}

}  // namespace binarization

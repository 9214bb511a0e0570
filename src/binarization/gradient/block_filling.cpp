#include "binarization/gradient/block_filling.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "simd/blocks/block_rows.h"

namespace binarization {
namespace {

void copy(const BlockMap& map, BlockMap& out) {
    by_rows(
        out,
        [](std::uint8_t* to, const std::uint8_t* from, std::size_t width) {
            std::memcpy(to, from, width);
        },
        map);
}

bool has_threshold(const BlockMap& map) {
    for (std::size_t y = 0; y < map.height(); ++y) {
        const std::uint8_t* row = map.row(y);
        unsigned found = 0;
        for (std::size_t x = 0; x < map.width(); ++x) found |= row[x] != 0 && row[x] != 255;
        if (found != 0) return true;
    }
    return false;
}

// 2^20 / count, rounded up or 1 above. With sums of at most 255 * count the product is below 2^32,
// and too large by less than 6375 of 2^20, which is less than the 1 / 25 by which a quotient stays
// below the next whole number.
constexpr int kMostAround = 25;
constexpr int kReciprocalBits = 20;
constexpr std::array<std::uint32_t, kMostAround + 1> kReciprocals = [] {
    std::array<std::uint32_t, kMostAround + 1> values{};
    for (std::uint32_t count = 1; count <= kMostAround; ++count) {
        values[count] = (std::uint32_t{1} << kReciprocalBits) / count + 1;
    }
    return values;
}();

// A cell as columns count it: its value in the low 16 bits, above them 1 where it is not 0.
std::uint32_t counted(std::uint8_t cell) {
    return cell | (cell != 0 ? 1U << 16 : 0U);
}

// Empty cells of a row, one after the other kStep apart from x on, become the mean of the cells
// around them that are not 0. columns[x] has those of five rows counted, the cells of this row in
// their middle; there are two more on either side. Cells filled count for the next.
template <std::ptrdiff_t kStep>
void fill_row_by_means(std::uint8_t* row, std::ptrdiff_t x, std::size_t cells,
                       std::uint32_t* columns) {
    std::uint32_t two_before = 0;
    std::uint32_t before = 0;
    for (; cells > 0; --cells, x += kStep) {
        std::uint32_t here = columns[x];
        const std::uint32_t all =
            two_before + before + (here + columns[x + kStep] + columns[x + 2 * kStep]);
        if (row[x] == 0 && all != 0) {
            const std::uint32_t mean = (all & 0xFFFF) * kReciprocals[all >> 16] >> kReciprocalBits;
            row[x] = static_cast<std::uint8_t>(mean);
            here += mean | 1U << 16;
            columns[x] = here;
        }
        two_before = before;
        before = here;
    }
}

void add_row(const std::uint8_t* row, std::size_t width, std::uint32_t* columns) {
    for (std::size_t x = 0; x < width; ++x) columns[x] += counted(row[x]);
}

void take_row(const std::uint8_t* row, std::size_t width, std::uint32_t* columns) {
    for (std::size_t x = 0; x < width; ++x) columns[x] -= counted(row[x]);
}

// In raster order, or in the reverse of it.
void fill_means(BlockMap& map, bool forward, frame::Buffer<std::uint32_t>& space) {
    const std::size_t height = map.height();
    const std::size_t width = map.width();
    std::fill(space.begin(), space.end(), 0);
    std::uint32_t* columns = space.data() + FillingSpace::kReach;
    const auto row = [&](std::size_t i) { return map.row(forward ? i : height - 1 - i); };
    constexpr std::size_t kReach = FillingSpace::kReach;
    for (std::size_t i = 0; i < std::min(kReach, height); ++i) add_row(row(i), width, columns);
    for (std::size_t i = 0; i < height; ++i) {
        if (i + kReach < height) add_row(row(i + kReach), width, columns);
        if (i > kReach) take_row(row(i - kReach - 1), width, columns);
        if (forward) {
            fill_row_by_means<1>(row(i), 0, width, columns);
        } else {
            fill_row_by_means<-1>(row(i), static_cast<std::ptrdiff_t>(width) - 1, width, columns);
        }
    }
}

bool has_empty(const BlockMap& map) {
    for (std::size_t y = 0; y < map.height(); ++y) {
        if (std::memchr(map.row(y), 0, map.width()) != nullptr) return true;
    }
    return false;
}

void fill_by_mean(const BlockMap& map, FillingSpace& space, BlockMap& out) {
    constexpr int kTimes = 8;
    copy(map, out);
    for (int i = 0; i < kTimes; ++i) fill_from_neighbours(out, space.rows);
    for (const bool forward : {true, false}) {
        if (has_empty(out)) fill_means(out, forward, space.columns);
    }
}

}  // namespace

void fill_from_neighbours(BlockMap& map, PaddedRows& saved) {
    by_inner_rows(map, saved, [&](const simd::ThreeRows& around, std::uint8_t* row) {
        simd::fill_empty_row(around, map.width(), row);
    });
}

void fill(const BlockMap& map, bool by_mean, FillingSpace& space, BlockMap& out) {
    if (by_mean) {
        fill_by_mean(map, space, out);
    } else if (has_threshold(map)) {
        propagate_lowest(map, space.rows, out);
    } else {
        copy(map, out);
    }
}

}  // namespace binarization

// Rows are walked by vector scans that stop at the first pixel. Columns are walked side by side,
// row after row, each with a bit that is set as long as it has met nothing but white. A column that
// is white all the way down need not be walked up again. The bits are those of a chunk of columns
// on the stack: these functions allocate nothing, because they have no way to fail.
#include "cleaning/borders/border_colour.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "simd/pixels/white_scan.h"

namespace cleaning {
namespace {

using simd::PixelSums;

constexpr std::size_t kChunk = 4096;  // columns
using ColumnBits = std::array<std::uint64_t, kChunk / 64>;

struct Pixels {
    const std::uint8_t* data;
    std::int32_t height;
    std::size_t width;
    std::ptrdiff_t stride;
    std::size_t pixel_bytes;

    const std::uint8_t* row(std::ptrdiff_t y) const { return data + y * stride; }
};

// The first pixel from either end of the row. The walk from the left passes over `left_margin`
// columns at both ends.
void add_row_ends(const Pixels& page, std::ptrdiff_t y, std::size_t left_margin, PixelSums& sums) {
    const std::size_t bytes = page.pixel_bytes;
    const std::uint8_t* const row = page.row(y);
    if (page.width > 2 * left_margin) {
        const std::uint8_t* const begin = row + left_margin * bytes;
        const std::size_t count = (page.width - 2 * left_margin) * bytes;
        const std::size_t first = simd::first_not_white(begin, count);
        if (first < count) sums.add(begin + first / bytes * bytes, bytes);
    }
    const std::size_t last = simd::last_not_white(row, page.width * bytes);
    if (last < page.width * bytes) sums.add(row + last / bytes * bytes, bytes);
}

void add_column_ends(const Pixels& page, PixelSums& sums) {
    for (std::size_t x = 0; x < page.width; x += kChunk) {
        const std::size_t columns = std::min(kChunk, page.width - x);
        ColumnBits all{};
        for (std::size_t i = 0; i < columns; ++i) all[i / 64] |= std::uint64_t{1} << (i % 64);
        const auto take = [&](std::ptrdiff_t y, ColumnBits& pending) {
            return simd::take_not_white(page.row(y) + x * page.pixel_bytes, columns,
                                        page.pixel_bytes, pending.data(), sums);
        };
        ColumnBits pending = all;
        for (std::ptrdiff_t y = 0; y < page.height && take(y, pending); ++y) continue;
        for (std::size_t i = 0; i < pending.size(); ++i) pending[i] ^= all[i];
        for (std::ptrdiff_t y = page.height - 1; y >= 0 && take(y, pending); --y) continue;
    }
}

}  // namespace

std::uint8_t inner_grey(common::GreyView page) {
    if (page.width < 1) return 255;
    const Pixels pixels{page.data, page.height, static_cast<std::size_t>(page.width), page.stride,
                        1};
    PixelSums sums;
    for (std::ptrdiff_t y = 1; y < page.height - 1; ++y) add_row_ends(pixels, y, 1, sums);
    add_column_ends(pixels, sums);
    if (sums.count == 0) return 255;
    return static_cast<std::uint8_t>(sums.bytes[0] / sums.count);
}

Colour inner_colour(common::ColourView page) {
    if (page.width < 1) return {};
    const Pixels pixels{page.data, page.height, static_cast<std::size_t>(page.width), page.stride,
                        3};
    PixelSums sums;
    for (std::ptrdiff_t y = 0; y < page.height; ++y) add_row_ends(pixels, y, 0, sums);
    add_column_ends(pixels, sums);
    Colour mean{};
    if (sums.count == 0) return mean;
    for (std::size_t i = 0; i < 3; ++i) {
        mean.bytes[i] = static_cast<std::uint8_t>(sums.bytes[i] / sums.count);
    }
    return mean;
}

void replace_grey(common::MutableGreyView page, std::uint8_t from, std::uint8_t to) {
    if (page.width < 1) return;
    for (std::ptrdiff_t y = 0; y < page.height; ++y) {
        simd::replace_bytes(page.row(y), static_cast<std::size_t>(page.width), from, to);
    }
}

void replace_colour(common::MutableColourView page, const std::uint8_t* from,
                    const std::uint8_t* to) {
    if (page.width < 1) return;
    for (std::ptrdiff_t y = 0; y < page.height; ++y) {
        simd::replace_triples(page.row(y), static_cast<std::size_t>(page.width), from, to);
    }
}

}  // namespace cleaning

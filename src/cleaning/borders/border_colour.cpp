// Every row and every column is searched from both of its ends for the first pixel that is not
// white. Along a row that is a vector scan. The columns are searched side by side, row after row,
// each with a bit that stays set as long as the column has shown nothing but white; a column that
// is white all the way down need not be searched from below. The bits are those of a chunk of
// columns and lie on the stack: nothing is allocated here, because the results leave no room for a
// failure.
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

template <common::PixelKind kKind>
using Page = common::View<const std::uint8_t, kKind>;

template <common::PixelKind kKind>
constexpr std::size_t kPixelBytes = kKind == common::PixelKind::kGrey ? 1 : 3;

// Adds the first pixel other than white from either end of row y. The search from the left leaves
// out `left_margin` columns at both ends of the row.
template <common::PixelKind kKind>
void add_row_ends(Page<kKind> page, std::ptrdiff_t y, std::size_t left_margin, PixelSums& sums) {
    constexpr std::size_t kBytes = kPixelBytes<kKind>;
    const auto width = static_cast<std::size_t>(page.width);
    const std::uint8_t* const row = page.row(y);
    if (width > 2 * left_margin) {
        const std::uint8_t* const begin = row + left_margin * kBytes;
        const std::size_t count = (width - 2 * left_margin) * kBytes;
        const std::size_t first = simd::first_not_white(begin, count);
        if (first < count) sums.add(begin + first / kBytes * kBytes, kBytes);
    }
    const std::size_t last = simd::last_not_white(row, width * kBytes);
    if (last < width * kBytes) sums.add(row + last / kBytes * kBytes, kBytes);
}

template <common::PixelKind kKind>
void add_column_ends(Page<kKind> page, PixelSums& sums) {
    const auto width = static_cast<std::size_t>(page.width);
    for (std::size_t x = 0; x < width; x += kChunk) {
        const std::size_t columns = std::min(kChunk, width - x);
        ColumnBits all{};
        for (std::size_t i = 0; i < columns; ++i) all[i / 64] |= std::uint64_t{1} << (i % 64);
        const auto take = [&](std::ptrdiff_t y, ColumnBits& pending) {
            return simd::take_not_white(page.row(y) + x * kPixelBytes<kKind>, columns,
                                        kPixelBytes<kKind>, pending.data(), sums);
        };
        ColumnBits pending = all;
        for (std::ptrdiff_t y = 0; y < page.height && take(y, pending); ++y) continue;
        for (std::size_t i = 0; i < pending.size(); ++i) pending[i] ^= all[i];
        for (std::ptrdiff_t y = page.height - 1; y >= 0 && take(y, pending); --y) continue;
    }
}

}  // namespace

std::uint8_t inner_grey(common::GreyView page) {
    if (page.height < 1 || page.width < 1) return 255;
    PixelSums sums;
    for (std::ptrdiff_t y = 1; y < page.height - 1; ++y) add_row_ends(page, y, 1, sums);
    add_column_ends(page, sums);
    if (sums.count == 0) return 255;
    return static_cast<std::uint8_t>(sums.bytes[0] / sums.count);
}

Colour inner_colour(common::ColourView page) {
    if (page.height < 1 || page.width < 1) return {};
    PixelSums sums;
    for (std::ptrdiff_t y = 0; y < page.height; ++y) add_row_ends(page, y, 0, sums);
    add_column_ends(page, sums);
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

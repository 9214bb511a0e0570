// Columns of as many rows are summed first, then neighbouring sums. Bitonal pages are made
// smaller by no more than three mostly: their squares are counted eight at once, by tables.
#include "reading/small_grey.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

// A row's pixels of eight columns each, one per byte, so that columns are summed eight at once.
std::array<std::uint64_t, 256> make_pixels_of_bytes() {
    std::array<std::uint64_t, 256> pixels{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        std::array<unsigned char, 8> one_each{};
        for (unsigned bit = 0; bit < 8; ++bit) one_each[bit] = (byte & (0x80U >> bit)) != 0;
        std::memcpy(&pixels[byte], one_each.data(), sizeof pixels[byte]);
    }
    return pixels;
}

// The columns of `by` rows, summed; of a bitonal page their white pixels, as greys.
void sum_columns(const Page& page, int y0, int by, std::vector<std::uint16_t>& sums) {
    std::fill(sums.begin(), sums.end(), std::uint16_t{0});
    if (page.kind != PageKind::kBitonal) {
        for (int y = y0; y < y0 + by; ++y) {
            const unsigned char* row = page.row(y);
            for (std::size_t i = 0; i < sums.size(); ++i) {
                sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
            }
        }
        return;
    }
    static const std::array<std::uint64_t, 256> kPixels = make_pixels_of_bytes();
    for (std::size_t i = 0; i < page.stride(); ++i) {
        std::uint64_t packed = 0;
        for (int y = y0; y < y0 + by; ++y) packed += kPixels[page.row(y)[i]];
        std::array<unsigned char, 8> ink;
        std::memcpy(ink.data(), &packed, sizeof packed);
        for (std::size_t bit = 0; bit < 8; ++bit) {
            sums[i * 8 + bit] = static_cast<std::uint16_t>((by - ink[bit]) * 255);
        }
    }
}

// kBy: 0 for a number that is known at run time only.
template <int kBy, bool kColour>
void average(const std::uint16_t* from, int by, int width, unsigned char* row) {
    constexpr int kOne = 1 << 16;
    if (kBy != 0) by = kBy;
    const auto share = static_cast<unsigned>(kOne / (by * by) + 1);
    for (int x = 0; x < width; ++x) {
        unsigned sum = 0;
        for (int i = 0; i < by; ++i) {
            const std::uint16_t* at = from + (kColour ? 3 : 1) * (x * by + i);
            sum += kColour ? (at[0] + 2U * at[1] + at[2]) / 4 : at[0];
        }
        row[x] = static_cast<unsigned char>(sum * share / kOne);
    }
}

template <bool kColour>
void average_row(const std::uint16_t* sums, int by, int width, unsigned char* row) {
    switch (by) {
        case 2:
            return average<2, kColour>(sums, by, width, row);
        case 3:
            return average<3, kColour>(sums, by, width, row);
        default:
            return average<0, kColour>(sums, by, width, row);
    }
}

// Ink in four squares of bits side by side, a byte each, by the bits of one of their rows.
std::vector<std::uint32_t> make_ink_of_squares(int by) {
    std::vector<std::uint32_t> table(std::size_t{1} << 4 * by);
    for (std::size_t bits = 0; bits < table.size(); ++bits) {
        std::array<unsigned char, 4> ink{};
        for (int i = 0; i < 4 * by; ++i) {
            ink[static_cast<std::size_t>(i / by)] += bits >> (4 * by - 1 - i) & 1;
        }
        std::memcpy(&table[bits], ink.data(), sizeof table[bits]);
    }
    return table;
}

// Eight squares take kBy bytes of a row.
template <unsigned kBy>
void average_bits(const Page& page, Page& grey) {
    const std::vector<std::uint32_t> ink_of = make_ink_of_squares(kBy);
    constexpr unsigned kShare = (1U << 16) / (kBy * kBy) + 1;
    std::array<unsigned char, kBy * kBy + 1> grey_of{};
    for (unsigned ink = 0; ink < grey_of.size(); ++ink) {
        grey_of[ink] = static_cast<unsigned char>((kBy * kBy - ink) * 255 * kShare >> 16);
    }
    const std::size_t whole =
        std::min(static_cast<std::size_t>(grey.width) / 8, page.stride() / kBy);
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char* rows = page.row(y * static_cast<int>(kBy));
        unsigned char* to = grey.row(y);
        const auto take = [&](std::size_t first, std::size_t end, std::size_t squares) {
            std::array<std::uint32_t, 2> halves{};
            for (std::size_t j = 0; j < kBy; ++j) {
                unsigned bits = 0;
                for (std::size_t i = first; i < first + kBy; ++i) {
                    bits = bits << 8 | (i < end ? rows[j * page.stride() + i] : 0U);
                }
                halves[0] += ink_of[bits >> 4 * kBy];
                halves[1] += ink_of[bits & ((1U << 4 * kBy) - 1)];
            }
            std::array<unsigned char, 8> ink;
            std::memcpy(ink.data(), halves.data(), sizeof ink);
            for (std::size_t i = 0; i < squares; ++i) *to++ = grey_of[ink[i]];
        };
        for (std::size_t group = 0; group < whole; ++group) {
            take(group * kBy, group * kBy + kBy, 8);
        }
        take(whole * kBy, page.stride(), static_cast<std::size_t>(grey.width) - 8 * whole);
    }
}

bool average_bits(const Page& page, int by, Page& grey) {
    if (page.kind != PageKind::kBitonal || page.height < by) return false;
    switch (by) {
        case 1:
            average_bits<1>(page, grey);
            return true;
        case 2:
            average_bits<2>(page, grey);
            return true;
        case 3:
            average_bits<3>(page, grey);
            return true;
        default:
            return false;
    }
}

// As average() does it, for squares of one pixel.
void copy_luminance(const Page& colour, Page& grey) {
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char* from = colour.row(y);
        unsigned char* to = grey.row(y);
        for (int x = 0; x < grey.width; ++x, from += 3) {
            to[x] = static_cast<unsigned char>((from[0] + 2 * from[1] + from[2]) / 4);
        }
    }
}

}  // namespace

Page small_grey(const Page& page, int by) {
    if (by == 1 && page.kind == PageKind::kGrey) return copy_of(page);
    const Resolution dpi{page.dpi.x / by, page.dpi.y / by};
    Page grey = make_page(PageKind::kGrey, std::max(1, page.width / by),
                          std::max(1, page.height / by), dpi);
    if (average_bits(page, by, grey)) return grey;
    if (by == 1) {
        copy_luminance(page, grey);
        return grey;
    }
    std::vector<std::uint16_t> sums(page.stride() * (page.kind == PageKind::kBitonal ? 8 : 1));
    for (int y = 0; y < grey.height; ++y) {
        sum_columns(page, y * by, std::min(by, page.height), sums);
        if (page.kind == PageKind::kColour) {
            average_row<true>(sums.data(), by, grey.width, grey.row(y));
        } else {
            average_row<false>(sums.data(), by, grey.width, grey.row(y));
        }
    }
    return grey;
}

}  // namespace tool::reading

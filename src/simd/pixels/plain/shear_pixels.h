// Plain forms of shear_pixels.h.
#pragma once

#include <cstring>

#include "simd/pixels/shear_pixels.h"

namespace simd::plain {

inline constexpr int kFieldPlaces[] = {10, 5, 0};

inline unsigned fields_of(const std::uint8_t* pixel) {
    return (static_cast<unsigned>(pixel[0]) << 8 | pixel[1]) & 0x7FFF;
}

inline void store_fields(unsigned fields, std::uint8_t* pixel) {
    pixel[0] = static_cast<std::uint8_t>(fields >> 8);
    pixel[1] = static_cast<std::uint8_t>(fields);
}

// The bytes that are sheared together.
inline std::size_t unit_bytes(ShearedChannels channels) {
    return channels == ShearedChannels::kBytes ? 1 : 2;
}

// A byte, or a number of fields, less the fraction that it gives, plus what the one before gives.
inline void shear_unit(ShearedChannels channels, const std::uint8_t* unit,
                       const std::uint8_t* before, unsigned fraction, std::uint8_t* out) {
    if (channels == ShearedChannels::kBytes) {
        *out = static_cast<std::uint8_t>(*unit + fraction * *before / 256 - fraction * *unit / 256);
        return;
    }
    unsigned fields = 0;
    for (const int place : kFieldPlaces) {
        const unsigned value = fields_of(unit) >> place & 31;
        const unsigned other = fields_of(before) >> place & 31;
        fields |= (value + fraction * other / 32 - fraction * value / 32) << place;
    }
    store_fields(fields, out);
}

inline void shear_row(const ShearFormat& format, std::uint8_t* row, std::size_t count,
                      std::size_t shift, std::uint8_t fraction) {
    const std::size_t pixel = format.pixel_bytes;
    const std::size_t unit = unit_bytes(format.channels);
    for (std::size_t at = count * pixel; at > 0;) {
        at -= unit;
        const bool first = at < pixel;
        shear_unit(format.channels, row + at, row + (first ? at : at - pixel), first ? 0 : fraction,
                   row + at + shift * pixel);
    }
}

inline std::int64_t column_shift(const ColumnMoves& moves, std::size_t byte) {
    const std::size_t block = byte / ColumnMoves::kBlock;
    const auto further =
        static_cast<std::int8_t>(moves.shifts[byte] - moves.shifts[block * ColumnMoves::kBlock]);
    return moves.block_shifts[block] + std::int64_t{further};
}

// The place beside an end of a column.
inline void shear_end(ShearedChannels channels, const std::uint8_t* end,
                      const std::uint8_t* background, std::uint8_t* out) {
    if (channels == ShearedChannels::kBytes) {
        *out = static_cast<std::uint8_t>((*end + *background) >> 1);
    } else {
        std::memcpy(out, background, 2);
    }
}

inline void shear_columns(ShearedChannels channels, const ColumnShear& image,
                          const ColumnMoves& moves) {
    const std::size_t bytes = unit_bytes(channels);
    const auto last = static_cast<std::int64_t>(image.height) - 1;
    for (std::size_t x = 0; x < image.row_bytes; x += bytes) {
        const auto at = [&](std::int64_t y) { return image.pixels + y * image.stride + x; };
        for (auto y = static_cast<std::int64_t>(image.out_height); y-- > 0;) {
            const std::int64_t k = y - column_shift(moves, x);
            if (k == -1) {
                shear_end(channels, at(0), moves.background + x, at(y));
            } else if (k == last + 1) {
                shear_end(channels, at(last), moves.background + x, at(y));
            } else if (k < 0 || k > last) {
                std::memcpy(at(y), moves.background + x, bytes);
            } else {
                shear_unit(channels, at(k), at(k == 0 ? 0 : k - 1), k == 0 ? 0 : moves.fractions[x],
                           at(y));
            }
        }
    }
}

}  // namespace simd::plain

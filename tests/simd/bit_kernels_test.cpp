// The kernels on bits, and those that turn pixels, against plain forms. (Those that find runs and
// slide windows over bits are tested by the cleaning toolkit, on every instruction set.)
#include <cstring>

#include "models/pixels.h"
#include "simd/bits/colour_changes.h"
#include "simd/bits/count_bits.h"
#include "simd/bits/shift_bits.h"
#include "simd/bits/turn_bits.h"
#include "simd/pixels/turn_pixels.h"
#include "support/kernel_frame.h"

namespace {

using support::Bytes;
using support::expect_twins;
using support::on_every_width;
using support::Random;
using support::Row;

TEST(CountBits, OfEveryLength) {
    on_every_width(0, 300, [](std::size_t size, Random& random) {
        Row bytes(size, random);
        ASSERT_EQ(simd::count_bits(bytes, size), simd::plain::count_bits(bytes, size));
    });
}

TEST(ColourChanges, OfEveryWidth) {
    on_every_width(1, 3 * 512 + 64, [](std::size_t width, Random& random) {
        if (width > 700 && width % 64 > 2) return;
        const int rows = static_cast<int>(width) % simd::kMaxChangeRows + 1;
        const bool row_below = width % 3 == 0;
        const std::size_t bytes = (width + 7) / 8;
        const std::size_t stride = bytes + width % 5;
        const auto rows_read = static_cast<std::size_t>(rows + (row_below ? 1 : 0));
        Row page((rows_read - 1) * stride + bytes, random);
        expect_twins(4, bytes, random, [&](bool fast, const auto& out) {
            (fast ? simd::count_changes : simd::plain::count_changes)(
                page, static_cast<std::ptrdiff_t>(stride), rows, row_below,
                static_cast<std::int32_t>(width), {out[0], out[1], out[2], out[3]});
        });
    });
}

// One bit at a time; a positive shift goes to the right.
Bytes moved(Row& src, std::size_t size, std::int64_t shift, std::size_t dst_bytes) {
    Bytes dst(dst_bytes, 0);
    for (std::size_t bit = 0; bit < size * 8; ++bit) {
        const std::int64_t to = static_cast<std::int64_t>(bit) + shift;
        const bool ink = (src[bit / 8] >> (7 - bit % 8) & 1) != 0;
        if (!ink || to < 0 || to >= static_cast<std::int64_t>(dst_bytes * 8)) continue;
        dst[static_cast<std::size_t>(to / 8)] |= static_cast<std::uint8_t>(0x80 >> to % 8);
    }
    return dst;
}

void check_shift(Row& src, std::size_t size, unsigned bits, std::size_t dst_bytes, Random& random) {
    expect_twins(2, dst_bytes, random, [&](bool fast, const auto& out) {
        for (const int side : {0, 1}) {
            std::uint8_t* const dst = out[static_cast<std::size_t>(side)];
            const std::int64_t shift = side == 0 ? std::int64_t{bits} : -std::int64_t{bits};
            const Bytes expected = moved(src, size, shift, dst_bytes);
            if (fast) {
                (side == 0 ? simd::shift_right : simd::shift_left)(src, size, bits, dst, dst_bytes);
            } else {
                std::copy(expected.begin(), expected.end(), dst);
            }
        }
    });
}

TEST(ShiftBits, EveryLengthAndRemainder) {
    on_every_width(0, [](std::size_t length, Random& random) {
        Row src(length, random);
        const auto bits = static_cast<unsigned>(length % 8);
        check_shift(src, length, bits, length, random);
        check_shift(src, length, (bits + 5) % 8 + 8 * (bits % 3), length + 1, random);
        check_shift(src, length, bits + 3, length == 0 ? 0 : length - 1, random);
    });
}

TEST(ShiftBits, RowsOfDifferentSizes) {
    on_every_width(70, 70, [](std::size_t length, Random& random) {
        Row src(length, random);
        for (const std::size_t dst_bytes : {0U, 1U, 2U, 63U, 69U, 71U, 140U}) {
            for (unsigned bits = 0; bits <= 1200; bits += bits < 40 ? 1 : 57)
                check_shift(src, length, bits, dst_bytes, random);
            check_shift(src, length, 4'294'967'295U, dst_bytes, random);
        }
        check_shift(src, 0, 3, 40, random);
    });
}

// The rows too few or many for reading beside a row.
TEST(TurnBits, HalfTurnOfEveryLength) {
    on_every_width(1, 8 * support::kLongestRow, [](std::size_t width, Random& random) {
        if (width >= 160 && width % 5 != 0) return;
        const int columns = static_cast<int>(width);
        const int rows = 1 + columns % 5;
        const int stride = (columns + 7) / 8 + columns / 5 % 3 * 41;
        const std::size_t size = model::offset(rows, stride, 0);
        Row src(size, random);
        const auto call = [&](bool fast, const auto& out) {
            if (fast) {
                simd::half_turn_bits(src, static_cast<std::size_t>(rows), width,
                                     static_cast<std::size_t>(stride), out[0]);
                return;
            }
            std::fill_n(out[0], size, std::uint8_t{0});
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < columns; ++x)
                    model::set_bit(out[0], stride, columns - 1 - x, rows - 1 - y,
                                   model::get_bit(src, stride, x, y));
        };
        expect_twins(1, size, random, call);
    });
}

TEST(TurnPixels, ReversalOfEveryLength) {
    on_every_width(0, 70, [](std::size_t count, Random& random) {
        for (std::size_t bytes = 1; bytes <= 5; ++bytes) {
            Row src(count * bytes, random);
            expect_twins(1, count * bytes, random, [&](bool fast, const auto& out) {
                if (fast) return simd::reverse_pixels(src, count, bytes, out[0]);
                for (std::size_t i = 0; i < count; ++i)
                    std::memcpy(out[0] + (count - 1 - i) * bytes, src + i * bytes, bytes);
            });
        }
    });
}

// Blocks that overlap the ones before, pixels loaded from before the block, stores cut at the end:
// all of it depends on the size alone.
TEST(TurnPixels, ExchangeOfEverySmallSize) {
    on_every_width(1, 24, [](std::size_t columns, Random& random) {
        for (std::size_t bytes = 1; bytes <= 4; ++bytes) {
            for (std::size_t rows = 1; rows <= 70; rows += rows < 24 ? 1 : 9) {
                const std::size_t size = rows * columns * bytes;
                Row src(size, random);
                expect_twins(1, size, random, [&](bool fast, const auto& out) {
                    if (fast) {
                        return simd::transpose_pixels(
                            src, static_cast<std::ptrdiff_t>(columns * bytes), rows, columns, bytes,
                            out[0], static_cast<std::ptrdiff_t>(rows * bytes));
                    }
                    for (std::size_t i = 0; i < rows * columns; ++i)
                        std::memcpy(out[0] + (i % columns * rows + i / columns) * bytes,
                                    src + i * bytes, bytes);
                });
            }
        }
    });
}

}  // namespace

#include "simd/bits/plain/turn_bits.h"

#include "support/kernel_frame.h"

namespace simd {

// Tiles are cut at 512 rows and at the vectors' 64 to 512 columns; both ways up.
TEST(TurnBits, ExchangeOfEverySize) {
    on_every_width(1, 640, [](std::size_t columns, Random& random) {
        if (columns % 64 > 2 && columns % 29 != 0) return;
        const std::size_t rows = columns % 3 == 0   ? 500 + columns % 40
                                 : columns % 3 == 1 ? 1 + columns % 150
                                                    : 33;
        const auto bytes = static_cast<std::ptrdiff_t>((columns + 7) / 8);
        const auto stride = static_cast<std::ptrdiff_t>((rows + 31) / 32 * 4);
        Row src(rows * static_cast<std::size_t>(bytes), random);
        const auto last = static_cast<std::ptrdiff_t>(rows - 1) * bytes;
        const auto call = [&](bool fast, const auto& out) {
            const auto transpose = TWIN(transpose_bits);
            transpose(src, bytes, rows, columns, out[0], stride);
            transpose(src + last, -bytes, rows, columns, out[1], stride);
        };
        expect_twins(2, columns * static_cast<std::size_t>(stride), random, call);
    });
}

// Also of rows that are too few or too narrow for reading beside a row.
TEST(TurnBits, HalfTurnOfEveryLength) {
    on_every_width(1, 8 * kLongestRow, [](std::size_t columns, Random& random) {
        if (columns >= 160 && columns % 5 != 0) return;
        const std::size_t rows = 1 + columns % 5;
        const std::size_t stride = (columns + 7) / 8 + columns / 5 % 3 * 41;
        Row src(rows * stride, random);
        expect_twins(1, rows * stride, random, [&](bool fast, const auto& out) {
            TWIN(half_turn_bits)(src, rows, columns, stride, out[0]);
        });
    });
}

}  // namespace simd

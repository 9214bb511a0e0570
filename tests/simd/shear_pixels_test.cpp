#include "simd/pixels/plain/shear_pixels.h"

#include "support/kernel_frame.h"

namespace simd {

constexpr ShearFormat kFormats[] = {{ShearedChannels::kBytes, 1},
                                    {ShearedChannels::kFiveBits, 2},
                                    {ShearedChannels::kBytes, 3},
                                    {ShearedChannels::kBytes, 4}};

std::uint8_t random_fraction(const ShearFormat& format, Random& random) {
    const int unit = format.channels == ShearedChannels::kBytes ? 256 : 32;
    return static_cast<std::uint8_t>(random.between(0, unit - 1));
}

TEST(ShearPixels, RowsOfEveryWidth) {
    on_every_width(1, [](std::size_t count, Random& random) {
        for (const ShearFormat& format : kFormats) {
            const auto shift =
                static_cast<std::size_t>(random.between(0, 3) * random.between(0, 9));
            const std::uint8_t fraction = random_fraction(format, random);
            expect_twins(1, (count + shift) * format.pixel_bytes, random,
                         [&](bool fast, const auto& out) {
                             TWIN(shear_row)(format, out[0], count, shift, fraction);
                         });
        }
    });
}

// Columns that move alike and columns that move as steeply as they may, up and down.
TEST(ShearPixels, ColumnsOfEveryWidth) {
    on_every_width(1, 150, [](std::size_t width, Random& random) {
        for (const ShearFormat& format : kFormats) {
            const std::size_t bytes = width * format.pixel_bytes;
            const bool rising = random.chance(0.5);
            const double step = random.between(0, 2) * 0.5;
            std::vector<std::int32_t> block_shifts;
            Bytes shifts, fractions;
            Row background(bytes, random, 0, 127);
            std::int32_t most = 0;
            for (std::size_t x = 0; x < width; ++x) {
                const auto along = static_cast<double>(rising ? x : width - 1 - x);
                const auto shift = static_cast<std::int32_t>(along * step);
                const std::uint8_t fraction = random_fraction(format, random);
                most = std::max(most, shift);
                for (std::size_t i = 0; i < format.pixel_bytes; ++i) {
                    if (shifts.size() % ColumnMoves::kBlock == 0) block_shifts.push_back(shift);
                    shifts.push_back(static_cast<std::uint8_t>(shift));
                    fractions.push_back(fraction);
                }
            }
            const auto height = static_cast<std::size_t>(random.between(1, 45));
            const std::size_t out_height = height + static_cast<std::size_t>(most);
            const std::size_t stride = bytes + static_cast<std::size_t>(random.between(0, 9));
            expect_twins(
                1, (out_height - 1) * stride + bytes, random, [&](bool fast, const auto& out) {
                    TWIN(shear_columns)
                    (format.channels,
                     {out[0], static_cast<std::ptrdiff_t>(stride), bytes, height, out_height},
                     {block_shifts.data(), shifts.data(), fractions.data(), background});
                });
        }
    });
}

}  // namespace simd

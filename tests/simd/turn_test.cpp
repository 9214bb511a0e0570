#include <gtest/gtest.h>

#include <cstring>

#include "models/pixels.h"
#include "simd/turn_bits.h"
#include "simd/turn_pixels.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Every row length up to three vectors and a little, the rows too few or many for reading beside a
// row.
TEST(TurnBits, HalfTurnOfEveryLength) {
    support::on_every_target([] {
        for (int columns = 1; columns <= 8 * (3 * 64 + 7); columns += columns < 160 ? 1 : 5) {
            const int rows = 1 + columns % 5;
            const int stride = (columns + 7) / 8 + columns % 3 * 41;
            const Bytes src = support::random_bytes(static_cast<std::size_t>(rows * stride),
                                                    static_cast<std::uint32_t>(columns));
            Bytes expected(src.size());
            for (int y = 0; y < rows; ++y) {
                for (int x = 0; x < columns; ++x) {
                    model::set_bit(expected.data(), stride, columns - 1 - x, rows - 1 - y,
                                   model::get_bit(src.data(), stride, x, y));
                }
            }
            support::GuardedBuffer dst(src.size());
            simd::half_turn_bits(src.data(), static_cast<std::size_t>(rows),
                                 static_cast<std::size_t>(columns),
                                 static_cast<std::size_t>(stride), dst.data());
            ASSERT_EQ(dst.contents(), expected) << columns << " x " << rows << ", " << stride;
            ASSERT_TRUE(dst.guards_intact());
        }
    });
}

TEST(TurnPixels, ReversalOfEveryLength) {
    support::on_every_target([] {
        for (std::size_t pixel_bytes = 1; pixel_bytes <= 5; ++pixel_bytes) {
            for (std::size_t count = 0; count <= 70; ++count) {
                const Bytes src = support::random_bytes(count * pixel_bytes, 1);
                Bytes expected(src.size());
                for (std::size_t i = 0; i < src.size(); ++i) {
                    const std::size_t pixel = count - 1 - i / pixel_bytes;
                    expected[pixel * pixel_bytes + i % pixel_bytes] = src[i];
                }
                support::GuardedBuffer dst(src.size());
                simd::reverse_pixels(src.data(), count, pixel_bytes, dst.data());
                ASSERT_EQ(dst.contents(), expected) << count << " of " << pixel_bytes << " bytes";
                ASSERT_TRUE(dst.guards_intact());
            }
        }
    });
}

// Blocks that overlap the ones before, pixels loaded from before the block, stores cut at the end:
// all of it depends on the size alone.
TEST(TurnPixels, ExchangeOfEverySmallSize) {
    support::on_every_target([] {
        for (std::size_t pixel_bytes = 1; pixel_bytes <= 4; ++pixel_bytes) {
            for (std::size_t rows = 1; rows <= 70; rows += rows < 24 ? 1 : 9) {
                for (std::size_t columns = 1; columns <= 24; ++columns) {
                    const Bytes src = support::random_bytes(rows * columns * pixel_bytes, 2);
                    Bytes expected(src.size());
                    for (std::size_t i = 0; i < rows * columns; ++i) {
                        const std::size_t to = i % columns * rows + i / columns;
                        std::memcpy(expected.data() + to * pixel_bytes,
                                    src.data() + i * pixel_bytes, pixel_bytes);
                    }
                    support::GuardedBuffer dst(src.size());
                    simd::transpose_pixels(src.data(),
                                           static_cast<std::ptrdiff_t>(columns * pixel_bytes), rows,
                                           columns, pixel_bytes, dst.data(),
                                           static_cast<std::ptrdiff_t>(rows * pixel_bytes));
                    ASSERT_EQ(dst.contents(), expected)
                        << rows << " x " << columns << " x " << pixel_bytes;
                    ASSERT_TRUE(dst.guards_intact());
                }
            }
        }
    });
}

}  // namespace

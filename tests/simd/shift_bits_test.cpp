#include "simd/shift_bits.h"

#include <gtest/gtest.h>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// One bit at a time; a positive shift goes to the right.
Bytes moved(const Bytes& src, std::int64_t shift, std::size_t dst_bytes) {
    Bytes dst(dst_bytes, 0);
    for (std::size_t bit = 0; bit < src.size() * 8; ++bit) {
        const std::int64_t to = static_cast<std::int64_t>(bit) + shift;
        const bool ink = (src[bit / 8] >> (7 - bit % 8) & 1) != 0;
        if (!ink || to < 0 || to >= static_cast<std::int64_t>(dst_bytes * 8)) continue;
        dst[static_cast<std::size_t>(to / 8)] |= static_cast<std::uint8_t>(0x80 >> to % 8);
    }
    return dst;
}

void check(const Bytes& src, unsigned bits, std::size_t dst_bytes) {
    support::GuardedBuffer right(dst_bytes);
    simd::shift_right(src.data(), src.size(), bits, right.data(), dst_bytes);
    ASSERT_EQ(right.contents(), moved(src, bits, dst_bytes))
        << src.size() << " bytes right by " << bits << " into " << dst_bytes;
    ASSERT_TRUE(right.guards_intact());

    support::GuardedBuffer left(dst_bytes);
    simd::shift_left(src.data(), src.size(), bits, left.data(), dst_bytes);
    ASSERT_EQ(left.contents(), moved(src, -static_cast<std::int64_t>(bits), dst_bytes))
        << src.size() << " bytes left by " << bits << " into " << dst_bytes;
    ASSERT_TRUE(left.guards_intact());
}

TEST(ShiftBits, EveryLengthAndRemainder) {
    support::on_every_target([] {
        for (std::size_t length = 0; length <= 3 * 64 + 7; ++length) {
            const Bytes src = support::random_bytes(length, static_cast<std::uint32_t>(length));
            const auto bits = static_cast<unsigned>(length % 8);
            check(src, bits, length);
            check(src, (bits + 5) % 8 + 8 * (bits % 3), length + 1);
            check(src, bits + 3, length == 0 ? 0 : length - 1);
        }
    });
}

TEST(ShiftBits, RowsOfDifferentSizes) {
    const Bytes src = support::random_bytes(70, 7);
    support::on_every_target([&] {
        for (const std::size_t dst_bytes : {0U, 1U, 2U, 63U, 69U, 71U, 140U}) {
            for (unsigned bits = 0; bits <= 1200; bits += bits < 40 ? 1 : 57) {
                check(src, bits, dst_bytes);
            }
            check(src, 4'294'967'295U, dst_bytes);
        }
        check({}, 3, 40);
    });
}

}  // namespace

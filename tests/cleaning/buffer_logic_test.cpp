// Buffer operations against the pixel model.
#include "cleaning/buffer_logic.h"

#include <gtest/gtest.h>

#include <vector>

#include "models/runs_model.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Operation {
    const char* name;
    std::int32_t (*call)(std::uint8_t*, const std::uint8_t*, std::int32_t, std::int32_t);
    int (*expected)(unsigned char*, const unsigned char*, int, int);
};

const Operation kOperations[] = {
    {"and_buffers", cleaning::and_buffers, model::and_buffers},
    {"and_not_buffers", cleaning::and_not_buffers, model::and_not_buffers},
    {"or_buffers", cleaning::or_buffers, model::or_buffers},
    {"xor_buffers", cleaning::xor_buffers, model::xor_buffers},
};

TEST(BufferLogic, CombinesLikeTheModel) {
    for (const Operation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        for (const int stride : {0, 1, 3, 16, 37}) {
            const auto size = static_cast<std::size_t>(5 * stride);
            Bytes dst = support::random_bytes(size, 3);
            const Bytes src = support::random_bytes(size, 4);
            Bytes expected = dst;
            operation.expected(expected.data(), src.data(), 5, stride);
            EXPECT_EQ(operation.call(dst.data(), src.data(), 5, stride), 0);
            EXPECT_EQ(dst, expected);
        }
    }
}

TEST(BufferLogic, CountsEveryBitOfEveryLength) {
    for (int stride = 0; stride <= 300; ++stride) {
        const Bytes bytes = support::random_bytes(static_cast<std::size_t>(stride),
                                                  7 + static_cast<unsigned>(stride));
        ASSERT_EQ(cleaning::count_black_pixels(bytes.data(), 1, stride),
                  model::count_black_pixels(bytes.data(), 1, stride));
    }
    const Bytes black(700, 0xFF);
    EXPECT_EQ(cleaning::count_black_pixels(black.data(), 70, 10), 5600);
    EXPECT_EQ(cleaning::count_black_pixels(black.data(), -1, 10), 0);
}

TEST(BufferLogic, PaintsEverySpanAndNothingBeside) {
    for (int x = 0; x < 24; ++x) {
        for (int length = -1; x + length <= 40; ++length) {
            for (const int value : {0, 1, 2}) {
                Bytes expected =
                    support::random_bytes(5, static_cast<unsigned>(x * 64 + length + 1));
                // The exact size: a touch of the byte behind the span shows under the sanitizer.
                Bytes bytes = expected;
                if (length > 0) model::paint_span(expected.data(), x, length, value);
                ASSERT_EQ(cleaning::paint_span(bytes.data(), x, length, value), 0);
                ASSERT_EQ(bytes, expected) << "x " << x << " length " << length;
            }
        }
    }
}

}  // namespace

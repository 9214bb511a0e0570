#include "common/circular_buffer.h"

#include <gtest/gtest.h>

#include "models/image_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

TEST(CircularBuffer2D, HoldsTheLastRows) {
    constexpr int kLength = 3;
    for (int capacity = 1; capacity <= 5; ++capacity) {
        common::CircularBuffer2D<int> ring(kLength, capacity);
        model::RingModel expected(capacity);
        const int* const base = ring.oldest_row();
        support::Random random(static_cast<std::uint32_t>(capacity));
        for (int step = 0; step < 200; ++step) {
            if (random.chance(0.35)) {
                ring.pop();
                expected.pop();
            } else {
                std::fill_n(ring.write_row(), kLength, step);
                ring.push();
                expected.push(std::vector<int>(kLength, step));
            }
            ASSERT_EQ(ring.count(), expected.count());
            ASSERT_EQ(ring.write_row() - base, (expected.write_index - 1) * kLength);
            if (ring.count() == 0) continue;
            ASSERT_EQ(ring.oldest_row() - base, (expected.oldest_index - 1) * kLength);
            ASSERT_EQ(*ring.oldest_row(), expected.rows.front()[0]);
            ASSERT_EQ(*ring.previous_row(), expected.rows.back()[0]);
        }
    }
}

TEST(CircularBuffer2D, SaysThatItCouldNotBeAllocated) {
    std::string text;
    prepro_redefine_malloc([](std::uint64_t, void* (*)(std::size_t)) -> void* { return nullptr; });
    try {
        common::CircularBuffer2D<int> ring(4, 4);
    } catch (const char* reason) {
        prepro_redefine_malloc(nullptr);
        text = reason;
    }
    prepro_redefine_malloc(nullptr);
    EXPECT_EQ(text, "error while constructing CircularBuffer2D, could not allocate enough memory");
}

}  // namespace

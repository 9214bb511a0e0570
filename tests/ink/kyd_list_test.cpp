// The index-linked list against plain arrays: order, stable slots, the chain of released slots,
// growth and failures.
#include "ink/kyd_list.h"

#include <gtest/gtest.h>

#include <vector>

#include "models/components_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using ink::kAtEnd;
using ink::kAtFront;
using ink::kNoSlot;
using ink::KydListT;

struct Record {
    std::int32_t value;
    double weight;
};

void expect_same(const KydListT<Record>& list, const model::ListModel& expected,
                 const std::vector<std::int32_t>& values) {
    ASSERT_EQ(list.count, expected.count());
    ASSERT_EQ(list.first, expected.first());
    ASSERT_EQ(list.last, expected.last());
    ASSERT_EQ(list.free_head, expected.free_head());
    std::int32_t before = kNoSlot;
    std::int32_t slot = list.first;
    for (const int linked : expected.order) {
        ASSERT_EQ(slot, linked);
        ASSERT_EQ(list.prev(slot), before);
        ASSERT_EQ(list[slot].value, values[static_cast<std::size_t>(slot)]);
        before = slot;
        slot = list.next(slot);
    }
    ASSERT_EQ(slot, kNoSlot);
}

TEST(KydList, FollowsTheModelThroughRandomOperations) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        support::Random random(seed);
        KydListT<Record> list;
        model::ListModel expected;
        std::vector<std::int32_t> values;
        for (int step = 0; step < 300; ++step) {
            const int any = random.between(-4, static_cast<int>(expected.used.size()) + 1);
            if (random.chance(0.6)) {
                const std::int32_t slot = list.insert_node(any);
                ASSERT_EQ(slot, expected.insert_node(any));
                if (slot < 0) continue;
                values.resize(expected.used.size());
                list[slot] = Record{step, 0.5};
                values[static_cast<std::size_t>(slot)] = step;
            } else {
                ASSERT_EQ(list.erase_node(any), expected.erase_node(any));
            }
            expect_same(list, expected, values);
        }
        std::vector<int> slots = expected.order;
        std::sort(slots.begin(), slots.end());
        EXPECT_EQ(list.relink_all(), 0);
        expected.order.clear();
        for (const int slot : slots) {
            EXPECT_EQ(list.append_existing(slot), expected.append_existing(slot));
        }
        expect_same(list, expected, values);
    }
}

TEST(KydList, RefusesSlotsThatAreNotInUseAndADamagedFreeChain) {
    KydListT<Record> list;
    for (const std::int32_t position : {0, 1, -3, 1000, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(list.insert_node(position), -1);
        EXPECT_EQ(list.erase_node(position), -1);
        EXPECT_EQ(list.append_existing(position), -1);
    }
    list.insert_node(kAtEnd);
    list.insert_node(kAtEnd);
    list.erase_node(1);
    list.nodes[1].used = 1;
    EXPECT_EQ(list.insert_node(kAtFront), -1);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.free_head, 1);
}

// By doubling from two; released or moved away, it starts again.
TEST(KydList, OwnsItsStorage) {
    KydListT<Record> list;
    for (int slots = 1; slots <= 100; ++slots) {
        list[list.insert_node(kAtEnd)] = Record{slots, 1.0};
        std::size_t capacity = 2;
        while (capacity < static_cast<std::size_t>(slots)) capacity *= 2;
        ASSERT_EQ(list.nodes.size(), capacity);
        ASSERT_EQ(list.elements.size(), capacity);
    }
    EXPECT_EQ(list.release_storage(), 0);
    EXPECT_EQ(list.nodes.size(), 0U);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.insert_node(kAtFront), 0);
}

TEST(KydList, IsUnchangedWhenItCannotGrow) {
    support::fail_each_allocation([] {
        KydListT<Record> list;
        for (int i = 0; i < 9; ++i) {
            const std::size_t capacity = list.nodes.size();
            const std::int32_t slot = list.insert_node(kAtEnd);
            if (slot < 0) {
                EXPECT_EQ(list.count, i);
                EXPECT_EQ(list.last, i - 1);
                EXPECT_EQ(list.nodes.size(), capacity);
                EXPECT_EQ(list.elements.size(), capacity);
                EXPECT_EQ(list.free_head, kNoSlot);
                return -1;
            }
            list[slot] = Record{i, 0.0};
        }
        return 0;
    });
}

}  // namespace

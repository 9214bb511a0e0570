// The index-linked list against plain arrays: order, stable slots, the chain of released slots,
// growth and failures.
#include "ink/kyd_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using ink::kAtEnd;
using ink::kAtFront;

// The order of the linked slots and the stack of the released ones; the record of a slot is the
// step that linked it.
struct Mirror {
    std::vector<std::int32_t> order;
    std::vector<std::int32_t> released;
    std::vector<int> records;

    bool used(std::int32_t slot) const {
        return std::find(order.begin(), order.end(), slot) != order.end();
    }
    std::int32_t insert(std::int32_t position, int record) {
        if (position != kAtEnd && position != kAtFront && !used(position)) return -1;
        if (released.empty()) {
            released.push_back(static_cast<std::int32_t>(records.size()));
            records.push_back(0);
        }
        const std::int32_t slot = released.back();
        released.pop_back();
        records[static_cast<std::size_t>(slot)] = record;
        order.insert(position == kAtEnd     ? order.end()
                     : position == kAtFront ? order.begin()
                                            : std::find(order.begin(), order.end(), position),
                     slot);
        return slot;
    }
    std::int32_t erase(std::int32_t slot) {
        if (!used(slot)) return -1;
        order.erase(std::find(order.begin(), order.end(), slot));
        released.push_back(slot);
        return 0;
    }
};

void expect_same(const ink::KydListT<int>& list, const Mirror& mirror) {
    ASSERT_EQ(static_cast<std::size_t>(list.count), mirror.order.size());
    ASSERT_EQ(list.free_head, mirror.released.empty() ? -1 : mirror.released.back());
    std::int32_t before = ink::kNoSlot;
    std::int32_t slot = list.first;
    for (const std::int32_t linked : mirror.order) {
        ASSERT_EQ(slot, linked);
        ASSERT_EQ(list.prev(slot), before);
        ASSERT_EQ(list[slot], mirror.records[static_cast<std::size_t>(slot)]);
        before = slot;
        slot = list.next(slot);
    }
    ASSERT_EQ(slot, ink::kNoSlot);
    ASSERT_EQ(list.last, before);
}

// Slots that are not in use are named too. In the end the slots are put in the order of their
// numbers.
TEST(KydList, FollowsPlainArraysThroughRandomOperations) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        support::Random random(seed);
        ink::KydListT<int> list;
        Mirror mirror;
        for (int step = 0; step < 200; ++step) {
            const int any = random.between(-4, static_cast<int>(mirror.records.size()) + 1);
            if (random.chance(0.6)) {
                const std::int32_t slot = list.insert_node(any);
                ASSERT_EQ(slot, mirror.insert(any, step));
                if (slot >= 0) list[slot] = step;
            } else {
                ASSERT_EQ(list.erase_node(any), mirror.erase(any));
            }
            expect_same(list, mirror);
        }
        std::sort(mirror.order.begin(), mirror.order.end());
        EXPECT_EQ(list.relink_all(), 0);
        for (const std::int32_t slot : mirror.order) EXPECT_EQ(list.append_existing(slot), 0);
        expect_same(list, mirror);
        for (const std::int32_t slot : mirror.released) EXPECT_EQ(list.append_existing(slot), -1);
        EXPECT_EQ(list.insert_node(INT32_MAX), -1);
    }
}

TEST(KydList, RefusesADamagedFreeChain) {
    ink::KydListT<int> list;
    list.insert_node(kAtEnd);
    list.erase_node(0);
    list.nodes[0].used = 1;
    EXPECT_EQ(list.insert_node(kAtFront), -1);
    EXPECT_EQ(list.count, 0);
}

// The arrays double from two slots on, both or neither.
TEST(KydList, IsUnchangedWhenItCannotGrow) {
    support::fail_each_allocation([] {
        ink::KydListT<int> list;
        std::size_t room = 0;
        for (std::int32_t i = 0; i < 9; ++i) {
            const bool grows = static_cast<std::size_t>(i) == room;
            const std::int32_t slot = list.insert_node(kAtEnd);
            if (grows && slot >= 0) room = std::max<std::size_t>(2, 2 * room);
            EXPECT_EQ(list.nodes.size(), room);
            EXPECT_EQ(list.elements.size(), room);
            EXPECT_EQ(list.count, slot < 0 ? i : i + 1);
            EXPECT_EQ(list.free_head, ink::kNoSlot);
            if (slot < 0) return -1;
            EXPECT_EQ(slot, i);
        }
        EXPECT_EQ(list.release_storage(), 0);
        EXPECT_EQ(list.nodes.size() + list.elements.size(), 0U);
        return list.insert_node(kAtFront);
    });
}

}  // namespace

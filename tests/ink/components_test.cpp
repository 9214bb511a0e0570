// Components by the engine and by page labels against a flood fill: boxes, runs, order, early
// release, failures.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "models/components_comparison.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "support/record_counter.h"

namespace {

using ink::ComponentEngine;
using model::CollectingRule;
using Bytes = std::vector<std::uint8_t>;

// Noise of every density and text, in turn with 1-bits and with 0-bits as ink. The bytes end with
// the last row's pixels: a touch of its padding shows under the sanitizer. In wide noise near the
// density where everything joins, small pieces on the left keep absorbing the one large component.
TEST(Components, AreThoseOfAFloodFill) {
    std::uint32_t seed = 1;
    const auto check = [&](Bytes page, int height, int width, int stride) {
        page.resize(static_cast<std::size_t>((height - 1) * stride + (width + 7) / 8));
        page.shrink_to_fit();
        ++seed;
        ASSERT_STREQ(
            model::differing_components({page.data(), height, width, stride},
                                        static_cast<int>(seed % 2), seed % 5 * 4, seed % 3 == 0),
            nullptr);
    };
    for (const double density : {0.05, 0.2, 0.35, 0.5, 0.65, 0.8, 0.95}) {
        for (const int width : {1, 7, 8, 63, 64, 65, 127, 128, 129, 150}) {
            const int stride = (width + 7) / 8 + static_cast<int>(seed % 3);
            check(support::random_bitonal(23, static_cast<std::size_t>(stride), density, seed), 23,
                  width, stride);
        }
    }
    for (int i = 0; i < 2; ++i) check(support::random_text(120, 333, 44, seed), 120, 333, 44);
    for (int i = 0; i < 2; ++i) {
        check(support::random_bitonal(100, 128, 0.45 + 0.1 * (seed % 2), seed), 100, 1024, 128);
    }
    const Bytes page(8, 0);
    for (const auto& [height, width] : {std::pair{2, 32}, {0, 32}, {2, 0}})
        EXPECT_EQ(ink::find_components({page.data(), height, width, 4}).count, 0);
}

TEST(ComponentEngine, SettledComponentsKeepFewRecords) {
    constexpr int kHeight = 200;
    const Bytes row(8, 0xFF);
    CollectingRule rule;
    rule.settled_above = 100;
    ComponentEngine engine;
    ASSERT_EQ(engine.begin(8), 0);
    for (int r = 0; r < kHeight; ++r) {
        engine.extract_row(0, row.data(), 0, 64);
        ASSERT_EQ(engine.label_row(r), 0);
        engine.finish_components(r, rule);
        ASSERT_LE(engine.runs.count, 2);
        ASSERT_EQ(engine.segments.count, 1);
        engine.next_row();
    }
    engine.finish_components(kHeight, rule);
    EXPECT_EQ(rule.found, (std::vector<model::Component>{{0, 0, 64, kHeight, 64 * kHeight, {}}}));
    EXPECT_EQ(engine.runs.count + engine.segments.count + engine.components.count, 0);
}

TEST(ComponentEngine, FirstTouchedComponentAbsorbsTheOthers) {
    // Three pieces in row 0 (slots 0, 1, 2), the right two joined in row 1, all in row 2.
    const Bytes page{0x92, 0x8E, 0xFE};
    CollectingRule rule;
    ComponentEngine engine;
    ASSERT_EQ(engine.begin(1), 0);
    for (int r = 0; r < 3; ++r) {
        engine.extract_row(0, page.data() + r, 0, 8);
        ASSERT_EQ(engine.label_row(r), 0);
        EXPECT_EQ(engine.components.count, 3 - r);
        engine.finish_components(r, rule);
        engine.next_row();
    }
    EXPECT_EQ(engine.components.first, 0);
    // Released last, handed out first: 2 went to 1, then 1 to 0.
    EXPECT_EQ(engine.components.free_head, 1);
    EXPECT_EQ(engine.components[0].segment_count, 3);
    EXPECT_EQ(engine.components[0].area, 14U);
    for (std::int32_t s = 0; s < 3; ++s) EXPECT_EQ(engine.component_of(s), 0);
    // Segment by segment, each from its top: the absorbed ones follow in the order of the merges.
    std::vector<model::Run> visited;
    engine.for_each_run(0, [&](const ink::run& r) { visited.push_back({r.x0, r.x1, r.y}); });
    EXPECT_EQ(visited, (std::vector<model::Run>{
                           {0, 1, 0}, {0, 1, 1}, {0, 7, 2}, {3, 4, 0}, {4, 7, 1}, {6, 7, 0}}));
}

// Some columns of a page; a component that began first is handed over first; a step that is ended
// leaves its component and those behind it to the next; 65,535 is the last coordinate.
TEST(ComponentEngine, ScansColumnsInListOrderUntilTold) {
    const Bytes full(4, 0xFF);
    CollectingRule rule;
    ink::scan_components({full.data(), 2, 16, 2}, 3, 11, 0, nullptr, rule);
    EXPECT_EQ(rule.found,
              (std::vector<model::Component>{{3, 0, 11, 2, 16, {{3, 11, 0}, {3, 11, 1}}}}));

    const Bytes page{0x02, 0x82, 0x20};
    CollectingRule stopped;
    stopped.last = 1;
    ink::scan_components({page.data(), 3, 8, 1}, 0, 8, 0, nullptr, stopped);
    std::vector<int> order;
    for (const auto& c : stopped.found) order.push_back(c.x0);
    EXPECT_EQ(order, (std::vector<int>{6, 6, 0, 2}));

    Bytes wide(5000 * 2, 0);
    wide[4999] = 0x03;
    wide[5000 + 4998] = 0x01;
    CollectingRule erasing{0, wide.data(), 5000, 100};
    ink::scan_components({wide.data(), 2, 40000, 5000}, 0, 40000, 0, nullptr, erasing);
    ASSERT_EQ(erasing.found.size(), 2U);
    EXPECT_EQ(erasing.found[0].x1, 40000);
    EXPECT_EQ(wide, Bytes(10000, 0));
    EXPECT_THROW(ink::scan_components({wide.data(), 1, 65536, 8192}, 0, 65536, 0, nullptr, rule),
                 std::length_error);
}

// Returns how many allocations the labelling makes; each has failed once.
template <class Label>
int fail_each_allocation_of(Label label) {
    return support::fail_each_allocation([&] {
        try {
            label();
        } catch (const std::bad_alloc&) {
            return -1;
        }
        return 0;
    });
}

TEST(Components, ThrowWithoutMemoryAndTheEngineLogsIt) {
    const Bytes bytes = support::random_bitonal(60, 40, 0.1, 9);
    const common::BitonalView page{bytes.data(), 60, 320, 40};
    struct : CollectingRule {
        bool finished(ComponentEngine&, std::int32_t) { return true; }
    } rule;
    support::RecordCounter counter(34);
    diag::Logger* slot = &counter;
    const int allocations =
        fail_each_allocation_of([&] { ink::scan_components(page, 0, 320, 0, &slot, rule); });
    EXPECT_GT(allocations, 12);
    EXPECT_EQ(counter.matching, allocations);
    EXPECT_EQ(counter.others, 0);
    EXPECT_GE(fail_each_allocation_of([&] {
                  for (ink::RunWindows windows(page, 9, 0); windows.next();) continue;
              }),
              5);
    EXPECT_GE(fail_each_allocation_of([&] { ink::find_components(page); }), 6);
}

}  // namespace

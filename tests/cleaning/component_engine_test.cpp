// The component engine against flood fill: components, runs, order of finishing, early release,
// failures.
#include "cleaning/component_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

#include "models/components_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using cleaning::component;
using cleaning::ComponentEngine;
using cleaning::run;
using cleaning::unsigned_coordinate;
using Bytes = std::vector<std::uint8_t>;

// Keeps a copy of every finished component; erases those of at most `erase_up_to` pixels.
struct CollectingRule {
    std::uint8_t* image = nullptr;
    int stride = 0;
    std::uint32_t erase_up_to = 0;
    std::uint32_t settled_above = UINT32_MAX;
    std::vector<model::Component> found{};

    std::int32_t finished(ComponentEngine& engine, std::int32_t slot) {
        const component& c = engine.components[slot];
        model::Component copy{unsigned_coordinate(c.x0),
                              unsigned_coordinate(c.y0),
                              unsigned_coordinate(c.x1),
                              unsigned_coordinate(c.y1),
                              c.area,
                              {}};
        engine.for_each_run(slot, [&](const run& r) {
            copy.runs.push_back(
                {unsigned_coordinate(r.x0), unsigned_coordinate(r.x1), unsigned_coordinate(r.y)});
        });
        std::sort(copy.runs.begin(), copy.runs.end(), [](const model::Run& a, const model::Run& b) {
            return a.y != b.y ? a.y < b.y : a.x0 < b.x0;
        });
        found.push_back(std::move(copy));
        if (c.area <= erase_up_to) engine.erase_ink(slot, 0, image, stride);
        return 0;
    }
    bool settled(const component& open) const { return open.area > settled_above; }
};

bool raster_order(const model::Component& a, const model::Component& b) {
    return std::tie(a.y0, a.runs.front().x0) < std::tie(b.y0, b.runs.front().x0);
}

void expect_matches_flood_fill(const Bytes& page, int height, int width, int stride) {
    const auto expected = model::components(page.data(), height, width, stride);
    CollectingRule rule;
    ASSERT_EQ(
        cleaning::scan_components({page.data(), height, width, stride}, 0, width, 0, nullptr, rule),
        0);
    ASSERT_EQ(rule.found.size(), expected.size());
    EXPECT_TRUE(std::is_sorted(rule.found.begin(), rule.found.end(),
                               [](const auto& a, const auto& b) { return a.y1 < b.y1; }));
    std::sort(rule.found.begin(), rule.found.end(), raster_order);
    EXPECT_EQ(rule.found, expected);
}

TEST(ComponentEngine, MatchesFloodFill) {
    std::uint32_t seed = 1;
    for (const double density : {0.1, 0.3, 0.4, 0.5, 0.6, 0.9}) {
        for (const int width : {1, 9, 64, 131}) {
            const int stride = (width + 7) / 8 + 1;
            expect_matches_flood_fill(
                support::random_bitonal(31, static_cast<std::size_t>(stride), density, ++seed), 31,
                width, stride);
        }
    }
    expect_matches_flood_fill(support::random_text(80, 250, 32, 3), 80, 250, 32);
}

TEST(ComponentEngine, ErasesExactlyTheComponentsOfTheRule) {
    for (const std::uint32_t most : {0U, 1U, 5U, 40U}) {
        for (const bool settle : {false, true}) {
            Bytes page = support::random_bitonal(60, 20, 0.35, most + 2);
            Bytes expected = page;
            for (const auto& c : model::components(page.data(), 60, 155, 20)) {
                if (c.area > most) continue;
                for (const auto& r : c.runs) {
                    for (int x = r.x0; x < r.x1; ++x) {
                        model::set_bit(expected.data(), 20, x, r.y, false);
                    }
                }
            }
            CollectingRule rule{page.data(), 20, most, settle ? most : UINT32_MAX};
            ASSERT_EQ(
                cleaning::scan_components({page.data(), 60, 155, 20}, 0, 155, 0, nullptr, rule), 0);
            EXPECT_EQ(page, expected);
        }
    }
}

TEST(ComponentEngine, SettledComponentsHoldFewRecords) {
    const int height = 200;
    Bytes page(static_cast<std::size_t>(height) * 8, 0xFF);
    CollectingRule rule;
    rule.settled_above = 100;
    ComponentEngine engine;
    ASSERT_EQ(engine.begin(8), 0);
    for (int r = 0; r < height; ++r) {
        ASSERT_EQ(engine.extract_row(0, page.data() + r * 8, 0, 64), 2);
        ASSERT_EQ(engine.label_row(r), 0);
        ASSERT_EQ(engine.finish_components(r, rule), 0);
        ASSERT_LE(engine.runs.count, 2);
        ASSERT_EQ(engine.segments.count, 1);
        engine.next_row();
    }
    ASSERT_EQ(engine.finish_components(height, rule), 0);
    ASSERT_EQ(rule.found.size(), 1U);
    EXPECT_EQ(rule.found[0].area, 64 * height);
    EXPECT_TRUE(rule.found[0].runs.empty());
    EXPECT_EQ(engine.runs.count + engine.segments.count + engine.components.count, 0);
}

TEST(ComponentEngine, FirstTouchedComponentAbsorbsTheOthers) {
    // Three pieces in row 0 (slots 0, 1, 2), the right two joined in row 1, all in row 2.
    const Bytes page{0x92, 0x8E, 0xFE};
    CollectingRule rule;
    ComponentEngine engine;
    ASSERT_EQ(engine.begin(1), 0);
    const std::int32_t counts[] = {3, 2, 1};
    for (int r = 0; r < 3; ++r) {
        engine.extract_row(0, page.data() + r, 0, 8);
        ASSERT_EQ(engine.label_row(r), 0);
        EXPECT_EQ(engine.components.count, counts[r]);
        ASSERT_EQ(engine.finish_components(r, rule), 0);
        engine.next_row();
    }
    EXPECT_EQ(engine.components.first, 0);
    // Released last, handed out first: 2 went to 1, then 1 to 0.
    EXPECT_EQ(engine.components.free_head, 1);
    const component& whole = engine.components[0];
    EXPECT_EQ(whole.segment_count, 3);
    EXPECT_EQ(whole.area, 14U);
    for (std::int32_t s = 0; s < 3; ++s) EXPECT_EQ(engine.component_of(s), 0);
    // Segment by segment, each from its top: the absorbed ones follow in the order of the merges.
    std::vector<model::Run> visited;
    engine.for_each_run(0, [&](const run& r) { visited.push_back({r.x0, r.x1, r.y}); });
    EXPECT_EQ(visited, (std::vector<model::Run>{
                           {0, 1, 0}, {0, 1, 1}, {0, 7, 2}, {3, 4, 0}, {4, 7, 1}, {6, 7, 0}}));
    EXPECT_EQ(engine.finish_components(3, rule), 0);
    EXPECT_EQ(engine.components.count, 0);
}

TEST(ComponentEngine, FinishesInListOrderWithinARow) {
    // The left piece starts below the right one: the right one stands first in the list.
    const Bytes page{0x02, 0x82, 0x00};
    CollectingRule rule;
    ASSERT_EQ(cleaning::scan_components({page.data(), 3, 8, 1}, 0, 8, 0, nullptr, rule), 0);
    ASSERT_EQ(rule.found.size(), 2U);
    EXPECT_EQ(rule.found[0].x0, 6);
    EXPECT_EQ(rule.found[1].x0, 0);
}

TEST(ComponentEngine, ScansOnlyTheColumnsAskedFor) {
    const Bytes page{0xFF, 0xFF, 0xFF, 0xFF};
    CollectingRule rule;
    ASSERT_EQ(cleaning::scan_components({page.data(), 2, 16, 2}, 3, 11, 0, nullptr, rule), 0);
    ASSERT_EQ(rule.found.size(), 1U);
    EXPECT_EQ(rule.found[0].x0, 3);
    EXPECT_EQ(rule.found[0].x1, 11);
    EXPECT_EQ(rule.found[0].area, 16);
}

TEST(ComponentEngine, PassesTheRulesResultOnAndStops) {
    struct StoppingRule {
        int calls = 0;
        std::int32_t finished(ComponentEngine&, std::int32_t) { return ++calls == 2 ? 7 : 0; }
        bool settled(const component&) const { return false; }
    };
    const Bytes page{0xAA};
    StoppingRule rule;
    EXPECT_EQ(cleaning::scan_components({page.data(), 1, 8, 1}, 0, 8, 0, nullptr, rule), 7);
    EXPECT_EQ(rule.calls, 2);
}

TEST(ComponentEngine, KeepsCoordinatesBeyondFifteenBits) {
    Bytes page(5000 * 2, 0);
    page[4999] = 0x03;
    page[5000 + 4998] = 0x01;
    CollectingRule rule{page.data(), 5000, 100};
    ASSERT_EQ(cleaning::scan_components({page.data(), 2, 40000, 5000}, 0, 40000, 0, nullptr, rule),
              0);
    ASSERT_EQ(rule.found.size(), 2U);
    EXPECT_EQ(rule.found[0].x0, 39998);
    EXPECT_EQ(rule.found[0].x1, 40000);
    EXPECT_EQ(page, Bytes(10000, 0));
    EXPECT_EQ(cleaning::scan_components({page.data(), 1, 65536, 8192}, 0, 65536, 0, nullptr, rule),
              -1);
}

// Noise near the density where everything joins: small pieces on the left keep absorbing the one
// large component.
TEST(ComponentEngine, ManyMergesStayCheap) {
    const int stride = 256;
    const int height = 200;
    const Bytes page = support::random_bitonal(height, stride, 0.45, 8);
    struct CountingRule {
        std::int64_t area = 0;
        std::int32_t finished(ComponentEngine& engine, std::int32_t slot) {
            area += engine.components[slot].area;
            return 0;
        }
        bool settled(const component&) const { return false; }
    };
    CountingRule rule;
    ASSERT_EQ(cleaning::scan_components({page.data(), height, stride * 8, stride}, 0, stride * 8, 0,
                                        nullptr, rule),
              0);
    EXPECT_EQ(rule.area, cleaning::count_black_pixels(page.data(), height, stride));
}

struct PlainRule {
    std::int32_t finished(ComponentEngine&, std::int32_t) { return 0; }
    bool settled(const component&) const { return false; }
};

// Counts the expected records without memory of its own.
class RecordCounter : public diag::Logger {
  public:
    std::int32_t log(std::uint32_t owner, std::int32_t at, std::uint32_t code,
                     const char* text) override {
        const bool expected = owner == 0x1AA0 && at == 192 && code == 34 &&
                              std::strcmp(text, "Cannot allocate memory.") == 0;
        ++(expected ? matching : others);
        return 0;
    }
    int matching = 0;
    int others = 0;
};

TEST(ComponentEngine, LogsEveryFailedAllocationOnce) {
    const Bytes page = support::random_bitonal(12, 4, 0.4, 9);
    RecordCounter counter;
    diag::Logger* slot = &counter;
    const int allocations = support::fail_each_allocation([&] {
        PlainRule rule;
        return cleaning::scan_components({page.data(), 12, 32, 4}, 0, 32, 0, &slot, rule);
    });
    EXPECT_GT(allocations, 12);
    EXPECT_EQ(counter.matching, allocations);
    EXPECT_EQ(counter.others, 0);
}

}  // namespace

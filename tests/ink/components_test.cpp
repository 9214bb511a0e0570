// Components by the engine and by page labels against a flood fill: boxes, runs, order, early
// release, failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <tuple>
#include <vector>

#include "ink/component_engine.h"
#include "ink/run_labels.h"
#include "models/components_model.h"
#include "support/allocation_limit.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "support/record_counter.h"

namespace {

using ink::component;
using ink::ComponentEngine;
using ink::run;
using ink::unsigned_coordinate;
using Bytes = std::vector<std::uint8_t>;

// Calls check(bytes, height, width, stride, ink value, components) for noise of every density and
// for text, in turn with 1-bits and with 0-bits as ink. The bytes end with the last row's pixels: a
// touch of its padding shows under the sanitizer.
template <class Check>
void on_pages(const Check& check) {
    std::uint32_t seed = 1;
    const auto check_page = [&](Bytes page, int height, int width, int stride) {
        const int ink_value = static_cast<int>(++seed % 2);
        Bytes ink = page;
        for (auto& byte : ink) byte = static_cast<std::uint8_t>(ink_value == 0 ? byte : ~byte);
        page.resize(static_cast<std::size_t>((height - 1) * stride + (width + 7) / 8));
        page.shrink_to_fit();
        check(page, height, width, stride, ink_value,
              model::components(ink.data(), height, width, stride));
    };
    for (const double density : {0.05, 0.2, 0.35, 0.5, 0.65, 0.8, 0.95}) {
        for (const int width : {1, 7, 8, 63, 64, 65, 127, 128, 129, 150}) {
            const int stride = (width + 7) / 8 + static_cast<int>(seed % 3);
            check_page(support::random_bitonal(23, static_cast<std::size_t>(stride), density, seed),
                       23, width, stride);
        }
    }
    for (int i = 0; i < 2; ++i) check_page(support::random_text(120, 333, 44, seed), 120, 333, 44);
}

// Keeps a copy of every finished component; erases those of at most `erase_up_to` pixels; ends the
// scan with `last`.
struct CollectingRule {
    std::uint8_t* image = nullptr;
    int stride = 0;
    std::uint32_t erase_up_to = 0;
    std::uint32_t settled_above = UINT32_MAX;
    std::size_t last = SIZE_MAX;
    std::vector<model::Component> found{};

    bool finished(ComponentEngine& engine, std::int32_t slot) {
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
        std::sort(copy.runs.begin(), copy.runs.end(), [](const auto& a, const auto& b) {
            return std::tie(a.y, a.x0) < std::tie(b.y, b.x0);
        });
        found.push_back(std::move(copy));
        if (c.area <= erase_up_to) engine.erase_ink(slot, 0, image, stride);
        return found.size() != last;
    }
    bool settled(const component& open) const { return open.area > settled_above; }
};

TEST(ComponentEngine, MatchesFloodFill) {
    on_pages([](const Bytes& page, int height, int width, int stride, int ink_value,
                const std::vector<model::Component>& expected) {
        CollectingRule rule;
        ink::scan_components({page.data(), height, width, stride}, 0, width, ink_value, nullptr,
                             rule);
        EXPECT_TRUE(std::is_sorted(rule.found.begin(), rule.found.end(),
                                   [](const auto& a, const auto& b) { return a.y1 < b.y1; }));
        std::sort(rule.found.begin(), rule.found.end(), [](const auto& a, const auto& b) {
            return std::tie(a.y0, a.runs.front().x0) < std::tie(b.y0, b.runs.front().x0);
        });
        EXPECT_EQ(rule.found, expected);
    });
}

TEST(ComponentEngine, ErasesExactlyTheComponentsOfTheRule) {
    for (const std::uint32_t most : {0U, 1U, 5U, 40U}) {
        for (const bool settle : {false, true}) {
            Bytes page = support::random_bitonal(60, 20, 0.35, most + 2);
            Bytes expected = page;
            for (const auto& c : model::components(page.data(), 60, 155, 20)) {
                for (const auto& r : c.runs)
                    for (int x = r.x0; x < r.x1 && c.area <= most; ++x)
                        model::set_bit(expected.data(), 20, x, r.y, false);
            }
            CollectingRule rule{page.data(), 20, most, settle ? most : UINT32_MAX};
            ink::scan_components({page.data(), 60, 155, 20}, 0, 155, 0, nullptr, rule);
            EXPECT_EQ(page, expected);
        }
    }
}

TEST(ComponentEngine, SettledComponentsHoldFewRecords) {
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
    engine.for_each_run(0, [&](const run& r) { visited.push_back({r.x0, r.x1, r.y}); });
    EXPECT_EQ(visited, (std::vector<model::Run>{
                           {0, 1, 0}, {0, 1, 1}, {0, 7, 2}, {3, 4, 0}, {4, 7, 1}, {6, 7, 0}}));
}

// Columns x0 .. x1 - 1; the left piece starts below the right one, which stands first in the list;
// a result other than 0 ends the scan; 65,535 is the last coordinate.
TEST(ComponentEngine, ScansColumnsInListOrderUntilTold) {
    const Bytes full(4, 0xFF);
    CollectingRule rule;
    ink::scan_components({full.data(), 2, 16, 2}, 3, 11, 0, nullptr, rule);
    EXPECT_EQ(rule.found,
              (std::vector<model::Component>{{3, 0, 11, 2, 16, {{3, 11, 0}, {3, 11, 1}}}}));

    // Told to end, a step leaves the component and those behind it to the next step.
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
    CollectingRule erasing{wide.data(), 5000, 100};
    ink::scan_components({wide.data(), 2, 40000, 5000}, 0, 40000, 0, nullptr, erasing);
    ASSERT_EQ(erasing.found.size(), 2U);
    EXPECT_EQ(erasing.found[0].x1, 40000);
    EXPECT_EQ(wide, Bytes(10000, 0));
    EXPECT_THROW(ink::scan_components({wide.data(), 1, 65536, 8192}, 0, 65536, 0, nullptr, rule),
                 std::length_error);
}

// Noise near the density where everything joins: small pieces on the left keep absorbing the one
// large component.
TEST(ComponentEngine, ManyMergesStayCheap) {
    const Bytes page = support::random_bitonal(200, 256, 0.45, 8);
    CollectingRule rule;
    ink::scan_components({page.data(), 200, 2048, 256}, 0, 2048, 0, nullptr, rule);
    std::int64_t area = 0;
    for (const auto& c : rule.found) area += c.area;
    EXPECT_EQ(area, ink::count_black_pixels(page.data(), 200, 256));
}

TEST(ComponentEngine, LogsEveryFailedAllocationOnce) {
    struct PlainRule {
        bool finished(ComponentEngine&, std::int32_t) { return true; }
        bool settled(const component&) const { return false; }
    };
    const Bytes page = support::random_bitonal(12, 4, 0.4, 9);
    support::RecordCounter counter(34);
    diag::Logger* slot = &counter;
    const int allocations = support::fail_each_allocation([&] {
        PlainRule rule;
        try {
            ink::scan_components({page.data(), 12, 32, 4}, 0, 32, 0, &slot, rule);
        } catch (const std::bad_alloc&) {
            return -1;
        }
        return 0;
    });
    EXPECT_GT(allocations, 12);
    EXPECT_EQ(counter.matching, allocations);
    EXPECT_EQ(counter.others, 0);
}

void expect_labels(const Bytes& page, int height, int width, int stride, int ink_value,
                   const std::vector<model::Component>& expected) {
    const common::BitonalView view{page.data(), height, width, stride};
    const ink::RunLabels labels = ink::label_runs(view, ink_value);
    const ink::PageComponents found = ink::find_components(view, ink_value);
    ASSERT_EQ(static_cast<std::size_t>(labels.component_count), expected.size());
    ASSERT_EQ(found.count, labels.component_count);
    ASSERT_EQ(labels.row_offsets.size(), static_cast<std::size_t>(height) + 1);
    ASSERT_EQ(labels.row_offsets[static_cast<std::size_t>(height)], labels.run_count);
    std::vector<std::vector<model::Run>> runs(expected.size());
    for (int y = 0; y < height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        for (std::size_t i = labels.row_offsets[row]; i < labels.row_offsets[row + 1]; ++i) {
            const auto label = static_cast<std::size_t>(labels.label_of_run[i]);
            ASSERT_LT(label, expected.size());
            runs[label].push_back({labels.runs[i].x0, labels.runs[i].x1, y});
        }
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        for (const ink::ComponentBox& c : {labels.components[i], found.components[i]}) {
            const model::Component component{c.x0, c.y0, c.x1, c.y1, c.area, runs[i]};
            ASSERT_EQ(component, expected[i]) << "component " << i;
        }
    }
}

TEST(RunLabels, MatchFloodFill) {
    support::on_every_target([] { on_pages(expect_labels); });
    const Bytes page(8, 0);
    for (const auto& [height, width] : {std::pair{2, 32}, {0, 32}, {2, 0}})
        EXPECT_EQ(ink::label_runs({page.data(), height, width, 4}).component_count, 0);
}

TEST(RunLabels, ReportMissingMemoryByException) {
    const Bytes page = support::random_bitonal(60, 40, 0.1, 4);
    const auto code_of = [&](auto label) {
        return [&page, label] {
            try {
                label(common::BitonalView{page.data(), 60, 320, 40}, 0);
            } catch (const std::bad_alloc&) {
                return -1;
            }
            return 0;
        };
    };
    EXPECT_GE(support::fail_each_allocation(code_of(ink::label_runs)), 5);
    EXPECT_GE(support::fail_each_allocation(code_of(ink::find_components)), 6);
}

}  // namespace

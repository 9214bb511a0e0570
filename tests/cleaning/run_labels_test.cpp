// Page labelling against a flood fill, and the order of runs and components.
#include "cleaning/run_labels.h"

#include <gtest/gtest.h>

#include <new>
#include <tuple>
#include <vector>

#include "models/components_model.h"
#include "support/allocation_limit.h"
#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes inverted(Bytes bytes) {
    for (auto& value : bytes) value = static_cast<std::uint8_t>(~value);
    return bytes;
}

void expect_same_components(const cleaning::RunLabels& labels,
                            const cleaning::PageComponents& found) {
    ASSERT_EQ(found.count, labels.component_count);
    for (std::int32_t i = 0; i < found.count; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const cleaning::LabelledComponent& a = labels.components[index];
        const cleaning::LabelledComponent& b = found.components[index];
        ASSERT_EQ(std::tie(a.x0, a.x1, a.y0, a.y1, a.area, a.run_count),
                  std::tie(b.x0, b.x1, b.y0, b.y1, b.area, b.run_count));
    }
}

void expect_matches_flood_fill(const Bytes& page, int height, int width, int stride,
                               int ink_value) {
    const Bytes ink = ink_value == 0 ? page : inverted(page);
    // Ends with the last row's pixels: a touch of its padding shows under the sanitizer.
    const Bytes bytes(page.begin(), page.begin() + (height - 1) * stride + (width + 7) / 8);
    const auto expected = model::components(ink.data(), height, width, stride);
    const cleaning::RunLabels labels =
        cleaning::label_runs({bytes.data(), height, width, stride}, ink_value);

    ASSERT_EQ(static_cast<std::size_t>(labels.component_count), expected.size());
    std::vector<std::vector<model::Run>> runs(expected.size());
    ASSERT_EQ(labels.row_offsets.size(), static_cast<std::size_t>(height) + 1);
    ASSERT_EQ(labels.row_offsets[static_cast<std::size_t>(height)], labels.run_count);
    for (int y = 0; y < height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        for (std::size_t i = labels.row_offsets[row]; i < labels.row_offsets[row + 1]; ++i) {
            const auto label = static_cast<std::size_t>(labels.label_of_run[i]);
            ASSERT_LT(label, expected.size());
            runs[label].push_back({labels.runs[i].x0, labels.runs[i].x1, y});
        }
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const cleaning::LabelledComponent& found = labels.components[i];
        const model::Component component{found.x0, found.y0,   found.x1,
                                         found.y1, found.area, runs[i]};
        ASSERT_EQ(component, expected[i]) << "component " << i;
        ASSERT_EQ(static_cast<std::size_t>(found.run_count), runs[i].size());
    }
    expect_same_components(
        labels, cleaning::find_components({bytes.data(), height, width, stride}, ink_value));
}

TEST(RunLabels, MatchFloodFillOnNoiseOfEveryDensity) {
    support::on_every_target([] {
        std::uint32_t seed = 1;
        for (const double density : {0.05, 0.2, 0.35, 0.5, 0.65, 0.8, 0.95}) {
            for (const int width : {1, 7, 8, 63, 64, 65, 127, 128, 129, 150}) {
                const int stride = (width + 7) / 8 + static_cast<int>(seed % 3);
                const Bytes page =
                    support::random_bitonal(23, static_cast<std::size_t>(stride), density, ++seed);
                expect_matches_flood_fill(page, 23, width, stride, static_cast<int>(seed % 2));
            }
        }
    });
}

TEST(RunLabels, MatchFloodFillOnText) {
    expect_matches_flood_fill(support::random_text(120, 333, 44, 5), 120, 333, 44, 0);
    expect_matches_flood_fill(support::random_text(120, 333, 44, 6), 120, 333, 44, 1);
}

TEST(RunLabels, DiagonalTouchJoinsAndKnightMoveDoesNot) {
    const Bytes diagonal{0x80, 0x40};
    const Bytes apart{0x80, 0x20};
    EXPECT_EQ(cleaning::label_runs({diagonal.data(), 2, 8, 1}).component_count, 1);
    EXPECT_EQ(cleaning::label_runs({apart.data(), 2, 8, 1}).component_count, 2);
}

TEST(RunLabels, EmptyPagesHaveNoComponents) {
    const Bytes page(8, 0);
    EXPECT_EQ(cleaning::label_runs({page.data(), 2, 32, 4}).component_count, 0);
    EXPECT_EQ(cleaning::label_runs({page.data(), 0, 32, 4}).component_count, 0);
    EXPECT_EQ(cleaning::label_runs({page.data(), 2, 0, 4}).component_count, 0);
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
    EXPECT_GE(support::fail_each_allocation(code_of(cleaning::label_runs)), 5);
    EXPECT_GE(support::fail_each_allocation(code_of(cleaning::find_components)), 6);
}

}  // namespace

// Despeckling against the pixel model, on pages that are hard to label: the same bytes, the same
// questions in the same order, the same answers to arguments that cannot be worked on.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "models/despeckle_comparison.h"
#include "support/bitonal_page.h"
#include "support/random_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Ink where `ink` says so, random padding.
support::BitonalPage drawn(int height, int width, int stride, std::uint32_t seed,
                           const std::function<bool(int x, int y)>& ink) {
    support::BitonalPage page{height, width, stride,
                              support::random_bytes(model::offset(height, stride, 0), seed)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) page.fill(x, x + 1, y, y + 1, ink(x, y));
    return page;
}

// A spiral: rings around the centre, each with a step to the next.
bool on_spiral(int x, int y, int size) {
    const int ring = std::min(std::min(x, y), std::min(size - 1 - x, size - 1 - y));
    const bool step = x == ring && y == ring + 1 && ring % 2 == 0;
    return ring % 2 == 0 ? !step || ring == 0 : x == ring && y == ring + 1;
}

constexpr int kKinds = 12;

support::BitonalPage hard_page(int kind, int height, int width, int stride, std::uint32_t seed) {
    const auto bytes = static_cast<std::size_t>(stride);
    constexpr double kDensities[] = {0.02, 0.1, 0.25, 0.4, 0.5, 0.65, 0.9};
    if (kind < 7) {
        return {height, width, stride,
                support::random_bitonal(height, bytes, kDensities[kind], seed)};
    }
    if (kind == 7) return {height, width, stride, support::random_text(height, width, bytes, seed)};
    return drawn(height, width, stride, seed, [kind](int x, int y) {
        switch (kind) {
            case 8:  // rows, broken
                return y % 2 == 0 && (x + y) % 29 != 0;
            case 9:  // combs, open above and below
                return y % 9 == 8 ? x % 41 != 40 : x % 2 == 0 && y % 9 != 0;
            case 10:
                return on_spiral(x % 23, y % 23, 21) && x % 23 < 21 && y % 23 < 21;
            default:  // dots and pairs around letters
                return (x % 32 < 9 && y % 24 < 12) || (x * 7 + y * 5) % 61 == 0 ||
                       (x * 3 + y * 11) % 97 < 2;
        }
    });
}

TEST(Despeckle, EqualsTheModel) {
    constexpr int kSizes[][2] = {{1, 1},   {1, 70},  {2, 8},    {3, 63}, {17, 64},
                                 {70, 65}, {33, 33}, {24, 129}, {70, 70}};
    constexpr int kAreas[] = {INT_MIN, -1, 0,  1,  2,  4,  5,   6,    9,
                              12,      20, 31, 32, 33, 64, 200, 5000, INT_MAX};
    constexpr int kDistances[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 8, 9, 90, INT_MAX};
    constexpr int kDensities[] = {INT_MIN, -80, -1, 0, 3, 20, 45, 60, 75, 300, INT_MAX};
    constexpr short kHeights[] = {-1, 0, 3, 8, 20, 32767};
    constexpr short kMinDensities[] = {-5, 0, 1, 2, 4, 32767};
    support::Random random(1);
    const auto any = [&random](const auto& numbers) {
        return numbers[random.between(0, static_cast<int>(std::size(numbers)) - 1)];
    };
    for (int kind = 0; kind < kKinds; ++kind) {
        for (const auto& [height, width] : kSizes) {
            const int stride = (width + 7) / 8 + random.between(0, 3);
            const auto seed = static_cast<std::uint32_t>(random.between(0, 1 << 20));
            const support::BitonalPage page = hard_page(kind, height, width, stride, seed);
            for (int round = 0; round < 20; ++round) {
                const model::SpeckArguments n{any(kAreas),   any(kDistances),    any(kDensities),
                                              any(kHeights), any(kMinDensities), round % 4 - 1};
                ASSERT_STREQ(model::differing_despeckling(page, n), nullptr)
                    << "kind " << kind << ", " << height << " x " << width << ", arguments "
                    << n.max_area << ' ' << n.distance << ' ' << n.density << ' ' << n.max_height
                    << ' ' << n.min_density << ' ' << n.answer;
            }
        }
    }
}

// In each case the sizes are checked as the model checks them; no answer may change the page.
TEST(Despeckle, RefusesWhatCannotBeWorkedOn) {
    constexpr int kCases[][3] = {{-1, 8, 1},      {2, -1, 1},
                                 {2, 8, -1},      {0, 8, 1},
                                 {2, 0, 1},       {2, 8, 0},
                                 {0, 8, 0},       {2, 9, 1},
                                 {2, 0, 0},       {65536, 8, 1},
                                 {2, 65536, 1},   {2, 8, 65536},
                                 {2, 8, 131072},  {65538, 65544, 65537},
                                 {INT_MIN, 8, 1}, {2, 65545, 65537}};
    const auto keep = [](void*, int, int, int) { return 0; };
    for (const auto& size : kCases) {
        const int height = size[0], width = size[1], stride = size[2];
        for (const bool null_image : {false, true}) {
            for (const int distance : {0, 1, -1}) {
                SCOPED_TRACE(testing::Message() << height << " x " << width << " / " << stride
                                                << ", near " << distance << ", " << null_image);
                Bytes page{0x10, 0xA0};
                const auto same = [&](auto ours, auto theirs, auto... more) {
                    std::uint8_t* const image = null_image ? nullptr : page.data();
                    EXPECT_EQ(ours(image, height, width, stride, more...),
                              theirs(image, height, width, stride, more...));
                };
                void* const user = nullptr;
                same(despeckl_mem, model::despeckl_mem, 0);
                same(despeckl_c_mem, model::despeckl_c_mem, 0, distance);
                for (const prepro_component_rule rule : {prepro_component_rule{keep}, {}}) {
                    same(despeckl_cb_mem, model::despeckl_cb_mem, rule, user);
                    same(despeckl_ccb_mem, model::despeckl_ccb_mem, rule, user, distance);
                }
                same(despeckl_selective, model::despeckl_selective, 0, 0, 0);
                EXPECT_EQ(page, (Bytes{0x10, 0xA0}));
            }
        }
    }
}

// Sizes count modulo 65,536 for the components, in full for the gaps.
TEST(TextFilter, TakesLargeSizesModulo65536) {
    constexpr int kStride = 65538;
    Bytes page(2 * kStride);
    for (std::size_t i = 0; i < 40; ++i) page[i] = 0xA5;
    Bytes expected = page;
    EXPECT_EQ(pre_tva(page.data(), 2, 65536 + 12, kStride, 1, 4),
              model::pre_tva(expected.data(), 2, 65536 + 12, kStride, 1, 4));
    EXPECT_EQ(page, expected);
    for (const auto& [height, width, stride] :
         {std::array{0, 8, 1}, {1, 8, 0}, {1, -1, 1}, {1, 9, 1}, {-1, 8, 1}, {1, 0, 1}}) {
        EXPECT_EQ(pre_tva(page.data(), height, width, stride, 1, 4),
                  model::pre_tva(page.data(), height, width, stride, 1, 4));
        EXPECT_EQ(pre_tva(nullptr, height, width, stride, 1, 4), -1);
    }
    EXPECT_EQ(page, expected);
}

// A rule sees the page with everything erased that it has wanted erased so far, and no more; near
// other ink it is asked again, about what has grown together.
TEST(Despeckle, ErasesEachComponentBeforeTheNextQuestion) {
    struct Watch {
        Bytes page = {0xA5, 0x00, 0x18, 0x00};
        std::vector<Bytes> seen = {};
        static int ask(void* user, int, int width, int) {
            auto* self = static_cast<Watch*>(user);
            self->seen.push_back(self->page);
            return width == 1 ? 1 : 0;
        }
    };
    std::vector<Bytes> erased_one_by_one = {{0xA5, 0, 0x18, 0},
                                            {0x25, 0, 0x18, 0},
                                            {0x05, 0, 0x18, 0},
                                            {0x01, 0, 0x18, 0},
                                            {0x00, 0, 0x18, 0}};
    Watch alone;
    ASSERT_EQ(despeckl_cb_mem(alone.page.data(), 4, 8, 1, Watch::ask, &alone), 0);
    EXPECT_EQ(alone.seen, erased_one_by_one);
    EXPECT_EQ(alone.page, (Bytes{0x00, 0, 0x18, 0}));
    Watch near;
    ASSERT_EQ(despeckl_ccb_mem(near.page.data(), 4, 8, 1, Watch::ask, &near, 1), 0);
    for (const auto top : Bytes{0xA5, 0x25, 0x24}) {
        erased_one_by_one.push_back({top, 0x3C, 0x3C, 0x3C});
    }
    EXPECT_EQ(near.seen, erased_one_by_one);
    EXPECT_EQ(near.page, (Bytes{0x24, 0, 0x18, 0}));
}

TEST(Despeckle, ARuleThatThrowsIsAFailure) {
    Bytes page{0x80, 0x00};
    const auto ask = [](void*, int, int, int) -> int { throw std::runtime_error("no"); };
    EXPECT_EQ(despeckl_cb_mem(page.data(), 2, 8, 1, ask, nullptr), -1);
    EXPECT_EQ(despeckl_ccb_mem(page.data(), 2, 8, 1, ask, nullptr, 2), -1);
    EXPECT_EQ(page, (Bytes{0x80, 0x00}));
}

}  // namespace

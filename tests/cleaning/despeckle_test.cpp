// Despeckling against the pixel model, on pages that are hard to label: the same bytes, the same
// questions in the same order, the same answers to arguments that cannot be worked on.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <functional>
#include <stdexcept>
#include <vector>

#include "cleaning/despeckle_pages.h"
#include "models/despeckle_model.h"
#include "support/every_target.h"
#include "vemoprepro/cleaning.h"

namespace {

using pages::Bytes;
using pages::Page;

// Answers by the shape of what it is asked about, and remembers that.
struct Judge {
    int answers;  // what it says about some components; about the others it says 0
    std::vector<std::array<int, 3>> asked;

    static int ask(void* user, int height, int width, int area) {
        auto* self = static_cast<Judge*>(user);
        self->asked.push_back({height, width, area});
        return (height * 3 + width * 5 + area) % 4 < 2 || area < 6 ? self->answers : 0;
    }
};

// Calls `call(page, height, width, stride, judge)` of the library and of the model for every kind
// of page in several sizes.
template <class Ours, class Theirs>
void compare_on_pages(std::uint32_t seed, int answers, Ours ours, Theirs theirs) {
    constexpr int kSizes[][2] = {{1, 1},   {1, 70},  {2, 8},    {3, 63}, {17, 64},
                                 {70, 65}, {33, 33}, {24, 129}, {70, 70}};
    for (int kind = 0; kind < pages::kKinds; ++kind) {
        for (const auto& [height, width] : kSizes) {
            const int stride = (width + 7) / 8 + static_cast<int>(++seed % 4);
            const Page page = pages::hard_page(kind, height, width, stride, seed);
            Bytes mine = page.bytes;
            Bytes expected = page.bytes;
            // The last row ends with its pixels: the sanitizer sees a touch of what is behind.
            mine.resize(static_cast<std::size_t>((height - 1) * stride + (width + 7) / 8));
            mine.shrink_to_fit();
            Judge my_judge{answers, {}};
            Judge other_judge{answers, {}};
            const int result = ours(mine.data(), height, width, stride, &my_judge);
            ASSERT_EQ(result, theirs(expected.data(), height, width, stride, &other_judge));
            expected.resize(mine.size());
            ASSERT_EQ(mine, expected) << "kind " << kind << ", " << height << " x " << width;
            ASSERT_EQ(my_judge.asked, other_judge.asked) << "kind " << kind;
        }
    }
}

TEST(Despeckle, ErasesByArea) {
    for (const int max_area : {INT_MIN, -1, 0, 1, 2, 5, 9, 20, 31, 32, 33, 64, 200, INT_MAX}) {
        SCOPED_TRACE(max_area);
        compare_on_pages(
            static_cast<std::uint32_t>(max_area), 1,
            [=](unsigned char* image, int height, int width, int stride, Judge*) {
                return despeckl_mem(image, height, width, stride, max_area);
            },
            [=](unsigned char* image, int height, int width, int stride, Judge*) {
                return model::despeckl_mem(image, height, width, stride, max_area);
            });
    }
}

TEST(Despeckle, KeepsWhatLiesNearLargerInk) {
    for (const int max_area : {-1, 1, 4, 12, 31, 32, 300}) {
        for (const int distance : {INT_MIN, -1, 0, 1, 2, 4, 9, 90, INT_MAX}) {
            SCOPED_TRACE(testing::Message() << max_area << " near " << distance);
            compare_on_pages(
                static_cast<std::uint32_t>(max_area * 1000 + distance % 100), 1,
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return despeckl_c_mem(image, height, width, stride, max_area, distance);
                },
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return model::despeckl_c_mem(image, height, width, stride, max_area, distance);
                });
        }
    }
}

TEST(Despeckle, AsksTheRuleInTheOrderInWhichComponentsEnd) {
    for (const int answers : {-1, 0, 1, 2}) {
        for (const int distance : {-1, 0, 1, 3, 8, 100}) {
            SCOPED_TRACE(testing::Message() << answers << " near " << distance);
            compare_on_pages(
                static_cast<std::uint32_t>(answers * 1000 + distance), answers,
                [=](unsigned char* image, int height, int width, int stride, Judge* judge) {
                    return despeckl_ccb_mem(image, height, width, stride, Judge::ask, judge,
                                            distance);
                },
                [=](unsigned char* image, int height, int width, int stride, Judge* judge) {
                    return model::despeckl_ccb_mem(image, height, width, stride, Judge::ask, judge,
                                                   distance);
                });
        }
        compare_on_pages(
            static_cast<std::uint32_t>(answers), answers,
            [=](unsigned char* image, int height, int width, int stride, Judge* judge) {
                return despeckl_cb_mem(image, height, width, stride, Judge::ask, judge);
            },
            [=](unsigned char* image, int height, int width, int stride, Judge* judge) {
                return model::despeckl_cb_mem(image, height, width, stride, Judge::ask, judge);
            });
    }
}

TEST(Despeckle, ErasesInBusyRegionsOnly) {
    for (const int density : {INT_MIN, -80, -1, 0, 3, 20, 45, 60, 75, 300, INT_MAX}) {
        for (const int max_area : {6, 5000}) {
            SCOPED_TRACE(testing::Message() << max_area << " where busier than " << density);
            compare_on_pages(
                static_cast<std::uint32_t>(max_area) + static_cast<std::uint32_t>(density), 1,
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return despeckl_selective(image, height, width, stride, 7, max_area, density);
                },
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return model::despeckl_selective(image, height, width, stride, 7, max_area,
                                                     density);
                });
        }
    }
}

TEST(TextFilter, KeepsWhatHasTheShapeOfText) {
    for (const short max_height : std::array<short, 6>{-1, 0, 3, 8, 20, 32767}) {
        for (const short min_density : std::array<short, 6>{-5, 0, 1, 2, 4, 32767}) {
            SCOPED_TRACE(testing::Message() << max_height << " high, density " << min_density);
            compare_on_pages(
                static_cast<std::uint32_t>(max_height + min_density), 1,
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return pre_tva(image, height, width, stride, max_height, min_density);
                },
                [=](unsigned char* image, int height, int width, int stride, Judge*) {
                    return model::pre_tva(image, height, width, stride, max_height, min_density);
                });
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
    for (const auto& [height, width, stride] : kCases) {
        for (const bool null_image : {false, true}) {
            for (const int distance : {0, 1, -1}) {
                SCOPED_TRACE(testing::Message() << height << " x " << width << " / " << stride
                                                << ", near " << distance << ", " << null_image);
                Bytes page{0x10, 0xA0};
                std::uint8_t* const image = null_image ? nullptr : page.data();
                EXPECT_EQ(despeckl_mem(image, height, width, stride, 0),
                          model::despeckl_mem(image, height, width, stride, 0));
                EXPECT_EQ(despeckl_c_mem(image, height, width, stride, 0, distance),
                          model::despeckl_c_mem(image, height, width, stride, 0, distance));
                for (const prepro_component_rule rule : {prepro_component_rule{keep}, {}}) {
                    EXPECT_EQ(despeckl_cb_mem(image, height, width, stride, rule, nullptr),
                              model::despeckl_cb_mem(image, height, width, stride, rule, nullptr));
                    EXPECT_EQ(
                        despeckl_ccb_mem(image, height, width, stride, rule, nullptr, distance),
                        model::despeckl_ccb_mem(image, height, width, stride, rule, nullptr,
                                                distance));
                }
                EXPECT_EQ(despeckl_selective(image, height, width, stride, 0, 0, 0),
                          model::despeckl_selective(image, height, width, stride, 0, 0, 0));
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

// A rule sees the page with everything erased that it has wanted erased so far, and no more.
TEST(Despeckle, ErasesEachComponentBeforeTheNextQuestion) {
    struct Watch {
        Bytes page = {0xA5, 0x00, 0x18, 0x00};
        std::vector<Bytes> seen;
    } watch;
    const auto ask = [](void* user, int, int width, int) {
        auto* self = static_cast<Watch*>(user);
        self->seen.push_back(self->page);
        return width == 1 ? 1 : 0;
    };
    ASSERT_EQ(despeckl_cb_mem(watch.page.data(), 4, 8, 1, ask, &watch), 0);
    EXPECT_EQ(watch.seen, (std::vector<Bytes>{{0xA5, 0, 0x18, 0},
                                              {0x25, 0, 0x18, 0},
                                              {0x05, 0, 0x18, 0},
                                              {0x01, 0, 0x18, 0},
                                              {0x00, 0, 0x18, 0}}));
    EXPECT_EQ(watch.page, (Bytes{0x00, 0, 0x18, 0}));
}

TEST(Despeckle, ARuleThatThrowsIsAFailure) {
    Bytes page{0x80, 0x00};
    const auto ask = [](void*, int, int, int) -> int { throw std::runtime_error("no"); };
    EXPECT_EQ(despeckl_cb_mem(page.data(), 2, 8, 1, ask, nullptr), -1);
    EXPECT_EQ(despeckl_ccb_mem(page.data(), 2, 8, 1, ask, nullptr, 2), -1);
}

}  // namespace

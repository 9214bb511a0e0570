// Run morphology against the pixel model on zones of every alignment, and its failures.
#include "cleaning/run_morphology.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "models/runs_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Operation {
    const char* name;
    std::int32_t (*call)(diag::LoggerSlot, std::int32_t, std::uint8_t*, std::int32_t, std::int32_t,
                         std::int32_t, std::int32_t, std::int32_t);
    int (*expected)(int, unsigned char*, int, int, int, int, int);
};

const Operation kOperations[] = {
    {"h_fill_gaps", cleaning::h_fill_gaps, model::h_fill_gaps},
    {"h_remove_short", cleaning::h_remove_short, model::h_remove_short},
    {"h_dilate", cleaning::h_dilate, model::h_dilate},
    {"h_erode", cleaning::h_erode, model::h_erode},
    {"v_fill_gaps", cleaning::v_fill_gaps, model::v_fill_gaps},
    {"v_remove_short", cleaning::v_remove_short, model::v_remove_short},
    {"v_dilate", cleaning::v_dilate, model::v_dilate},
    {"v_erode", cleaning::v_erode, model::v_erode},
};

class RunMorphology : public testing::TestWithParam<Operation> {};

TEST_P(RunMorphology, MatchesTheModelOnRandomZones) {
    support::Random random(11);
    for (int round = 0; round < 400; ++round) {
        const int stride = random.between(1, 30);
        const int height = random.between(1, 40);
        const double density = random.between(1, 19) / 20.0;
        Bytes image =
            round % 4 == 0
                ? support::random_text(height, stride * 8, static_cast<std::size_t>(stride),
                                       static_cast<std::uint32_t>(round))
                : support::random_bitonal(height, static_cast<std::size_t>(stride), density,
                                          static_cast<std::uint32_t>(round));
        const int x0 = random.between(0, stride * 8);
        const int x1 = random.between(x0 == 0 ? 0 : x0 - 1, stride * 8);
        const int y0 = random.chance(0.5) ? 0 : random.between(0, height);
        const int y1 = random.chance(0.5) ? height : random.between(y0 == 0 ? 0 : y0 - 1, height);
        const int n = random.chance(0.8) ? random.between(0, 9) : random.between(0, 300);
        Bytes expected = image;
        GetParam().expected(n, expected.data(), stride, x0, x1, y0, y1);
        ASSERT_EQ(GetParam().call(nullptr, n, image.data(), stride, x0, x1, y0, y1), 0);
        ASSERT_EQ(image, expected) << "n " << n << " stride " << stride << " columns " << x0 << ".."
                                   << x1 << " rows " << y0 << ".." << y1;
    }
}

TEST_P(RunMorphology, HugeLengthsActLikeThoseOfTheWholeZone) {
    const Bytes image = support::random_bitonal(9, 6, 0.4, 5);
    Bytes expected = image;
    GetParam().expected(1000, expected.data(), 6, 3, 45, 1, 8);
    for (const std::int32_t n : {INT32_MAX, INT32_MAX - 1, INT32_MAX / 2 + 1}) {
        Bytes changed = image;
        ASSERT_EQ(GetParam().call(nullptr, n, changed.data(), 6, 3, 45, 1, 8), 0);
        EXPECT_EQ(changed, expected);
    }
}

TEST_P(RunMorphology, NothingChangesWithoutLengthOrZone) {
    const Bytes image = support::random_bitonal(9, 6, 0.5, 6);
    struct Case {
        std::int32_t n, x0, x1, y0, y1;
    };
    for (const Case& c :
         {Case{0, 0, 48, 0, 9}, Case{-3, 0, 48, 0, 9}, Case{INT32_MIN, 0, 48, 0, 9},
          Case{2, 5, 5, 0, 9}, Case{2, 6, 5, 0, 9}, Case{2, 0, 48, 4, 4}, Case{2, 0, 48, 5, 4}}) {
        Bytes changed = image;
        EXPECT_EQ(GetParam().call(nullptr, c.n, changed.data(), 6, c.x0, c.x1, c.y0, c.y1), 0);
        EXPECT_EQ(changed, image);
    }
}

TEST_P(RunMorphology, LeavesTheImageWhenThereIsNoMemory) {
    const Bytes image = support::random_bitonal(12, 6, 0.5, 7);
    Bytes whole = image;
    GetParam().call(nullptr, 3, whole.data(), 6, 1, 47, 0, 12);
    Bytes changed(image.size());
    support::fail_each_allocation([&] {
        std::copy(image.begin(), image.end(), changed.begin());
        const int result = GetParam().call(nullptr, 3, changed.data(), 6, 1, 47, 0, 12);
        EXPECT_EQ(changed, result == 0 ? whole : image);
        return result;
    });
}

INSTANTIATE_TEST_SUITE_P(Operations, RunMorphology, testing::ValuesIn(kOperations),
                         [](const auto& test) { return std::string(test.param.name); });

// Records into members: there is no memory while it is called.
class LastRecord : public diag::Logger {
  public:
    std::int32_t log(std::uint32_t owner, std::int32_t at, std::uint32_t code,
                     const char* text) override {
        matches = owner == 0x1AA0 && at == 192 && code == 145 &&
                  std::strcmp(text, "Cannot allocate memory.") == 0;
        ++count;
        return 0;
    }
    bool matches = false;
    int count = 0;
};

TEST(RunMorphologyFailures, AreLoggedAsListGrowth) {
    Bytes image(4, 0xF0);
    for (const auto operation : {cleaning::h_fill_gaps, cleaning::h_remove_short,
                                 cleaning::h_dilate, cleaning::h_erode, cleaning::v_fill_gaps}) {
        LastRecord record;
        diag::Logger* slot = &record;
        prepro_redefine_malloc(
            [](std::uint64_t, void* (*)(std::size_t)) -> void* { return nullptr; });
        const std::int32_t result = operation(&slot, 2, image.data(), 1, 0, 8, 0, 4);
        prepro_redefine_malloc(nullptr);
        EXPECT_EQ(result, -1);
        EXPECT_EQ(record.count, 1);
        EXPECT_TRUE(record.matches);
        EXPECT_EQ(image, Bytes(4, 0xF0));
    }
}

TEST(RunMorphologyExamples, HoldForOneRow) {
    struct Case {
        const char* name;
        decltype(&cleaning::h_erode) call;
        std::int32_t n;
        std::uint8_t before;
        std::uint8_t after;
    };
    for (const Case& c : {Case{"gap of n stays", cleaning::h_fill_gaps, 3, 0xC7, 0xC7},
                          Case{"gap below n closes", cleaning::h_fill_gaps, 3, 0xCF, 0xFF},
                          Case{"margins are no gaps", cleaning::h_fill_gaps, 3, 0x18, 0x18},
                          Case{"run of 4 vanishes", cleaning::h_erode, 2, 0x78, 0x00},
                          Case{"run of 5 keeps its middle", cleaning::h_erode, 2, 0x7C, 0x10}}) {
        std::uint8_t row = c.before;
        EXPECT_EQ(c.call(nullptr, c.n, &row, 1, 0, 8, 0, 1), 0);
        EXPECT_EQ(row, c.after) << c.name;
    }
}

}  // namespace

// The exported skew estimators against the plain model, and their arguments.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "deskew/skew_pages.h"
#include "models/skew_model.h"
#include "support/allocation_limit.h"
#include "support/every_target.h"
#include "vemoprepro/deskew.h"

namespace {

using support::SkewPage;

struct Outputs {
    int result = 77;
    int yskew = -7;
    int scale = -7;
    double confidence = -7;
    int out_height = -7;
    int out_width = -7;
};

Outputs estimate(const SkewPage& page, int debug = 0, const char* folder = nullptr) {
    Outputs out;
    out.result = estimate_skew_of_binary_image(debug, folder, page.bytes.data(), page.height,
                                               page.width, page.stride, &out.yskew, &out.scale,
                                               &out.confidence, &out.out_height, &out.out_width);
    return out;
}

Outputs expected(const SkewPage& page, std::ostream* trace = nullptr) {
    Outputs out;
    out.result = model::estimate_skew_of_binary_image(
        trace, page.bytes.data(), page.height, page.width, page.stride, &out.yskew, &out.scale,
        &out.confidence, &out.out_height, &out.out_width);
    return out;
}

void expect_same(const Outputs& got, const Outputs& want) {
    EXPECT_EQ(got.result, want.result);
    EXPECT_EQ(got.yskew, want.yskew);
    EXPECT_EQ(got.scale, want.scale);
    EXPECT_EQ(std::memcmp(&got.confidence, &want.confidence, sizeof(double)), 0)
        << got.confidence << " " << want.confidence;
    EXPECT_EQ(got.out_height, want.out_height);
    EXPECT_EQ(got.out_width, want.out_width);
}

// A folder that disappears with the test.
class TemporaryFolder {
  public:
    TemporaryFolder()
        : path_(std::filesystem::path(testing::TempDir()) / ("skew_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string operator/(const char* name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

constexpr char kTraceName[] = "/estimate_skew_of_binary_image.log";

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(SkewEstimate, EqualsTheModelOnPagesOfEverySize) {
    support::Random random(1);
    for (int round = 0; round < 60; ++round) {
        const int height = random.between(32, 130);
        const int width = random.between(32, 200);
        const int least = (width + 31) / 32 * 4;
        const int stride = least + 4 * (round % 3 == 0 ? random.between(1, 12) : 0);
        const auto seed = static_cast<std::uint32_t>(round);
        const SkewPage page =
            round % 2 == 0
                ? support::turned_text(height, width, stride, random.between(-90, 90), seed)
                : support::noise(height, width, stride, 0.1 + 0.02 * (round % 40), seed);
        SCOPED_TRACE(testing::Message() << height << " x " << width << ", stride " << stride);
        expect_same(estimate(page), expected(page));
    }
}

TEST(SkewEstimate, EqualsTheModelOnEveryInstructionSet) {
    const SkewPage text = support::turned_text(263, 611, 100, 17, 5);
    const SkewPage steep = support::turned_text(301, 450, 60, -88, 6);
    const SkewPage noise = support::noise(333, 517, 68, 0.5, 7);
    for (const SkewPage* page : {&text, &steep, &noise}) {
        const Outputs want = expected(*page);
        support::on_every_target([&] { expect_same(estimate(*page), want); });
    }
}

TEST(SkewEstimate, FindsTheSlopeOfText) {
    for (const int rise : {-90, -41, -10, -1, 0, 3, 10, 26, 64, 95}) {
        SCOPED_TRACE(rise);
        const Outputs found = estimate(support::turned_text(700, 1000, 128, rise, 11));
        EXPECT_EQ(found.result, 0);
        EXPECT_NEAR(found.yskew, rise, 1);
        EXPECT_GT(found.confidence, 1.5);
    }
}

TEST(SkewEstimate, StemsAloneDecideWhenThereAreNoLines) {
    // Strokes over the whole height, turned clockwise by 20 / 512.
    SkewPage page{640, 640, 80, std::vector<std::uint8_t>(640 * 80)};
    support::Random random(8);
    for (int stem = -200; stem < 900; stem += random.between(9, 30)) {
        const int phase = random.between(0, 511);  // so that their steps do not form lines
        for (int y = 0; y < page.height; ++y)
            for (int i = 0; i < 4; ++i) set_ink(page, stem + (20 * y + phase) / 512 + i, y);
    }
    const Outputs found = estimate(page);
    expect_same(found, expected(page));
    EXPECT_NEAR(found.yskew, 20, 1);
    EXPECT_GT(found.confidence, 1.5);
}

TEST(SkewEstimate, PageWithoutInkHasNoSkewAndNoConfidence) {
    for (const int height : {32, 33, 47, 48, 200}) {
        SkewPage page{height, 100, 16,
                      std::vector<std::uint8_t>(static_cast<std::size_t>(height) * 16)};
        support::soil_padding(page);
        // The bits of the last byte that is not whole do not count either.
        for (int y = 0; y < height; ++y)
            for (int x = 96; x < 100; ++x) support::set_ink(page, x, y);
        const Outputs found = estimate(page);
        EXPECT_EQ(found.result, 0);
        EXPECT_EQ(found.yskew, 0);
        EXPECT_EQ(found.scale, 512);
        EXPECT_TRUE(std::isnan(found.confidence));
        EXPECT_EQ(found.out_height, height);
        EXPECT_EQ(found.out_width, 100);
    }
}

TEST(SkewEstimate, DoubtfulSkewIsResetButItsConfidenceKept) {
    int doubtful = 0;
    for (std::uint32_t seed = 0; seed < 8; ++seed) {
        const SkewPage page = support::noise(400, 400, 52, 0.5, seed);
        const Outputs found = estimate(page);
        expect_same(found, expected(page));
        if (!(found.confidence < 1.5)) continue;
        ++doubtful;
        EXPECT_EQ(found.yskew, 0);
        EXPECT_EQ(found.out_height, 400);
        EXPECT_EQ(found.out_width, 400);
    }
    EXPECT_GT(doubtful, 0);
}

TEST(SkewEstimate, VeryWideAndVeryTallPages) {
    // More lines than 16-bit sums of edges can hold, in both directions.
    SkewPage wide = support::noise(34, 70'000, 8752, 0.4, 3);
    SkewPage tall = support::noise(40'000, 36, 8, 0.4, 4);
    for (SkewPage* page : {&wide, &tall}) {
        // Half-black stripes give the largest edges there are.
        for (int y = 0; y < page->height; ++y)
            for (int x = 0; x < page->width; ++x)
                if (y / 2 % 2 == 0 || x / 2 % 2 == 0) support::set_ink(*page, x, y);
        expect_same(estimate(*page), expected(*page));
    }
}

TEST(SkewEstimate, RefusalsKeepTheInitialValues) {
    const std::vector<std::uint8_t> bytes(64 * 64, 0x11);
    const struct {
        int height, width, stride;
    } refused[] = {{32, 32, 6},
                   {32, 32, 0},
                   {32, 32, -4},
                   {32, 33, 4},
                   {31, 32, 4},
                   {32, 31, 4},
                   {0, 32, 4},
                   {-1, 32, 4},
                   {32, -32, 4},
                   {32, 64, 10},
                   {32, 0, 4},
                   {32, std::numeric_limits<int>::max(), 64},
                   {std::numeric_limits<int>::min(), 32, 4}};
    for (const auto& size : refused) {
        SCOPED_TRACE(testing::Message() << size.height << " " << size.width << " " << size.stride);
        const SkewPage page{size.height, size.width, size.stride, bytes};
        const Outputs found = estimate(page);
        expect_same(found, {-1, 0, 512, 1.0, -7, -7});
    }
    expect_same(estimate({32, 32, 4, std::vector<std::uint8_t>(128)}),
                {0, 0, 512, -std::numeric_limits<double>::quiet_NaN(), 32, 32});
}

TEST(SkewEstimate, NullPointersAreRefused) {
    const std::vector<std::uint8_t> page(32 * 4);
    Outputs out;
    EXPECT_EQ(estimate_skew_of_binary_image(0, nullptr, nullptr, 32, 32, 4, &out.yskew, &out.scale,
                                            &out.confidence, &out.out_height, &out.out_width),
              -1);
    for (int absent = 0; absent < 5; ++absent) {
        out = Outputs{};
        const auto unless = [&](int index, auto* pointer) {
            return index == absent ? nullptr : pointer;
        };
        EXPECT_EQ(
            estimate_skew_of_binary_image(0, nullptr, page.data(), 32, 32, 4, unless(0, &out.yskew),
                                          unless(1, &out.scale), unless(2, &out.confidence),
                                          unless(3, &out.out_height), unless(4, &out.out_width)),
            -1);
        EXPECT_EQ(out.yskew, absent == 0 ? -7 : 0);
        EXPECT_EQ(out.scale, absent == 1 ? -7 : 512);
        EXPECT_EQ(out.confidence, absent == 2 ? -7 : 1.0);
        EXPECT_EQ(out.out_height, -7);
        EXPECT_EQ(out.out_width, -7);
    }
}

TEST(SkewEstimate, ShortFormGivesTheSame) {
    const SkewPage page = support::turned_text(300, 333, 48, 30, 9);
    const Outputs full = estimate(page);
    Outputs brief;
    EXPECT_EQ(skbitmap_mem(page.bytes.data(), page.height, page.width, page.stride, &brief.yskew,
                           &brief.scale, &brief.out_height, &brief.out_width),
              0);
    EXPECT_EQ(brief.yskew, full.yskew);
    EXPECT_NE(brief.yskew, 0);
    EXPECT_EQ(brief.scale, 512);
    EXPECT_EQ(brief.out_height, full.out_height);
    EXPECT_EQ(brief.out_width, full.out_width);
    EXPECT_EQ(skbitmap_mem(page.bytes.data(), 31, page.width, page.stride, &brief.yskew,
                           &brief.scale, &brief.out_height, &brief.out_width),
              -1);
    EXPECT_EQ(brief.yskew, 0);
    EXPECT_EQ(brief.out_height, full.out_height);
}

TEST(SkewEstimate, TraceIsTheModelsByteForByte) {
    const TemporaryFolder folder;
    const std::string deep = folder / "one/two/three";  // none of the three exists
    const SkewPage pages[] = {support::turned_text(210, 240, 36, 24, 2),
                              support::noise(97, 75, 24, 0.5, 3),
                              support::turned_text(65, 32, 4, -60, 4),
                              {40, 64, 8, std::vector<std::uint8_t>(320)}};
    for (const SkewPage& page : pages) {
        std::ostringstream want;
        const Outputs expected_outputs = expected(page, &want);
        const Outputs traced = estimate(page, 1, deep.c_str());
        expect_same(traced, expected_outputs);
        expect_same(traced, estimate(page));
        // The second and later pages replace the file of the one before.
        EXPECT_EQ(read_file(deep + kTraceName), want.str());
    }
}

TEST(SkewEstimate, OnlyTheLowByteOfDebugAsksForATrace) {
    const TemporaryFolder folder;
    const SkewPage page = support::turned_text(64, 64, 8, 0, 1);
    EXPECT_EQ(estimate(page, 0x7FFF'FF00, (folder / "a").c_str()).result, 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "a"));
    EXPECT_EQ(estimate(page, 0x100 | 0x80, (folder / "a").c_str()).result, 0);
    EXPECT_TRUE(std::filesystem::exists((folder / "a") + kTraceName));
}

TEST(SkewEstimate, TraceThatCannotBeMadeFailsTheCall) {
    const TemporaryFolder folder;
    std::ofstream(folder / "file") << "in the way";
    std::filesystem::create_directories((folder / "taken") + kTraceName + "/full");
    const SkewPage page = support::turned_text(64, 64, 8, 0, 1);
    for (const char* name : {"file", "file/below", "taken"}) {
        SCOPED_TRACE(name);
        testing::internal::CaptureStdout();  // a file that cannot be removed is also reported there
        const Outputs found = estimate(page, 1, (folder / name).c_str());
        testing::internal::GetCapturedStdout();
        expect_same(found, {-1, 0, 512, 1.0, -7, -7});
    }
    // Bad arguments are found before the folder is touched.
    const Outputs refused = estimate({31, 64, 8, page.bytes}, 1, (folder / "untouched").c_str());
    EXPECT_EQ(refused.result, -1);
    EXPECT_FALSE(std::filesystem::exists(folder / "untouched"));
}

TEST(SkewEstimate, EveryAllocationMayFail) {
    const TemporaryFolder folder;
    const SkewPage page = support::turned_text(100, 100, 16, 10, 1);
    const std::string where = folder / "trace";
    for (const int debug : {0, 1}) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        // The sanitizer's own sized operator delete hides the strings of the trace from the hooks;
        // its leak check sees to them.
        if (debug != 0) continue;
#endif
        const Outputs want = estimate(page, debug, where.c_str());
        const int allocations = support::fail_each_allocation([&] {
            const Outputs found = estimate(page, debug, where.c_str());
            expect_same(found, found.result == 0 ? want : Outputs{-1, 0, 512, 1.0, -7, -7});
            return found.result;
        });
        EXPECT_GT(allocations, 3);
    }
}

}  // namespace

#include <gtest/gtest.h>

#include <vector>

#include "models/grey_model.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "support/row_reader.h"
#include "vemoprepro/binarization.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::GuardedBuffer;
using support::RecordingReader;

struct Page {
    int type;
    int width;
    int height;
    RecordingReader source;

    Page(int t, int w, int h, Bytes bytes)
        : type(t),
          width(w),
          height(h),
          source(std::move(bytes), static_cast<std::size_t>(w) * (t == 1 ? 1U : 3U)) {}
};

// One row of one colour pixel each, at full width.
int grey_of(int type, const Bytes& pixels, int smooth, Bytes& out) {
    Page page(type, static_cast<int>(pixels.size()) / (type == 1 ? 1 : 3), 1, pixels);
    out.assign(static_cast<std::size_t>(page.width), 0);
    return bi_color2greybuf(static_cast<unsigned char>(smooth), RecordingReader::read, &page.source,
                            nullptr, type, page.width, 300, 0, page.width, 0, 1, out.data(),
                            page.width, 1, 0);
}

TEST(GreyPreparation, StrongLightColoursAreHeldAndNeutralOnesKept) {
    Bytes out;
    const Bytes pixels = {255, 255, 0, 230, 230, 230, 255, 255, 171, 255, 255, 170, 0, 0, 255};
    ASSERT_EQ(grey_of(3, pixels, 0, out), 0);
    EXPECT_EQ(out, (Bytes{200, 230, 245, 200, 29}));
    ASSERT_EQ(grey_of(2, {255, 255, 0, 0, 255, 255}, 0, out), 0);
    EXPECT_EQ(out, (Bytes{178, 200}));
    ASSERT_EQ(grey_of(1, {255, 0, 201}, 248, out), 0);
    EXPECT_EQ(out, (Bytes{255, 0, 201})) << "one row is never smoothed";
}

TEST(GreyPreparation, OneDarkPixelIsDrawnToItsNeighbours) {
    Bytes bytes(9, 255);
    bytes[4] = 0;
    Page page(1, 3, 3, bytes);
    Bytes out(9);
    ASSERT_EQ(bi_color2greybuf(248, RecordingReader::read, &page.source, nullptr, 1, 3, 300, 0, 3,
                               0, 3, out.data(), 9, 1, 0),
              0);
    bytes[4] = 127;
    EXPECT_EQ(out, bytes);
}

TEST(GreyPreparation, GivesTheModelsBytesAndReadsAsTheModelDoes) {
    support::Random random(1);
    for (int i = 0; i < 400; ++i) {
        const int type = random.between(1, 3);
        const int width = random.between(1, random.chance(0.2) ? 300 : 30);
        const int height = random.between(1, random.chance(0.3) ? 260 : 12);
        const int x0 = random.between(0, width - 1);
        const int x1 = random.between(x0 + 1, width);
        const int y0 = random.chance(0.5) ? 0 : random.between(0, height - 1);
        const int least = random.chance(0.7) ? 0 : 150;
        Bytes bytes(static_cast<std::size_t>(height * width * (type == 1 ? 1 : 3)));
        for (auto& value : bytes) value = static_cast<std::uint8_t>(random.between(least, 255));
        Page page(type, width, height, bytes);
        Page model_page = page;
        const auto smooth = static_cast<unsigned char>(random.between(0, 255));
        const int threads = random.between(-1, 8);
        const int size = (x1 - x0) * (height - y0);
        const int out_size = random.chance(0.8) ? size : random.between(0, size);
        // Whoever does not read the image does not look at the record either.
        const bool uses_image = type == 3 && std::min(threads, (height - y0) / 50) >= 2;
        const unsigned char* words[4] = {nullptr, nullptr, nullptr, page.source.page.data()};
        const void* record =
            uses_image ? static_cast<const void*>(words) : reinterpret_cast<const void*>(1);

        Bytes expected(static_cast<std::size_t>(out_size));
        ASSERT_EQ(model::bi_color2greybuf(smooth, RecordingReader::read, &model_page.source, record,
                                          type, width, 300, x0, x1, y0, height, expected.data(),
                                          out_size, threads, 0),
                  0);
        GuardedBuffer out(static_cast<std::size_t>(out_size));
        ASSERT_EQ(bi_color2greybuf(smooth, RecordingReader::read, &page.source, record, type, width,
                                   300, x0, x1, y0, height, out.data(), out_size, threads, 0),
                  0);
        ASSERT_EQ(out.contents(), expected) << "case " << i;
        ASSERT_TRUE(out.guards_intact());
        ASSERT_EQ(page.source.modes, model_page.source.modes) << "case " << i;
    }
}

// A reader whose second pass delivers other rows than the first: the conversion uses the first, the
// hold on strong colours looks at the second.
TEST(GreyPreparation, HoldLooksAtTheRowsOfItsOwnPass) {
    struct Fickle {
        int passes = 0;
        static int read(void* ctx, int mode, unsigned char* row) {
            auto* self = static_cast<Fickle*>(ctx);
            if (mode == 0) ++self->passes;
            std::fill_n(row, 3, std::uint8_t{230});
            if (self->passes == 2) row[2] = 0;
            return 0;
        }
    } fickle;
    unsigned char grey = 0;
    ASSERT_EQ(
        bi_color2greybuf(0, Fickle::read, &fickle, nullptr, 3, 1, 300, 0, 1, 0, 1, &grey, 1, 1, 0),
        0);
    EXPECT_EQ(grey, 200);
}

TEST(GreyPreparation, RefusesWhatCannotBeWorkedOn) {
    Page page(3, 10, 120, support::random_bytes(3600, 1));
    GuardedBuffer out(1200);
    const Bytes before = out.contents();
    const unsigned char* no_image[4] = {page.source.page.data(), nullptr, nullptr, nullptr};
    const struct {
        const char* what;
        const void* record;
        int type, width, x0, x1, y0, y1, out_size, threads;
    } cases[] = {
        {"type", nullptr, 0, 10, 0, 10, 0, 10, 100, 1},
        {"width", nullptr, 1, 0, 0, 10, 0, 10, 100, 1},
        {"columns", nullptr, 1, 10, 5, 5, 0, 10, 0, 1},
        {"rows", nullptr, 1, 10, 0, 10, 7, 7, 0, 1},
        {"beyond the row", nullptr, 1, 10, 0, 11, 0, 10, 110, 1},
        {"negative size", nullptr, 1, 10, 0, 10, 0, 10, -1, 1},
        {"size beyond the image", nullptr, 1, 10, 0, 10, 0, 10, 101, 1},
        {"threads without a record", nullptr, 3, 10, 0, 10, 0, 120, 1200, 4},
        {"threads without an image", no_image, 3, 10, 0, 10, 0, 120, 1200, 4},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(
            bi_color2greybuf(0, RecordingReader::read, &page.source, c.record, c.type, c.width, 300,
                             c.x0, c.x1, c.y0, c.y1, out.data(), c.out_size, c.threads, 0),
            -1)
            << c.what;
        EXPECT_EQ(out.contents(), before) << c.what;
        EXPECT_TRUE(page.source.modes.empty()) << c.what;
    }
    EXPECT_EQ(bi_color2greybuf(0, nullptr, nullptr, nullptr, 1, 10, 300, 0, 10, 0, 10, out.data(),
                               100, 1, 0),
              -1);
    EXPECT_EQ(bi_color2greybuf(0, RecordingReader::read, &page.source, nullptr, 1, 10, 300, 0, 10,
                               0, 10, nullptr, 100, 1, 0),
              -1);
}

TEST(GreyPreparation, SurvivesEveryFailedAllocation) {
    for (const int type : {1, 2, 3}) {
        Page page(type, 40, 120, support::random_bytes(14400, 2));
        page.source.modes.reserve(100000);
        const unsigned char* record[4] = {nullptr, nullptr, nullptr, page.source.page.data()};
        Bytes out(30 * 120);
        const Bytes untouched(out.size(), 0x5C);
        const int allocations = support::fail_each_allocation([&] {
            std::fill(out.begin(), out.end(), std::uint8_t{0x5C});
            const int result =
                bi_color2greybuf(248, RecordingReader::read, &page.source, record, type, 40, 300, 5,
                                 35, 0, 120, out.data(), static_cast<int>(out.size()), 2, 1);
            EXPECT_EQ(out == untouched, result != 0);
            return result;
        });
        EXPECT_GE(allocations, 3);
    }
}

}  // namespace

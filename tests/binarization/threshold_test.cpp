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

// A page of smooth tones, or one with steps that call for smoothing, with some strong colours.
Bytes page_bytes(int height, std::size_t row_bytes, bool contrast, std::uint32_t seed) {
    support::Random random(seed);
    Bytes bytes(static_cast<std::size_t>(height) * row_bytes);
    for (auto& value : bytes) {
        value = contrast ? random.byte() : static_cast<std::uint8_t>(random.between(180, 255));
    }
    return bytes;
}

struct Case {
    int type;
    int width;
    model::Region at;
    int threads;
    int smooth;
    int thresh;
    bool contrast;
};

Case random_case(support::Random& random) {
    Case made{};
    made.type = random.between(1, 3);
    made.width = random.between(1, random.chance(0.2) ? 300 : 40);
    const int x0 = random.chance(0.5) ? 0 : random.between(0, made.width - 1);
    const int x1 = random.chance(0.5) ? made.width : random.between(x0 + 1, made.width);
    const int y0 = random.chance(0.5) ? 0 : random.between(1, 9);
    const int height = random.between(1, random.chance(0.2) ? 260 : 12);
    made.at = {made.width, x0, x1, y0, y0 + height};
    made.threads = random.between(1, 6);
    made.smooth = random.chance(0.4) ? 0 : random.between(1, 255);
    made.thresh = random.chance(0.4) ? 0 : random.between(1, 255);
    made.contrast = random.chance(0.7);
    return made;
}

// Drops by a rule that looks at all three bytes in their order, and answers with other values than
// 0 and 1 too; remembers what it was asked.
struct RecordingDropout {
    Bytes asked;

    static int decide(void* context, const unsigned char* colour) {
        auto* self = static_cast<RecordingDropout*>(context);
        self->asked.insert(self->asked.end(), colour, colour + 3);
        return (colour[0] + 2 * colour[1] + 3 * colour[2]) % 4;
    }
};

std::size_t row_bytes(const Case& c) {
    return static_cast<std::size_t>(c.width) * (c.type == 1 ? 1 : 3);
}

std::size_t bitonal_size(const model::Region& at) {
    return model::offset(at.h(), model::word_stride(at.w()), 0);
}

TEST(Threshold, GivesTheModelsBytesAndReadsAsTheModelDoes) {
    support::Random random(1);
    for (int i = 0; i < 400; ++i) {
        const Case c = random_case(random);
        const model::Region& at = c.at;
        RecordingReader source(
            page_bytes(at.y1, row_bytes(c), c.contrast, static_cast<std::uint32_t>(i)),
            row_bytes(c));
        RecordingReader model_source = source;
        RecordingDropout dropout;
        RecordingDropout model_dropout;
        const bool drops = random.chance(0.5);

        model::BiSettings settings;
        settings.reader = RecordingReader::read;
        settings.image_record[3] = source.page.data();
        settings.smooth = static_cast<unsigned char>(c.smooth);
        settings.thresh = static_cast<unsigned char>(c.thresh);
        settings.nb_threads = c.threads;
        settings.dropout = drops ? RecordingDropout::decide : nullptr;
        settings.dropout_context = &model_dropout;
        Bytes expected(bitonal_size(at));
        ASSERT_EQ(model::bi_thresh_do(settings, &model_source, c.type, c.width, at.x0, at.x1, at.y0,
                                      at.y1, expected.data()),
                  0);

        bi_settings* handle = bi_setup(RecordingReader::read);
        bi_set_image_pointer(handle, source.page.data());
        bi_set_smooth(handle, static_cast<unsigned char>(c.smooth));
        bi_set_thresh(handle, static_cast<unsigned char>(c.thresh));
        bi_set_nb_threads(handle, c.threads);
        bi_set_dropout(handle, drops ? RecordingDropout::decide : nullptr, &dropout);
        GuardedBuffer out(bitonal_size(at));
        ASSERT_EQ(
            bi_thresh_do(handle, &source, c.type, c.width, at.x0, at.x1, at.y0, at.y1, out.data()),
            0);
        unsigned char smooth = 0;
        bi_get_smooth(handle, &smooth);
        bi_upset(handle);

        ASSERT_EQ(out.contents(), expected) << "case " << i;
        ASSERT_TRUE(out.guards_intact()) << "case " << i;
        ASSERT_EQ(source.modes, model_source.modes) << "case " << i;
        ASSERT_EQ(dropout.asked, model_dropout.asked) << "case " << i;
        ASSERT_EQ(smooth, settings.smooth);
    }
}

TEST(Threshold, OneShotModes) {
    constexpr int kWidth = 33;
    constexpr int kHeight = 9;
    for (const int type : {1, 2, 3}) {
        const std::size_t row = kWidth * (type == 1 ? 1U : 3U);
        RecordingReader source(page_bytes(kHeight, row, true, 7), row);
        RecordingReader model_source = source;
        RecordingDropout dropout;
        RecordingDropout model_dropout;
        for (const int mode : {0, 1, 2, 5, -1}) {
            for (const int thresh : {0, 128, 256, 300, -1}) {
                Bytes out(kHeight * 8);
                Bytes expected(kHeight * 8);
                model::bi_thresh(mode, thresh, RecordingReader::read, &model_source, type, kWidth,
                                 0, kWidth, 0, kHeight, expected.data());
                ASSERT_EQ(bi_thresh(mode, thresh, RecordingReader::read, &source, type, kWidth, 0,
                                    kWidth, 0, kHeight, out.data()),
                          0);
                ASSERT_EQ(out, expected) << "mode " << mode << " thresh " << thresh;
                model::bi_thresh_dropout(mode, thresh, RecordingReader::read, &model_source,
                                         RecordingDropout::decide, &model_dropout, type, kWidth, 0,
                                         kWidth, 0, kHeight, expected.data());
                ASSERT_EQ(bi_thresh_dropout(mode, thresh, RecordingReader::read, &source,
                                            RecordingDropout::decide, &dropout, type, kWidth, 0,
                                            kWidth, 0, kHeight, out.data()),
                          0);
                ASSERT_EQ(out, expected) << "mode " << mode << " thresh " << thresh;
            }
        }
        EXPECT_EQ(source.modes, model_source.modes);
        EXPECT_EQ(dropout.asked, model_dropout.asked);
        EXPECT_EQ(dropout.asked.empty(), type == 1);
    }
}

// Ink of each row as text: what the rules give for a few rows that can be checked by hand.
TEST(Threshold, RulesSeenOnSmallRows) {
    const struct {
        const char* what;
        Bytes grey;
        int thresh;
        int first_byte;
    } cases[] = {{"strictly below", {127, 128, 0, 255}, 128, 0xA0},
                 {"uniform, automatic", {9, 9, 9, 9}, 0, 0x00},
                 {"two levels, automatic: the lower one is white", {50, 200, 50, 200}, 0, 0x00},
                 {"three levels, automatic", {10, 50, 200, 200}, 0, 0x80}};
    for (const auto& c : cases) {
        RecordingReader source(c.grey, c.grey.size());
        Bytes out(4, 0xFF);
        ASSERT_EQ(
            bi_thresh(0, c.thresh, RecordingReader::read, &source, 1, 4, 0, 4, 0, 1, out.data()),
            0);
        EXPECT_EQ(out, (Bytes{static_cast<std::uint8_t>(c.first_byte), 0, 0, 0})) << c.what;
    }
}

// Large enough for the counting that pays on pages, at odd widths, with noise, flat runs and
// alternating pixels.
TEST(Threshold, AutomaticThresholdOfLargeRegions) {
    for (const int width : {1029, 2000, 31}) {
        const int height = 270000 / width;
        const auto row = static_cast<std::size_t>(width);
        support::Random random(static_cast<std::uint32_t>(width));
        Bytes bytes(row * static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = i % 1000 < 300   ? std::uint8_t{250}
                       : i % 1000 < 600 ? static_cast<std::uint8_t>(i % 2 == 0 ? 40 : 60)
                                        : static_cast<std::uint8_t>(random.between(0, 255));
        }
        RecordingReader source(bytes, row);
        RecordingReader model_source = source;
        const model::Region at{width, 0, width, 0, height};
        Bytes out(bitonal_size(at));
        Bytes expected(out.size());
        ASSERT_EQ(bi_thresh(0, 0, RecordingReader::read, &source, 1, width, 0, width, 0, height,
                            out.data()),
                  0);
        model::bi_thresh(0, 0, RecordingReader::read, &model_source, 1, width, 0, width, 0, height,
                         expected.data());
        EXPECT_EQ(out, expected) << width;
    }
}

// Everything that is refused leaves the output alone and calls nobody; smooth is raised all the
// same.
TEST(Threshold, RefusesWhatCannotBeWorkedOn) {
    RecordingReader source(page_bytes(120, 30, true, 3), 30);
    bi_settings* handle = bi_setup(RecordingReader::read);
    bi_settings* no_reader = bi_setup(nullptr);
    GuardedBuffer out(120 * 4);
    const Bytes before = out.contents();
    const struct {
        const char* what;
        bi_settings* handle;
        int type, width, x0, x1, y0, y1, threads;
    } cases[] = {
        {"null handle", nullptr, 1, 30, 0, 10, 0, 10, 1},
        {"null reader", no_reader, 1, 30, 0, 10, 0, 10, 1},
        {"null reader, colour", no_reader, 2, 10, 0, 10, 0, 120, 4},
        {"type 0", handle, 0, 30, 0, 10, 0, 10, 1},
        {"type 4", handle, 4, 30, 0, 10, 0, 10, 1},
        {"width 0", handle, 1, 0, 0, 10, 0, 10, 1},
        {"negative width", handle, 1, -30, 0, 10, 0, 10, 1},
        {"negative x0", handle, 1, 30, -1, 10, 0, 10, 1},
        {"negative y0", handle, 1, 30, 0, 10, -1, 10, 1},
        {"no columns", handle, 1, 30, 10, 10, 0, 10, 1},
        {"columns the wrong way round", handle, 1, 30, 10, 9, 0, 10, 1},
        {"no rows", handle, 1, 30, 0, 10, 10, 10, 1},
        {"rows the wrong way round", handle, 1, 30, 0, 10, 10, 9, 1},
        {"extremes", handle, 1, 30, 0, INT32_MIN, 0, INT32_MIN, 1},
        {"beyond the row", handle, 1, 30, 0, 31, 0, 10, 1},
        {"threads without an image", handle, 3, 10, 0, 10, 0, 100, 2},
    };
    for (const auto& c : cases) {
        if (c.handle != nullptr) {
            bi_set_smooth(c.handle, 100);
            bi_set_nb_threads(c.handle, c.threads);
        }
        EXPECT_EQ(
            bi_thresh_do(c.handle, &source, c.type, c.width, c.x0, c.x1, c.y0, c.y1, out.data()),
            -1)
            << c.what;
        EXPECT_EQ(out.contents(), before) << c.what;
        EXPECT_TRUE(source.modes.empty()) << c.what;
        if (c.handle == nullptr) continue;
        unsigned char smooth = 0;
        bi_get_smooth(c.handle, &smooth);
        EXPECT_EQ(smooth, 102) << c.what;
    }
    EXPECT_EQ(bi_thresh_do(handle, &source, 1, 30, 0, 10, 0, 10, nullptr), -1);
    EXPECT_EQ(bi_thresh(0, 128, nullptr, &source, 1, 30, 0, 10, 0, 10, out.data()), -1);
    EXPECT_EQ(bi_thresh(0, 128, RecordingReader::read, &source, 1, 30, 0, 10, 0, 10, nullptr), -1);
    bi_upset(handle);
    bi_upset(no_reader);
}

TEST(Threshold, AReaderIsNotNeededWhereTheImageIsRead) {
    const Bytes page = page_bytes(100, 30, true, 3);
    bi_settings* handle = bi_setup(nullptr);
    bi_set_nb_threads(handle, 2);
    bi_set_image_pointer(handle, page.data());
    Bytes out(100 * 4);
    EXPECT_EQ(bi_thresh_do(handle, nullptr, 3, 10, 0, 10, 0, 100, out.data()), 0);
    int context = 0;
    bi_set_dropout(handle, RecordingDropout::decide, &context);
    EXPECT_EQ(bi_thresh_do(handle, nullptr, 3, 10, 0, 10, 0, 100, out.data()), -1)
        << "dropout has to read the source";
    bi_upset(handle);
}

TEST(Threshold, SmoothingRisesFromCallToCallUpToItsEnd) {
    RecordingReader source(page_bytes(5, 5, true, 3), 5);
    bi_settings* handle = bi_setup(RecordingReader::read);
    const std::pair<int, int> steps[] = {{0, 0}, {250, 252}, {254, 255}, {255, 255}, {1, 3}};
    for (const auto& [stored, raised] : steps) {
        bi_set_smooth(handle, static_cast<unsigned char>(stored));
        Bytes out(5 * 4);
        EXPECT_EQ(bi_thresh_do(handle, &source, 1, 5, 0, 5, 0, 5, out.data()), 0);
        unsigned char smooth = 99;
        bi_get_smooth(handle, &smooth);
        EXPECT_EQ(smooth, raised);
    }
    bi_upset(handle);
}

// A failed allocation leaves the output untouched, or binarized in full where only the dropout
// could not be run any more.
TEST(Threshold, SurvivesEveryFailedAllocation) {
    for (const int type : {1, 2, 3}) {
        for (const int threads : {1, 2}) {
            const std::size_t row = type == 1 ? 10 : 30;
            RecordingReader source(page_bytes(100, row, true, 5), row);
            source.modes.reserve(100000);
            const auto keep_all = [](void*, const unsigned char*) { return 0; };
            Bytes out(100 * 4);
            Bytes expected(100 * 4);
            int context = 0;
            bi_thresh(1, 0, RecordingReader::read, &source, type, 10, 0, 10, 0, 100,
                      expected.data());
            const Bytes untouched(100 * 4, 0x5C);
            const int allocations = support::fail_each_allocation([&] {
                std::fill(out.begin(), out.end(), std::uint8_t{0x5C});
                bi_settings* handle = bi_setup(RecordingReader::read);
                if (handle == nullptr) return -1;
                bi_set_smooth(handle, 248);
                bi_set_thresh(handle, 0);
                bi_set_nb_threads(handle, threads);
                bi_set_image_pointer(handle, source.page.data());
                bi_set_dropout(handle, keep_all, &context);
                const int result =
                    bi_thresh_do(handle, &source, type, 10, 0, 10, 0, 100, out.data());
                bi_upset(handle);
                EXPECT_TRUE(out == expected || (result == -1 && out == untouched));
                return result;
            });
            EXPECT_GE(allocations, 3);
        }
    }
}

}  // namespace

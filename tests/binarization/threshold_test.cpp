// Grey preparation and the binarization by one threshold against their models.
#include <gtest/gtest.h>

#include <vector>

#include "binarization/settings_handle.h"
#include "models/grey_model.h"
#include "support/random_page.h"
#include "support/row_reader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::GuardedBuffer;
using support::RecordingReader;
using support::SettingsHandle;

constexpr prepro_row_reader kRead = RecordingReader::read;

std::size_t row_bytes(int type, int width) {
    return static_cast<std::size_t>(width) * (type == 1 ? 1 : 3);
}

Bytes random_page(std::size_t size, int least, std::uint32_t seed) {
    support::Random random(seed);
    Bytes bytes(size);
    for (auto& value : bytes) value = static_cast<std::uint8_t>(random.between(least, 255));
    return bytes;
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

struct Case {
    int type;
    model::Region at;
    int threads;
    unsigned char smooth;
    int thresh;
    bool drops;
    bool undithering;
    int resolution;  // of the grey image; the other calls take 300 dots per inch
    int out_size;    // of the grey image
    Bytes page;
};

// An ordered dither, at a third of that in a colour page.
void screen_rows(Bytes& page, std::size_t row_bytes) {
    constexpr std::uint8_t kCell[2][2] = {{250, 30}, {10, 60}};
    for (std::size_t i = 0; i < page.size(); ++i) {
        const std::size_t x = i % row_bytes / 3, y = i / row_bytes;
        page[i] = static_cast<std::uint8_t>(kCell[y / 2 % 2][x / 2 % 2] + page[i] % 6);
    }
}

Case random_case(support::Random& random, std::uint32_t seed) {
    Case made{};
    made.type = random.between(1, 3);
    const int width = random.between(1, random.chance(0.2) ? 300 : 40);
    const int x0 = random.chance(0.5) ? 0 : random.between(0, width - 1);
    const int x1 = random.chance(0.5) ? width : random.between(x0 + 1, width);
    const int y0 = random.chance(0.5) ? 0 : random.between(1, 9);
    const int height = random.between(1, random.chance(0.2) ? 260 : 12);
    made.at = {width, x0, x1, y0, y0 + height};
    made.threads = random.between(1, 8);
    const int smooths[] = {0, 0, 254, 255, random.between(1, 255), random.between(1, 255)};
    made.smooth = static_cast<unsigned char>(smooths[random.between(0, 5)]);
    made.thresh = random.chance(0.4) ? 0 : random.between(1, 255);
    made.drops = random.chance(0.5);
    made.out_size = made.at.w() * made.at.h();
    if (random.chance(0.2)) made.out_size = random.between(0, made.out_size);
    // Tones without the steps that call for smoothing, or all levels.
    made.page = random_page(row_bytes(made.type, width) * static_cast<std::size_t>(made.at.y1),
                            random.chance(0.3) ? 180 : 0, seed);
    made.undithering = random.chance(0.5);
    made.resolution = random.chance(0.5) ? 72 : 300;
    if (random.chance(0.3)) screen_rows(made.page, row_bytes(made.type, width));
    return made;
}

std::size_t bitonal_size(const model::Region& at) {
    return model::offset(at.h(), model::word_stride(at.w()), 0);
}

// Calls model(source, dropout, out) and library(source, dropout, out): same results, reads and
// dropout questions.
void compare(const Case& c, std::size_t size, const auto& model, const auto& library) {
    RecordingReader source(c.page, row_bytes(c.type, c.at.width));
    RecordingReader model_source = source;
    RecordingDropout dropout;
    RecordingDropout model_dropout;
    Bytes expected(size);
    GuardedBuffer out(size);
    ASSERT_EQ(model(&model_source, &model_dropout, expected.data()), 0);
    ASSERT_EQ(library(&source, &dropout, out.data()), 0);
    ASSERT_EQ(out.contents(), expected);
    ASSERT_TRUE(out.guards_intact());
    ASSERT_EQ(source.modes, model_source.modes);
    ASSERT_EQ(dropout.asked, model_dropout.asked);
}

void compare_threshold(const Case& c) {
    const model::Region& at = c.at;
    model::BiSettings settings;
    settings.reader = kRead;
    settings.image_record[3] = c.page.data();
    settings.smooth = c.smooth;
    settings.thresh = static_cast<unsigned char>(c.thresh);
    settings.nb_threads = c.threads;
    settings.undithering = c.undithering;
    settings.dropout = c.drops ? RecordingDropout::decide : nullptr;
    const SettingsHandle handle(kRead);
    bi_set_image_pointer(handle, c.page.data());
    bi_set_smooth(handle, c.smooth);
    bi_set_thresh(handle, settings.thresh);
    bi_set_nb_threads(handle, c.threads);
    bi_set_undithering(handle, c.undithering ? 2 : 0);
    compare(
        c, bitonal_size(at),
        [&](RecordingReader* source, RecordingDropout* dropout, unsigned char* out) {
            settings.dropout_context = dropout;
            return model::bi_thresh_do(settings, source, c.type, at.width, at.x0, at.x1, at.y0,
                                       at.y1, out);
        },
        [&](RecordingReader* source, RecordingDropout* dropout, unsigned char* out) {
            bi_set_dropout(handle, settings.dropout, dropout);
            return bi_thresh_do(handle, source, c.type, at.width, at.x0, at.x1, at.y0, at.y1, out);
        });
    EXPECT_EQ(handle.smooth(), settings.smooth);
}

void compare_grey(const Case& c) {
    const model::Region& at = c.at;
    // Whoever does not read the image does not look at the record either.
    const bool uses_image = c.type == 3 && std::min(c.threads, at.h() / 50) >= 2;
    const unsigned char* words[4] = {nullptr, nullptr, nullptr, c.page.data()};
    const void* record =
        uses_image ? static_cast<const void*>(words) : reinterpret_cast<const void*>(1);
    const auto with = [&](auto call) {
        return [&, call](RecordingReader* source, RecordingDropout*, unsigned char* out) {
            return call(c.smooth, kRead, source, record, c.type, at.width, c.resolution, at.x0,
                        at.x1, at.y0, at.y1, out, c.out_size, c.threads, c.undithering ? 9 : 0);
        };
    };
    compare(c, static_cast<std::size_t>(c.out_size), with(model::bi_color2greybuf),
            with(bi_color2greybuf));
}

TEST(Threshold, GivesTheModelsBytesAndReadsAsTheModelDoes) {
    support::Random random(1);
    for (std::uint32_t i = 0; i < 500 && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        const Case c = random_case(random, i);
        compare_threshold(c);
        compare_grey(c);
    }
}

// What the rules give for a few rows that can be checked by hand.
TEST(Threshold, RulesSeenOnSmallRows) {
    const struct {
        const char* what;
        Bytes grey;
        int thresh;
        std::uint8_t ink;
    } rows[] = {{"strictly below", {127, 128, 0, 255}, 128, 0xA0},
                {"uniform, automatic", {9, 9, 9, 9}, 0, 0x00},
                {"two levels, automatic: the lower one is white", {50, 200, 50, 200}, 0, 0x00},
                {"three levels, automatic", {10, 50, 200, 200}, 0, 0x80}};
    for (const auto& c : rows) {
        RecordingReader source(c.grey, c.grey.size());
        Bytes out(4, 0xFF);
        ASSERT_EQ(bi_thresh(0, c.thresh, kRead, &source, 1, 4, 0, 4, 0, 1, out.data()), 0);
        EXPECT_EQ(out, (Bytes{c.ink, 0, 0, 0})) << c.what;
    }
}

// A reader whose second pass delivers other rows than the first: the conversion uses the first,
// strong colours are looked for in the second.
TEST(Threshold, ClampLooksAtTheRowsOfItsOwnPass) {
    int passes = 0;
    const prepro_row_reader fickle = [](void* ctx, int mode, unsigned char* row) {
        if (mode == 0) ++*static_cast<int*>(ctx);
        std::fill_n(row, 3, std::uint8_t{230});
        if (*static_cast<int*>(ctx) == 2) row[2] = 0;
        return 0;
    };
    unsigned char grey = 0;
    ASSERT_EQ(bi_color2greybuf(0, fickle, &passes, nullptr, 3, 1, 300, 0, 1, 0, 1, &grey, 1, 1, 0),
              0);
    EXPECT_EQ(grey, 200);
}

}  // namespace

// The four bitonal deskew rotations against their pixel models, byte for byte, reports included;
// what they refuse, in which order, and what they leave behind when they fail.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "deskew/bitonal_rotation.h"
#include "deskew/shear_angles.h"
#include "models/deskew_comparison.h"
#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "vemoprepro/deskew.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::BitonalPage;

enum class Ink { kText, kNoise, kSparse, kFull, kNone };

// The padding is dirty, except without ink.
BitonalPage make_page(int height, int width, int extra_stride, Ink ink, std::uint32_t seed = 0) {
    BitonalPage page{height, width, model::word_stride(width) + extra_stride};
    const auto stride = static_cast<std::size_t>(page.stride);
    if (ink == Ink::kText) {
        page.bytes = support::random_text(height, width, stride, seed);
    } else if (ink == Ink::kNoise || ink == Ink::kSparse) {
        const double density = ink == Ink::kNoise ? 0.4 : 0.05;
        page.bytes = support::random_bitonal(height, stride, density, seed);
    } else {
        const std::uint8_t fill = ink == Ink::kFull ? 0xFF : 0;
        page.bytes.assign(static_cast<std::size_t>(height) * stride, fill);
    }
    return page;
}

// What a destination has more than the smallest.
struct Extra {
    int rows = 0;
    int columns = 0;
    int bytes = 0;
};

model::RotationTarget target_for(bool aligned, const BitonalPage& page, int yskew, Extra extra) {
    model::RotationTarget target;
    const auto measure = aligned ? skrotdim : skrotbmp_dim;
    EXPECT_EQ(measure(yskew, 512, page.height, page.width, &target.height, &target.width), 0);
    if (aligned) {
        model::RotationTarget expected;
        model::AlignedShears(yskew).measure(page.height, page.width, expected.height,
                                            expected.width);
        EXPECT_EQ(target.height, expected.height);
        EXPECT_EQ(target.width, expected.width);
    }
    target.height += extra.rows;
    target.width += extra.columns;
    target.stride = model::word_stride(target.width) + extra.bytes;
    return target;
}

// All four kinds. A destination that is too small is refused.
void expect_as_models(const BitonalPage& page, int skew, int scale, int yskew, Extra extra = {}) {
    for (const model::RotationKind& kind : model::kRotationKinds) {
        const model::RotationTarget target = target_for(kind.aligned, page, yskew, extra);
        SCOPED_TRACE(::testing::Message()
                     << kind.name << ' ' << page.height << " x " << page.width << " skew " << skew
                     << '/' << scale << " into " << target.height << " x " << target.width);
        const auto outcome = model::rotate(kind.rotation, skew, scale, page, target);
        if (extra.rows < 0 || extra.columns < 0) {
            EXPECT_TRUE(outcome.status != 0 && outcome.without_a_trace());
        } else {
            EXPECT_EQ(outcome, model::rotate(kind.model, skew, scale, page, target));
        }
    }
}

void expect_as_models(const BitonalPage& page, int yskew, Extra extra = {}) {
    expect_as_models(page, yskew, 512, yskew, extra);
}

TEST(Rotation, EverySkew) {
    const BitonalPage page = make_page(50, 141, 4, Ink::kText, 1);
    for (int yskew = -96; yskew <= 96; ++yskew) expect_as_models(page, yskew);
}

// Destinations that lack a row or a column too.
TEST(Rotation, OddSizesStridesAndDestinations) {
    support::Random random(2);
    for (int round = 0; round < 150; ++round) {
        const BitonalPage page =
            make_page(random.between(1, 90), random.between(1, 200), random.between(0, 9),
                      static_cast<Ink>(random.between(0, 3)), static_cast<std::uint32_t>(round));
        const int rows = random.between(-1, 5);
        const int columns = random.chance(0.1) ? -1 : random.between(0, 70);
        expect_as_models(page, random.between(-96, 96), {rows, columns, random.between(0, 11)});
    }
}

// Widths for which padding bits of the last source byte leave the destination row.
TEST(Rotation, DirtyPaddingStaysInItsRow) {
    for (int width = 25; width <= 40; ++width) {
        const BitonalPage page = make_page(96, width, 0, Ink::kFull);
        for (const int yskew : {-96, -61, -33, 33, 40, 77, 96}) {
            for (const Extra extra : {Extra{}, {0, 0, 1}, {3, 64, 0}}) {
                expect_as_models(page, yskew, extra);
            }
        }
    }
}

TEST(Rotation, ReportsEvery256RowsAndByteColumns) {
    for (const int height : {255, 256, 257}) {
        const BitonalPage page = make_page(height, 40, 0, Ink::kSparse, 3);
        for (const int yskew : {-50, -3, 0, 32, 33}) {
            for (const Extra extra : {Extra{}, {0, 2100, 0}, {0, 0, 505}}) {
                expect_as_models(page, yskew, extra);
            }
        }
    }
}

TEST(Rotation, LongLinesAndBigPieces) {
    BitonalPage page = make_page(70, 1500, 0, Ink::kSparse, 4);
    for (int y = 10; y < 12; ++y) {
        std::fill_n(page.bytes.begin() + y * page.stride + 3, 170, std::uint8_t{0xFF});
    }
    for (int y = 0; y < 70; ++y) page.bytes[static_cast<std::size_t>(y * page.stride + 90)] = 0x7E;
    for (const int yskew : {-32, -31, -7, -1, 1, 2, 8, 20, 32}) expect_as_models(page, yskew);
}

// The largest box that moves whole and the smallest that is sheared, in either direction.
TEST(Rotation, BoxesAtTheLimit) {
    for (const int yskew : {9, 16, 17, 31, 32}) {
        const int limit = 512 / yskew;
        for (int extent = limit - 1; extent <= limit + 1; ++extent) {
            BitonalPage page = make_page(extent + 40, extent + 100, 0, Ink::kNone);
            for (int i = 0; i < extent; ++i) {
                model::set_bit(page.bytes.data(), page.stride, 30 + i, 7, true);
                model::set_bit(page.bytes.data(), page.stride, 5, 20 + i, true);
            }
            expect_as_models(page, yskew);
            expect_as_models(page, -yskew);
        }
    }
}

TEST(Rotation, FractionsOfTheUnitAreDropped) {
    const BitonalPage page = make_page(64, 90, 0, Ink::kText, 5);
    const struct {
        int skew, scale, yskew;
    } cases[] = {{5, 100, 25}, {-5, 100, -25}, {10, -512, -10},
                 {1, 513, 0},  {-1, 10000, 0}, {1000000, 9000000, 56},
                 {7, 57, 62},  {0, 7, 0},      {400000000, INT_MIN, -95}};
    for (const auto& [skew, scale, yskew] : cases) {
        expect_as_models(page, skew, scale, yskew);
        expect_as_models(page, skew, scale, yskew, {3, 40, 5});
        expect_as_models(page, skew, scale, yskew, {-1, 0, 0});
    }
}

TEST(Rotation, SameGeometryAndNoSkewCopiesEveryByte) {
    const BitonalPage page = make_page(33, 70, 7, Ink::kNoise, 6);
    const model::RotationTarget target{page.height, page.width, page.stride};
    const model::RotationKind& own = model::kRotationKinds[0];
    for (const int scale : {512, 0}) {
        EXPECT_TRUE(model::rotations_agree(own, 0, scale, page, target));
        EXPECT_EQ(model::rotate(own.rotation, 0, scale, page, target).page(), page.bytes);
    }
    // A skew that only rounds to 0 clears what is not page.
    EXPECT_TRUE(model::rotations_agree(own, 1, 1000, page, target));
    EXPECT_NE(model::rotate(own.rotation, 1, 1000, page, target).page(), page.bytes);
}

TEST(Rotation, AnglesAreThoseOfTheSkew) {
    for (int yskew = -96; yskew <= 96; ++yskew) {
        const deskew::ShearPlan plan = deskew::shear_plan(yskew);
        const double x = yskew / 512.0;
        const double angle = x / (1 + 0.28 * x * x);
        EXPECT_NEAR(plan.column_factor, std::sin(angle), 1e-8);
        EXPECT_NEAR(plan.row_factor, -std::tan(plan.shears == 3 ? angle / 2 : angle), 1e-8);
    }
}

TEST(RotationSize, KnownSizesAndRefusals) {
    const struct {
        int skew, scale, height, width, status, out_height, out_width;
    } cases[] = {
        {10, 512, 1000, 2000, 0, 1040, 2019},
        {-20, 512, 1000, 2000, 0, 1080, 2039},
        {96, 512, 100, 31, 0, 112, 49},
        {0, 0, 77, 33, 0, 77, 33},
        {97, 512, 10, 10, -1, 5, 6},
        {193, 1024, 512, 10, 0, 536, 106},
        {1, 0, 10, 10, -1, 5, 6},
        {INT_MIN, 1, 10, 10, -1, 5, 6},
        {96, 512, 10, INT_MAX, -1, 5, 6},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(::testing::Message() << test.skew << '/' << test.scale);
        int height = 5;
        int width = 6;
        EXPECT_EQ(skrotbmp_dim(test.skew, test.scale, test.height, test.width, &height, &width),
                  test.status);
        EXPECT_EQ(height, test.out_height);
        EXPECT_EQ(width, test.out_width);
        // The size of the aligned rotation is refused for the same reasons, and stored then, too.
        EXPECT_EQ(skrotdim(test.skew, test.scale, test.height, test.width, &height, &width),
                  test.status);
        EXPECT_EQ(height == 0 && width == 0, test.status != 0);
    }
    for (const auto measure : {skrotbmp_dim, skrotdim}) {
        int size = 7;
        EXPECT_EQ(measure(10, 512, 10, 10, nullptr, &size), -1);
        EXPECT_EQ(measure(10, 512, 10, 10, &size, nullptr), -1);
        EXPECT_EQ(size, 7);
    }
}

TEST(RotationChecks, RefusalsInOrderAndWithoutATrace) {
    constexpr int kTooSmall = 0;  // stands for the kind's own code
    // A call on a page of 40 x 60 and a destination of 60 x 90 with one thing or more wrong.
    const struct {
        const char* what;
        int status;
        int skew = 20, scale = 512;
        bool src = true, dst = true;
        int height = 40, width = 60, stride = 8;
        int out_height = 60, out_width = 90, out_stride = 12;
    } cases[] = {
        {.what = "source stride", .status = -2, .stride = 7},
        {.what = "source stride of whole bytes only", .status = -2, .width = 65, .stride = 9},
        {.what = "destination stride", .status = -2, .out_stride = 11},
        {.what = "stride before null", .status = -2, .src = false, .dst = false, .stride = 4},
        {.what = "stride before skew", .status = -2, .skew = 97, .out_stride = 8},
        {.what = "stride before size", .status = -2, .stride = 4, .out_height = 1},
        {.what = "negative stride", .status = -2, .out_stride = -12},
        {.what = "no source", .status = -1, .src = false},
        {.what = "no destination", .status = -1, .dst = false},
        {.what = "no rows", .status = -1, .height = 0},
        {.what = "no columns", .status = -1, .width = 0},
        {.what = "negative rows", .status = -1, .height = -40},
        {.what = "all negative", .status = -1, .height = -4, .width = -6, .stride = 0},
        {.what = "skew above", .status = -1, .skew = 97},
        {.what = "skew below", .status = -1, .skew = -97},
        {.what = "product beyond 32 bits", .status = -1, .skew = 8388609, .scale = 1},
        {.what = "skew over nothing", .status = -1, .scale = 0},
        {.what = "skew before size", .status = -1, .skew = 97, .out_height = 1, .out_width = 1},
        {.what = "too few rows", .status = kTooSmall, .out_height = 41},
        {.what = "too few columns", .status = kTooSmall, .out_width = 60},
        {.what = "empty destination", .status = kTooSmall, .out_height = 0},
        {.what = "negative destination", .status = kTooSmall, .out_height = -60, .out_width = -90},
        {.what = "no skew, too few rows", .status = kTooSmall, .skew = 0, .out_height = 39},
        {.what = "no skew, too few columns", .status = kTooSmall, .skew = 0, .out_width = 59},
    };
    for (const model::RotationKind& kind : model::kRotationKinds) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(kind.name) + ": " + c.what);
            Bytes source = support::random_bytes(40 * 12, 1);
            const Bytes before = source;
            Bytes result(60 * 12, 0x5C);
            static int reports;
            reports = 0;
            const int status =
                kind.rotation(c.skew, c.scale, c.src ? source.data() : nullptr, c.height, c.width,
                              c.stride, c.dst ? result.data() : nullptr, c.out_height, c.out_width,
                              c.out_stride, [](unsigned, unsigned) { ++reports; });
            const int too_small = kind.aligned ? -1 : -2;
            EXPECT_EQ(status, c.status == kTooSmall ? too_small : c.status);
            EXPECT_EQ(source, before);
            EXPECT_EQ(result, Bytes(60 * 12, 0x5C));
            EXPECT_EQ(reports, 0);
        }
    }
}

// One row of 65,535 pixels is rotated; a pixel, a byte of stride or a row more is refused.
TEST(RotationChecks, SidesAreSixteenBitNumbers) {
    const Bytes source(65536);
    Bytes result(65536 * 8);
    const int cases[][8] = {
        {0, 0, 1, 65535, 8192, 2, 65535, 8192},   {-1, 0, 1, 65536, 8192, 2, 65536, 8192},
        {-1, 0, 1, 65536, 8192, 1, 65536, 8192},  {0, 0, 1, 32, 65535, 2, 32, 4},
        {-1, 0, 1, 32, 65536, 2, 32, 4},          {-1, 0, 1, 32, 4, 2, 32, 65536},
        {0, 0, 1, 32, 4, 65535, 32, 4},           {-1, 0, 1, 32, 4, 65536, 32, 4},
        {-2, 1, 1, 65535, 8192, 65, 65535, 8192},  // 129 rows
    };
    for (const auto& [status, skew, h, w, stride, oh, ow, ostride] : cases) {
        EXPECT_EQ(skrotbmp_mem(skew, 512, source.data(), h, w, stride, result.data(), oh, ow,
                               ostride, nullptr),
                  status)
            << h << ' ' << w << ' ' << stride << ' ' << oh << ' ' << ostride;
    }
}

TEST(RotationChecks, EveryRotationLogsWhyItGivesUp) {
    struct : diag::Logger {
        std::int32_t log(std::uint32_t, std::int32_t, std::uint32_t code, const char*) override {
            codes[count++ % 4] = code;
            return 0;
        }
        std::uint32_t codes[4] = {};
        std::size_t count = 0;
    } logger;
    diag::Logger* slot = &logger;
    const BitonalPage page = make_page(64, 64, 0, Ink::kText, 1);
    Bytes result(128 * 16);
    const struct {
        decltype(&deskew::straighten) rotate;
        int skew;
    } cases[] = {
        {deskew::straighten, 10}, {deskew::straighten, 40}, {deskew::straighten_aligned, 10}};
    for (const auto& c : cases) {
        logger.count = 0;
        bool thrown = false;
        prepro_redefine_malloc(support::failing_malloc);
        support::allocations_until_failure = 0;
        try {
            c.rotate({page.bytes.data(), 64, 64, page.stride}, {c.skew, 512},
                     {result.data(), 128, 128, 16}, {}, &slot);
        } catch (...) {
            thrown = true;
        }
        support::allocations_until_failure = -1;
        prepro_redefine_malloc(nullptr);
        EXPECT_TRUE(thrown);
        ASSERT_EQ(logger.count, 2U);
        EXPECT_EQ(logger.codes[0], diag::kNoMemoryCode);
        EXPECT_EQ(logger.codes[1], diag::kGaveUpCode);
    }
}

TEST(RotationChecks, AThrowingCallbackEndsTheCallAndTheSourceComesBack) {
    const BitonalPage page = make_page(40, 60, 0, Ink::kText, 1);
    for (const model::RotationKind& kind : model::kRotationKinds) {
        for (const int yskew : {0, 20, 40}) {
            SCOPED_TRACE(kind.name);
            Bytes source = page.bytes;
            Bytes result(60 * 12);
            EXPECT_EQ(
                kind.rotation(yskew, 512, source.data(), 40, 60, page.stride, result.data(), 60, 90,
                              12, [](unsigned, unsigned) { throw std::runtime_error("stop"); }),
                -1);
            EXPECT_EQ(source, page.bytes);
        }
    }
}

}  // namespace

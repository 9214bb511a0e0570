// The aligned bitonal rotation against shears of single pixels.
#include <gtest/gtest.h>

#include <cmath>

#include "deskew/shear_angles.h"
#include "models/pixels.h"
#include "rotation_support.h"

namespace {

using namespace rotation_test;
using model::Bits;

// One shear of a picture: line i moves floor((i + 0.5) * factor) + base pixels along itself.
struct Shear {
    double factor;
    int growth;

    Shear(int lines, double f)
        : factor(f), growth(std::abs(static_cast<int>(std::floor((lines - 0.5) * f)))) {}
    int shift(int line) const {
        return static_cast<int>(std::floor((line + 0.5) * factor)) + (factor < 0 ? growth : 0);
    }
};

Bits shear_rows(const Bits& page, double factor) {
    const Shear shear(page.height, factor);
    Bits moved(page.height, page.width + shear.growth);
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x) {
            if (page.get(x, y)) moved.set(x + shear.shift(y), y, true);
        }
    }
    return moved;
}

Bits shear_columns(const Bits& page, double factor) {
    const Shear shear(page.width, factor);
    Bits moved(page.height + shear.growth, page.width);
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x) {
            if (page.get(x, y)) moved.set(x, y + shear.shift(x), true);
        }
    }
    return moved;
}

// The rotated page from the library's mathematics functions: the polynomials stand for the tangent
// and the sine of the same angle, and no shift here hangs on their eighth digit.
Bits rotated(const Page& page, int yskew, bool complement) {
    const double x = yskew / 512.0;
    const double angle = x / (1 + 0.28 * x * x);
    const bool three = std::abs(yskew) > 25;
    const double row_factor = -std::tan(three ? angle / 2 : angle);
    Bits bits = model::unpack(page.bytes.data(), page.height, page.width, page.stride);
    if (complement) {
        for (char& pixel : bits.pixels) pixel = pixel == 0;
    }
    bits = shear_columns(shear_rows(bits, row_factor), std::sin(angle));
    return three ? shear_rows(bits, row_factor) : bits;
}

// What a destination of `target` that held 0x5C holds after the block of the page was written.
std::vector<std::uint8_t> with_block(const Bits& bits, const Target& target) {
    std::vector<std::uint8_t> bytes(target.bytes(), 0x5C);
    const int stride = word_stride(bits.width);
    std::fill_n(bytes.begin(), bits.height * stride, std::uint8_t{0});
    for (int y = 0; y < bits.height; ++y) {
        for (int x = 0; x < bits.width; ++x) {
            if (bits.get(x, y)) model::set_bit(bytes.data(), stride, x, y, true);
        }
    }
    return bytes;
}

const Reports kThreeSteps{{0, 3}, {1, 3}, {2, 3}, {3, 3}};

void expect_rotated(const Page& page, int yskew, int rows = 0, int columns = 0, int bytes = 0) {
    SCOPED_TRACE(::testing::Message() << page.height << " x " << page.width << " skew " << yskew);
    for (const bool complement : {false, true}) {
        const Bits bits = rotated(page, yskew, complement);
        const Target target{bits.height + rows, bits.width + columns,
                            word_stride(bits.width + columns) + bytes};
        const Outcome outcome =
            complement
                ? rotate_restoring(skew_binary_image_aligned_with_skrotimg_mem_black_background,
                                   yskew, 512, page, target)
                : rotate(skew_binary_image_aligned_with_skrotimg_mem, yskew, 512, page, target);
        EXPECT_EQ(outcome, (Outcome{0, with_block(bits, target), kThreeSteps}));
        // The size is exact: a row or a column less is refused before anything is written.
        for (const Target& small : {Target{bits.height - 1, target.width, target.stride},
                                    Target{bits.height, bits.width - 1, target.stride}}) {
            EXPECT_EQ(rotate(skew_binary_image_aligned_with_skrotimg_mem, yskew, 512, page, small),
                      (Outcome{-1, std::vector<std::uint8_t>(small.bytes(), 0x5C), {}}));
        }
    }
}

TEST(AlignedRotation, EverySkew) {
    const Page page = make_page(50, 83, 4, Ink::kText, 1);
    for (int yskew = -96; yskew <= 96; ++yskew) {
        if (yskew != 0) expect_rotated(page, yskew);
    }
}

TEST(AlignedRotation, OddSizesStridesAndDestinations) {
    support::Random random(2);
    for (int round = 0; round < 120; ++round) {
        const Page page =
            make_page(random.between(1, 90), random.between(1, 200), random.between(0, 9),
                      static_cast<Ink>(random.between(0, 3)), static_cast<std::uint32_t>(round));
        const int yskew = random.between(1, 96) * (random.chance(0.5) ? 1 : -1);
        expect_rotated(page, yskew, random.between(0, 5), random.between(0, 70),
                       random.between(0, 11));
    }
}

TEST(AlignedRotation, TwoShearsUpTo25) {
    EXPECT_EQ(deskew::shear_plan(25).shears, 2);
    EXPECT_EQ(deskew::shear_plan(-25).shears, 2);
    EXPECT_EQ(deskew::shear_plan(26).shears, 3);
    EXPECT_EQ(deskew::shear_plan(-26).shears, 3);
}

TEST(AlignedRotation, AnglesAreThoseOfTheSkew) {
    for (int yskew = -96; yskew <= 96; ++yskew) {
        const deskew::ShearPlan plan = deskew::shear_plan(yskew);
        const double x = yskew / 512.0;
        const double angle = x / (1 + 0.28 * x * x);
        EXPECT_NEAR(plan.column_factor, std::sin(angle), 1e-8);
        EXPECT_NEAR(plan.row_factor, -std::tan(plan.shears == 3 ? angle / 2 : angle), 1e-8);
    }
}

TEST(AlignedRotation, NoSkewCopiesIntoADestinationOfAtLeastThePage) {
    const Page page = make_page(20, 45, 4, Ink::kNoise, 3);
    const Target target{23, 70, 12};
    for (const int skew : {0, 1}) {
        const Outcome outcome =
            rotate(skew_binary_image_aligned_with_skrotimg_mem, skew, 1000, page, target);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.reports, (Reports{{0, 1}, {1, 1}}));
        for (int y = 0; y < target.height; ++y) {
            for (int i = 0; i < target.stride; ++i) {
                const bool inside = y < page.height && i < 6;
                ASSERT_EQ(outcome.bytes[model::offset(y, target.stride, i)],
                          inside ? page.bytes[model::offset(y, page.stride, i)] : 0);
            }
        }
        EXPECT_EQ(rotate(skew_binary_image_aligned_with_skrotimg_mem, skew, 1000, page,
                         Target{19, 70, 12})
                      .status,
                  -1);
        EXPECT_EQ(rotate(skew_binary_image_aligned_with_skrotimg_mem, skew, 1000, page,
                         Target{20, 44, 12})
                      .status,
                  -1);
    }
}

}  // namespace

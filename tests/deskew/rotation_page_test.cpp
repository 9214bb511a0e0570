// The library's own bitonal deskew against its pixel model, byte for byte, reports included.
#include <gtest/gtest.h>

#include "models/deskew_model.h"
#include "rotation_support.h"

namespace {

using namespace rotation_test;

// The smallest destination for the page, made larger by the three extras.
Target target_for(const Page& page, int yskew, int rows = 0, int columns = 0, int bytes = 0) {
    Target target{};
    EXPECT_EQ(skrotbmp_dim(yskew, 512, page.height, page.width, &target.height, &target.width), 0);
    target.height += rows;
    target.width += columns;
    target.stride = word_stride(target.width) + bytes;
    return target;
}

void expect_as_model(const Page& page, int skew, int scale, const Target& target) {
    SCOPED_TRACE(::testing::Message() << page.height << " x " << page.width << " skew " << skew
                                      << '/' << scale << " into " << target.height << " x "
                                      << target.width << " stride " << target.stride);
    EXPECT_EQ(rotate(skrotbmp_mem, skew, scale, page, target),
              rotate(model::skrotbmp_mem, skew, scale, page, target));
    EXPECT_EQ(rotate_restoring(skrotbmp_b_mem, skew, scale, page, target),
              rotate_restoring(model::skrotbmp_b_mem, skew, scale, page, target));
}

TEST(PageRotation, EverySkewOfATextPage) {
    const Page page = make_page(70, 141, 4, Ink::kText, 1);
    for (int yskew = -96; yskew <= 96; ++yskew) {
        expect_as_model(page, yskew, 512, target_for(page, yskew));
    }
}

TEST(PageRotation, OddSizesStridesAndDestinations) {
    support::Random random(2);
    for (int round = 0; round < 150; ++round) {
        const Page page =
            make_page(random.between(1, 90), random.between(1, 200), random.between(0, 9),
                      static_cast<Ink>(random.between(0, 3)), static_cast<std::uint32_t>(round));
        const int yskew = random.between(-96, 96);
        expect_as_model(page, yskew, 512,
                        target_for(page, yskew, random.between(0, 5), random.between(0, 70),
                                   random.between(0, 11)));
    }
}

// Widths for which padding bits of the last source byte leave the destination row.
TEST(PageRotation, DirtyPaddingStaysInItsRow) {
    for (int width = 25; width <= 40; ++width) {
        const Page page = make_page(96, width, 0, Ink::kFull, 0);
        for (const int yskew : {-96, -61, -33, 33, 40, 77, 96}) {
            expect_as_model(page, yskew, 512, target_for(page, yskew));
            expect_as_model(page, yskew, 512, target_for(page, yskew, 0, 0, 1));
            expect_as_model(page, yskew, 512, target_for(page, yskew, 3, 64));
        }
    }
}

TEST(PageRotation, ReportsEvery256RowsAndByteColumns) {
    for (const int height : {255, 256, 257}) {
        const Page page = make_page(height, 40, 0, Ink::kSparse, 3);
        for (const int yskew : {-50, -3, 0, 32, 33}) {
            expect_as_model(page, yskew, 512, target_for(page, yskew));
            expect_as_model(page, yskew, 512, target_for(page, yskew, 0, 2100));
            expect_as_model(page, yskew, 512, target_for(page, yskew, 0, 0, 505));
        }
    }
}

TEST(PageRotation, LongRulesAndBigPieces) {
    Page page = make_page(70, 1500, 0, Ink::kSparse, 4);
    for (int y = 10; y < 12; ++y) {
        std::fill_n(page.bytes.begin() + y * page.stride + 3, 170, std::uint8_t{0xFF});
    }
    for (int y = 0; y < 70; ++y) page.bytes[static_cast<std::size_t>(y * page.stride + 90)] = 0x7E;
    for (const int yskew : {-32, -31, -7, -1, 1, 2, 8, 20, 32}) {
        expect_as_model(page, yskew, 512, target_for(page, yskew));
    }
}

// The largest box that moves whole and the smallest that is sheared, in either direction.
TEST(PageRotation, BoxesAtTheLimit) {
    for (const int yskew : {9, 16, 17, 31, 32}) {
        const int limit = 512 / yskew;
        for (int extent = limit - 1; extent <= limit + 1; ++extent) {
            Page page{extent + 40, extent + 100, word_stride(extent + 100), {}};
            page.bytes.assign(static_cast<std::size_t>(page.height * page.stride), 0);
            for (int i = 0; i < extent; ++i) {
                model::set_bit(page.bytes.data(), page.stride, 30 + i, 7, true);
                model::set_bit(page.bytes.data(), page.stride, 5, 20 + i, true);
            }
            expect_as_model(page, yskew, 512, target_for(page, yskew));
            expect_as_model(page, -yskew, 512, target_for(page, -yskew));
        }
    }
}

TEST(PageRotation, FractionsOfTheUnitAreDropped) {
    const Page page = make_page(64, 90, 0, Ink::kText, 5);
    const struct {
        int skew, scale, yskew;
    } cases[] = {{5, 100, 25}, {-5, 100, -25}, {10, -512, -10},
                 {1, 513, 0},  {-1, 10000, 0}, {1000000, 9000000, 56},
                 {7, 57, 62},  {0, 7, 0},      {400000000, -2147483647 - 1, -95}};
    for (const auto& [skew, scale, yskew] : cases) {
        expect_as_model(page, skew, scale, target_for(page, yskew));
    }
}

TEST(PageRotation, SameGeometryAndNoSkewCopiesEveryByte) {
    const Page page = make_page(33, 70, 7, Ink::kNoise, 6);
    const Target target{page.height, page.width, page.stride};
    for (const int scale : {512, 0}) {
        const Outcome outcome = rotate(skrotbmp_mem, 0, scale, page, target);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.bytes, page.bytes);
        EXPECT_EQ(outcome.reports, (Reports{{0, 1}, {1, 1}}));
    }
    // A skew that only rounds to 0 clears what is not page.
    const Outcome rounded = rotate(skrotbmp_mem, 1, 1000, page, target);
    EXPECT_EQ(rounded, rotate(model::skrotbmp_mem, 1, 1000, page, target));
    EXPECT_NE(rounded.bytes, page.bytes);
}

TEST(PageRotation, DotsMoveWholeWhereThePlainShearCutsThem) {
    Page page{1000, 600, word_stride(600), {}};
    page.bytes.assign(static_cast<std::size_t>(page.height * page.stride), 0);
    for (int y = 500; y < 512; ++y) {
        for (int x = 300; x < 312; ++x) model::set_bit(page.bytes.data(), page.stride, x, y, true);
    }
    const Target target = target_for(page, 20);
    const Outcome outcome = rotate(skrotbmp_mem, 20, 512, page, target);
    // The box's centre (306, 506) moves 39 - 19 right; the column 326 moves 12 down.
    for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
            const bool inside = x >= 320 && x < 332 && y >= 512 && y < 524;
            ASSERT_EQ(model::get_bit(outcome.bytes.data(), target.stride, x, y), inside);
        }
    }
}

}  // namespace

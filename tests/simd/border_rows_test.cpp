#include "simd/border_rows.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <vector>

#include "support/every_target.h"
#include "support/random_page.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Marks = std::vector<std::uint64_t>;
using simd::PixelLayout;
using simd::Walk;

constexpr std::size_t kLongest = 3 * 64 + 7;  // three words, and a rest

// A row of an image in a block of its size, and room for its grey values.
struct Line {
    Bytes pixels;
    Bytes grey = Bytes(kLongest + 4 * simd::kMaskBlock);
    std::uint64_t ready = 0;
    simd::GreyLine line;

    explicit Line(Bytes row)
        : pixels(std::move(row)), line{pixels.data(), grey.data() + simd::kMaskBlock, &ready} {}
};

Bytes grey_of(PixelLayout layout, const Bytes& pixels) {
    Bytes grey(pixels.size() / simd::pixel_bytes(layout));
    for (std::size_t x = 0; x < grey.size(); ++x)
        grey[x] = simd::plain::grey_value(layout, pixels.data() + x * simd::pixel_bytes(layout));
    return grey;
}

Marks random_marks(std::size_t width, double density, support::Random& random) {
    Marks marks(simd::mask_words(width));
    for (std::size_t x = 0; x < width; ++x)
        if (random.chance(density)) marks[x / 64] |= std::uint64_t{1} << (x % 64);
    return marks;
}

void check_spreading(PixelLayout layout, std::size_t width, Walk walk, std::uint32_t seed) {
    support::Random random(seed);
    const int spread = random.between(1, 60);
    const auto random_row = [&] {
        Bytes row(width * simd::pixel_bytes(layout));
        for (auto& value : row) value = static_cast<std::uint8_t>(random.between(90, 90 + spread));
        return row;
    };
    Line row(random_row());
    Line neighbour(random_row());
    const simd::JoinLimits limits{static_cast<std::uint8_t>(random.between(100, 150)),
                                  static_cast<std::uint8_t>(random.between(spread / 3, spread))};
    Marks marks = random_marks(width, 0.02, random);
    const Marks beside = random_marks(width, 0.02, random);
    Marks expected = marks;
    const bool any = simd::plain::spread_marks(
        walk, width, limits, grey_of(layout, row.pixels).data(),
        grey_of(layout, neighbour.pixels).data(), beside.data(), expected.data());
    ASSERT_EQ(simd::spread_marks(walk, {layout, width}, limits, row.line, neighbour.line,
                                 beside.data(), marks.data()),
              any)
        << "width " << width << ", seed " << seed;
    ASSERT_EQ(marks, expected) << "width " << width << ", seed " << seed;
}

TEST(BorderRows, SpreadsLikeThePlainForm) {
    support::on_every_target([] {
        for (std::size_t width = 1; width <= kLongest; ++width) {
            for (const auto layout :
                 {PixelLayout::kGrey, PixelLayout::kBgr, PixelLayout::kRgb, PixelLayout::kXrgb}) {
                const auto seed = static_cast<std::uint32_t>(4 * width + simd::pixel_bytes(layout));
                check_spreading(layout, width, Walk::kRight, seed);
                check_spreading(layout, width, Walk::kLeft, seed);
            }
        }
    });
}

// All greens and blues with every fifth red.
TEST(BorderRows, GreyValuesAreExact) {
    constexpr std::size_t kColours = 65536;
    support::on_every_target([] {
        const std::size_t step = hwy::SupportedTargets() == HWY_EMU128 ? 51 : 5;
        Bytes colours(3 * kColours);
        Bytes grey(kColours + 2 * simd::kMaskBlock);
        Marks marks(kColours / 64);
        for (std::size_t red = 0; red < 256; red += step) {
            for (std::size_t i = 0; i < kColours; ++i) {
                colours[3 * i] = static_cast<std::uint8_t>(red);
                colours[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
                colours[3 * i + 2] = static_cast<std::uint8_t>(i);
            }
            Marks ready(kColours / 4096);
            simd::GreyLine line{colours.data(), grey.data() + simd::kMaskBlock, ready.data()};
            simd::mark_dark({PixelLayout::kRgb, kColours}, line, 0, marks.data());
            for (std::size_t i = 0; i < kColours; ++i) {
                ASSERT_EQ(line.grey[i],
                          simd::plain::grey_value(PixelLayout::kRgb, colours.data() + 3 * i))
                    << red << ' ' << i;
            }
        }
    });
}

TEST(BorderRows, MarksDarkPixels) {
    support::on_every_target([] {
        for (std::size_t width = 1; width <= kLongest; ++width) {
            Line row(support::random_bytes(width, static_cast<std::uint32_t>(width)));
            const auto limit = static_cast<std::uint8_t>(7 * width);
            Marks marks(simd::mask_words(width));
            marks[0] = 1;
            Marks expected = marks;
            for (std::size_t x = 0; x < width; ++x)
                if (row.pixels[x] <= limit) expected[x / 64] |= std::uint64_t{1} << (x % 64);
            simd::mark_dark({PixelLayout::kGrey, width}, row.line, limit, marks.data());
            ASSERT_EQ(marks, expected) << width;
        }
    });
}

}  // namespace

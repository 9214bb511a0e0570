#include "simd/pixels/plain/border_rows.h"

#include "support/kernel_frame.h"

namespace simd {

// The grey values of a row, to be made anew by every call.
struct Line {
    Row grey;
    Words ready;
    GreyLine line;

    Line(Row& pixels, std::size_t width, Random& random)
        : grey(64 * mask_words(width), random, 0, 255, 0, 1),
          ready(width / 4096 + 1),
          line{pixels, grey, ready.data()} {}
};

// Light and dark stretches, so that the marks propagate far and stop; marks in the neighbour only,
// in the row only, and in neither.
TEST(BorderRows, OfEveryWidthAndLayout) {
    on_every_width(1, 330, [](std::size_t width, Random& random) {
        const auto layout = static_cast<PixelLayout>(width % 4);
        const RowShape shape{layout, width};
        const std::size_t bytes = pixel_bytes(layout);
        Row first(width * bytes, random, 90, 110), second(width * bytes, random, 90, 110);
        for (Row* row : {&first, &second})
            for (std::size_t i = 0; i < width * bytes; ++i)
                if (random.chance(0.02)) (*row)[i] = random.byte();
        const auto beside = random_marks(width, width % 3 == 0 ? 0 : 0.02, random);
        const auto own = random_marks(width, width % 5 < 3 ? 0 : 0.02, random);
        const auto darkest = static_cast<std::uint8_t>(random.between(80, 120));
        const JoinLimits limits{static_cast<std::uint8_t>(random.between(100, 120)), 20};
        const auto call = [&](bool fast, const auto& out) {
            Line row(first, width, random), neighbour(second, width, random);
            for (std::uint64_t* marks : out) std::copy(own.begin(), own.end(), marks);
            const auto propagate = TWIN(propagate_marks);
            const bool right = propagate(PassDirection::kRight, shape, limits, row.line,
                                         neighbour.line, beside.data(), out[0]);
            const bool left = propagate(PassDirection::kLeft, shape, limits, row.line,
                                        neighbour.line, beside.data(), out[1]);
            TWIN(mark_dark)(shape, row.line, darkest, out[2]);
            return (right ? 2 : 0) + (left ? 1 : 0);
        };
        expect_twins<std::uint64_t>(3, mask_words(width), random, call);
    });
}

TEST(BorderRows, GreyValuesOfColours) {
    on_colours(5, [](const Bytes& colours) {
        Bytes grey(65536 + 2 * kMaskBlock), expected;
        Words marks(65536 / 64), ready(65536 / 4096);
        GreyLine line{colours.data(), grey.data() + kMaskBlock, ready.data()};
        mark_dark({PixelLayout::kRgb, 65536}, line, 0, marks.data());
        for (std::size_t i = 0; i < colours.size(); i += 3)
            expected.push_back(plain::grey_value(PixelLayout::kRgb, colours.data() + i));
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), line.grey))
            << "red " << int{colours[0]};
    });
}

}  // namespace simd

#include "simd/pixels/plain/blend_line.h"

#include "support/kernel_frame.h"

namespace simd {
namespace {

constexpr int kOnePixel = 1 << kPlaceBits;

// The longest line from a random place on, up to `most` pixels, that keeps its neighbours.
SlantedLine random_line(std::int64_t height, std::int64_t width, Random& random, std::size_t most,
                        std::size_t& count) {
    const auto inside = [](std::int64_t place, std::int64_t size) {
        return place >= 0 && place < (size - 1) * kOnePixel;
    };
    SlantedLine line{nullptr, 0, height, width, 0, 0, 0, 0};
    line.x = random.between(0, static_cast<int>(width - 1) * kOnePixel - 1);
    line.y = random.between(0, static_cast<int>(height - 1) * kOnePixel - 1);
    line.x_step = random.between(-kOnePixel, kOnePixel);
    line.y_step = random.between(-kOnePixel, kOnePixel);
    if (random.chance(0.2)) line.x_step = line.x_step > 0 ? kOnePixel : -kOnePixel;
    if (random.chance(0.2)) line.y_step = 0;
    count = 0;
    for (std::int64_t x = line.x, y = line.y; count < most && inside(x, width) && inside(y, height);
         ++count) {
        x += line.x_step;
        y += line.y_step;
    }
    return line;
}

// The image ends with its last row.
template <class Check>
void on_random_lines(std::size_t pixel_bytes, int highest, std::size_t most, const Check& check) {
    on_every_target([&] {
        Random random(17);
        for (int i = 0; i < 800; ++i) {
            const auto height = static_cast<std::size_t>(random.between(2, 40));
            const auto width = static_cast<std::size_t>(random.between(2, 90));
            const std::size_t stride =
                width * pixel_bytes + static_cast<std::size_t>(random.between(0, 3));
            Row image((height - 1) * stride + width * pixel_bytes, random, 0, highest);
            std::size_t count = 0;
            SlantedLine line = random_line(static_cast<std::int64_t>(height),
                                           static_cast<std::int64_t>(width), random, most, count);
            line.src = image;
            line.stride = static_cast<std::ptrdiff_t>(stride);
            check(line, count, random);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

TEST(BlendLine, PixelsOfAnySize) {
    constexpr std::size_t kAny = 1000;
    on_random_lines(1, 255, kAny, [](const SlantedLine& line, std::size_t count, Random& random) {
        expect_twins(1, count, random, [&](bool fast, const auto& out) {
            TWIN(blend_line)(line, count, out[0]);
        });
    });
    on_random_lines(3, 255, kAny, [](const SlantedLine& line, std::size_t count, Random& random) {
        expect_twins(1, 3 * count, random, [&](bool fast, const auto& out) {
            TWIN(blend_line_of_3)(line, count, out[0]);
        });
    });
    on_random_lines(4, 255, kAny, [](const SlantedLine& line, std::size_t count, Random& random) {
        expect_twins(1, 4 * count, random, [&](bool fast, const auto& out) {
            TWIN(blend_line_of_4)(line, count, out[0]);
        });
    });
}

TEST(BlendLine, Marks) {
    on_random_lines(1, 1, 64, [](const SlantedLine& line, std::size_t count, Random&) {
        const auto marks = [&](bool fast) {
            MarkedPart parts[2] = {{line.x, line.y, count, 0}, {line.x, line.y, count / 2, 0}};
            TWIN(blend_marks)(line, parts, 2);
            return std::pair(parts[0].marks, parts[1].marks);
        };
        ASSERT_EQ(marks(true), marks(false));
    });
}

}  // namespace
}  // namespace simd

// Border cropping against the slow models, on pages with borders of every kind, and what random
// pages miss.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "models/crop_comparison.h"
#include "support/bitonal_page.h"
#include "support/every_target.h"
#include "support/random_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::Random;

// ---- cropbmp

// Ink frames, strokes, noise, nested rings from the edge, and hairs that slant from word to word,
// in turn; padding is dirty.
support::BitonalPage inked_page(int height, int width, int stride, std::uint32_t seed) {
    const auto row = static_cast<std::size_t>(stride);
    Random random(seed);
    if (seed % 8 == 0) {
        return {height, width, stride,
                support::random_bitonal(height, row, 0.05 * (seed % 11), seed)};
    }
    support::BitonalPage page{height, width, stride,
                              support::random_text(height, width, row, seed)};
    const int border = random.between(1, 9);
    if (seed % 4 == 1) {
        page.fill(0, border, 0, height);
        page.fill(width - border, width, random.between(0, height), height);
    } else if (seed % 4 == 2) {  // rings with doors
        for (int ring = 0; ring < std::min(height, width) / 2; ring += 2) {
            page.fill(ring, width - ring, ring, height - ring);
            page.fill(ring + 1, width - ring - 1, ring + 1, height - ring - 1, false);
            const int door = random.between(ring, width - ring - 1);
            page.fill(door, door + 1, ring, ring + 3);
        }
    } else if (seed % 4 == 3) {  // combs whose teeth hang down and stand up
        for (int x = 0; x < width; x += 4)
            page.fill(x, x + 1, x % 8, height - random.between(0, 9));
        for (int y = 5; y < height; y += 9)
            page.fill(3, random.between(3, std::max(width, 3)), y, y + 1);
    } else {  // hairs from the upper edge that cross from one word of 64 pixels to the next
        page.fill(0, width, 0, height, false);
        for (int hair = 0; hair < 6; ++hair) {
            const int slope = random.between(-1, 1);
            const int end = random.between(0, height);
            int x = 64 * random.between(0, width / 64) + random.between(-5, 5);
            for (int y = 0; y < end && x >= 0 && x < width; ++y, x += slope)
                page.fill(x, x + 1, y, y + 1);
        }
    }
    return page;
}

TEST(CropBitmap, EqualsTheModel) {
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        Random random(seed);
        const int height = random.between(1, 70);
        const int width = seed % 3 == 0 ? random.between(1, 20) : random.between(1, 700);
        const int stride = (width + 7) / 8 + (seed % 2 == 0 ? 0 : random.between(0, 9));
        const Bytes page = inked_page(height, width, stride, seed).bytes;
        const int ink_value = seed % 16 == 15 ? random.between(-3, 3) : 0;
        ASSERT_TRUE(model::bitonal_crops_agree({page, height, width, stride}, ink_value))
            << "seed " << seed << ": " << height << " x " << width << ", stride " << stride;
    }
}

// ---- cropimg

// A page of pixels that are nearly grey: shadows that fade into the page, bands, a labyrinth of
// dark corridors, clouds, noise.
struct TonePage {
    int height, width, bytes, stride;
    Bytes data;

    TonePage(int h, int w, int type, int padding, std::uint32_t seed)
        : height(h),
          width(w),
          bytes(model::crop_pixel_size(type)),
          stride(w * bytes + padding),
          data(support::random_bytes(model::offset(h, stride, 0), seed)) {
        Random random(seed);
        const int noise = seed % 5 == 4 ? 0 : random.between(0, 1) * random.between(0, 12);
        const int reach = random.between(1, 40);
        const int base = random.between(0, 60);
        const int gain = random.between(1, 20);
        const int sides = random.between(1, 15);
        const int wall = random.between(4, 7);
        fill(random, noise, [&](int x, int y) {
            switch (seed % 5) {
                case 0:
                    return std::min(250, base + gain * std::min(depth(sides, x, y), 300));
                case 1:  // with ragged edges
                    return depth(sides, x, y) < reach + random.between(0, 3) ? base : 240;
                case 2: {  // a door at alternating ends of the walls
                    const bool door = y / wall % 2 == 0 ? x > width - 4 : x < 4;
                    return y % wall == 0 && !door ? 230 : 40;
                }
                case 3: {
                    const int cloud = x / 5 * 7919 + y / 6 * 104729 + static_cast<int>(seed);
                    return (cloud >> 2) % 3 == 0 ? base : base + 2 * gain;
                }
                default:
                    return random.between(base, base + 99);
            }
        });
    }

    template <class Tone>
    void fill(Random& random, int colour_noise, const Tone& tone) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int value = tone(x, y);
                for (int i = 0; i < bytes; ++i) {
                    const int noisy = value + random.between(-colour_noise, colour_noise);
                    data[model::offset(y, stride, x * bytes + i)] =
                        static_cast<std::uint8_t>(std::clamp(noisy, 0, 255));
                }
            }
    }
    // From the nearest of the sides whose bits are set.
    int depth(int sides, int x, int y) const {
        const int from[] = {x, y, width - 1 - x, height - 1 - y};
        int least = INT_MAX;
        for (int i = 0; i < 4; ++i)
            if ((sides >> i & 1) != 0) least = std::min(least, from[i]);
        return least;
    }
};

int random_limit(Random& random, int usual) {
    constexpr int kOdd[] = {INT_MIN, -1, 0, 1, 255, 256, 257, INT_MAX};
    return random.chance(0.1) ? kOdd[random.between(0, 7)] : random.between(1, usual);
}

// The first pages have words of 64 pixels begin and end at every place of a row.
TEST(CropImage, EqualsTheModel) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed + 1000);
        const int type = random.between(1, 4);
        const int height = random.chance(0.25) ? random.between(22, 27) : random.between(24, 90);
        const int width = seed < 180            ? 24 + static_cast<int>(seed)
                          : random.chance(0.25) ? random.between(22, 27)
                                                : random.between(24, 280);
        const TonePage page(height, width, type, random.between(0, 1) * random.between(0, 70),
                            seed);
        const std::array<int, 3> limits{random_limit(random, 120), random_limit(random, 255),
                                        random_limit(random, 60)};
        support::on_every_target([&] {
            ASSERT_TRUE(
                model::image_crops_agree({page.data, height, width, page.stride}, type, limits))
                << "type " << type << ", " << height << " x " << width << ", limits " << limits[0]
                << ' ' << limits[1] << ' ' << limits[2];
        });
        if (HasFatalFailure()) return;
    }
}

// ---- the colour inside a border

// White with a border and sparse other pixels; `density` 0 leaves it all white.
Bytes mostly_white(std::size_t size, double density, std::uint32_t seed) {
    Random random(seed);
    Bytes bytes(size, 255);
    for (auto& value : bytes)
        if (random.chance(density)) value = random.byte();
    return bytes;
}

TEST(CropColour, EqualsTheModel) {
    constexpr double kDensities[] = {0, 0.0005, 0.01, 0.3, 1};
    for (std::uint32_t seed = 0; seed < 240; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const int height = random.between(-1, 40);
        const int width = seed % 20 == 7 ? random.between(4000, 4300) : static_cast<int>(seed) - 1;
        const int pitch = std::max(width, 0) + random.between(0, 1) * random.between(0, 30);
        const std::size_t pixels = model::offset(std::max(height, 0), pitch, 0);
        const std::size_t row = 3 * static_cast<std::size_t>(std::max(width, 0));
        const double density = kDensities[seed % 5];
        const model::CropPage grey{mostly_white(pixels, density, seed), height, width, pitch};
        const model::CropPage colour{mostly_white(3 * pixels, density, seed + 1), height, width,
                                     pitch};
        const Bytes wanted = mostly_white(row, 0.1, seed + 2);
        const Bytes painted = support::random_bytes(row, seed);
        const int from =
            seed % 3 == 0 ? 255 - 256 * random.between(-2, 2) : random.between(-300, 300);
        const int to = random.between(-300, 600);
        support::on_every_target([&] {
            ASSERT_TRUE(model::grey_values_agree(grey, from, to));
            ASSERT_TRUE(model::colours_agree(colour, wanted, painted));
        });
        if (HasFatalFailure()) return;
    }
}

// ---- what cannot be worked on, and pages without anything to do

struct Box {
    int x0 = -7, x1 = -7, y0 = -7, y1 = -7;
    bool operator==(const Box&) const = default;
};

// All that the functions read and write.
struct Buffers {
    Bytes page = Bytes(30 * 160, 9);
    Bytes target = Bytes(30 * 160, 0x5C);
    Bytes from = Bytes(120, 9);
    Bytes to = Bytes(120, 8);
    Bytes value = Bytes(3, 7);
    Box box;
    bool operator==(const Buffers&) const = default;
};

struct Function {
    const char* name;
    int row;  // the least stride for 40 pixels
    std::function<int(Buffers& b, std::uint8_t* image, int height, int width, int stride)> call;
};

std::vector<Function> functions() {
    std::vector<Function> all{
        {"cropbmp", 5,
         [](Buffers& b, auto... page) { return cropbmp(0, page..., b.target.data()); }},
        {"cropgrey_get", 40,
         [](Buffers& b, auto... page) { return cropgrey_get(b.value.data(), page...); }},
        {"cropgrey_replace", 40,
         [](Buffers&, auto... page) { return cropgrey_replace(9, 8, page...); }},
        {"cropcolor_get", 40,
         [](Buffers& b, auto... page) { return cropcolor_get(b.value.data(), page...); }},
        {"cropcolor_replace", 40, [](Buffers& b, auto... page) {
             return cropcolor_replace(b.from.data(), b.to.data(), page...);
         }}};
    for (const int type : {1, 2, 3, 4}) {
        all.push_back({"cropimg", 40 * model::crop_pixel_size(type),
                       [type](Buffers& b, std::uint8_t* image, int height, int width, int stride) {
                           return cropimg(image, type, height, width, stride, 99, 200, 50,
                                          &b.box.x0, &b.box.x1, &b.box.y0, &b.box.y1);
                       }});
    }
    return all;
}

TEST(Cropping, RefusesWhatCannotBeWorkedOn) {
    Buffers b;
    for (const Function& f : functions()) {
        SCOPED_TRACE(testing::Message() << f.name << ", row " << f.row);
        EXPECT_EQ(f.call(b, nullptr, 30, 40, f.row), -1);
        EXPECT_EQ(f.call(b, nullptr, 20, 40, f.row), -1);
        for (const auto& [width, stride] : {std::pair{40, f.row - 1},
                                            {40, 0},
                                            {40, INT_MIN},
                                            {INT_MAX, f.row},
                                            {INT_MAX, INT_MAX / 9}})
            EXPECT_EQ(f.call(b, b.page.data(), 30, width, stride), -1) << width << ' ' << stride;
    }
    std::uint8_t* const page = b.page.data();
    EXPECT_EQ(cropbmp(0, page, 30, 40, 5, nullptr), -1);
    EXPECT_EQ(cropgrey_get(nullptr, page, 30, 40, 40), -1);
    EXPECT_EQ(cropcolor_get(nullptr, page, 30, 40, 40), -1);
    EXPECT_EQ(cropcolor_replace(nullptr, b.to.data(), page, 30, 40, 40), -1);
    EXPECT_EQ(cropcolor_replace(b.from.data(), nullptr, page, 30, 40, 40), -1);
    for (int missing = 0; missing < 4; ++missing) {
        int* to[] = {&b.box.x0, &b.box.x1, &b.box.y0, &b.box.y1};
        to[missing] = nullptr;
        EXPECT_EQ(cropimg(page, 1, 30, 40, 40, 99, 200, 50, to[0], to[1], to[2], to[3]), -1);
    }
    for (const int type : {0, 5, INT_MIN, INT_MAX}) {
        EXPECT_EQ(
            cropimg(nullptr, type, 30, 40, 4, 99, 200, 50, &b.box.x0, nullptr, nullptr, nullptr),
            -1);
    }
    EXPECT_EQ(b, Buffers{});
}

TEST(Cropping, LeavesPagesWithoutPixelsAndSmallOnesAlone) {
    for (const Function& f : functions()) {
        SCOPED_TRACE(testing::Message() << f.name << ", row " << f.row);
        for (const auto& [height, width] :
             {std::pair{0, 40}, {-4, 40}, {30, 0}, {-1, -1}, {INT_MIN, 40}, {30, INT_MIN}}) {
            Buffers expected;
            if (f.name == std::string("cropimg")) expected.box = {0, width, 0, height};
            if (f.name == std::string("cropgrey_get")) expected.value[0] = 255;
            if (f.name == std::string("cropcolor_get")) expected.value = {0, 0, 0};
            Buffers b;
            EXPECT_EQ(f.call(b, nullptr, height, width, 0), 0);
            EXPECT_EQ(b, expected);
        }
    }
    for (const auto& [height, width] : {std::pair{23, 40}, {30, 23}}) {
        Buffers b;
        Buffers expected;
        expected.box = {0, width, 0, height};
        EXPECT_EQ(functions().back().call(b, b.page.data(), height, width, 160), 0);
        EXPECT_EQ(b, expected);
    }
    Buffers b;  // without columns, rows are copied
    EXPECT_EQ(cropbmp(0, b.page.data(), 10, -1, 4, b.target.data()), 0);
    EXPECT_TRUE(std::equal(b.target.begin(), b.target.begin() + 40, b.page.begin()));
    EXPECT_EQ(b.target[40], 0x5C);
}

}  // namespace

#include "grey/undithering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "models/undithering_model.h"
#include "support/random_page.h"
#include "support/row_reader.h"
#include "vemoprepro/binarization.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::RecordingReader;

constexpr int kWidth = 280;
constexpr int kHeight = 240;
constexpr double kPi = 3.14159265358979;

// Calls value(x, y) for every pixel.
template <class Value>
Bytes page_of(Value&& value) {
    Bytes page;
    page.reserve(kWidth * kHeight);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) page.push_back(static_cast<std::uint8_t>(value(x, y)));
    }
    return page;
}

// Soft tones from dark to light.
int tone(int x, int y) {
    return static_cast<int>(128 + 55 * std::sin(x * 0.017 + std::sin(y * 0.02)) +
                            45 * std::cos(y * 0.021 - x * 0.005));
}

// Thresholds of Bayer's ordered dither (1973), size a power of two.
int bayer_threshold(int x, int y, int size) {
    int rank = 0;
    for (int bit = 1; bit < size; bit *= 2) {
        rank = rank * 4 + ((x ^ y) & bit ? 2 : 0) + (y & bit ? 1 : 0);
    }
    return (2 * rank + 1) * 255 / (2 * size * size);
}

// Thresholds of a screen of round dots.
int dot_threshold(int x, int y, double period, double degrees) {
    const double angle = degrees * kPi / 180;
    const double u = (x * std::cos(angle) + y * std::sin(angle)) * 2 * kPi / period;
    const double v = (y * std::cos(angle) - x * std::sin(angle)) * 2 * kPi / period;
    return static_cast<int>(127.5 + 62 * (std::cos(u) + std::cos(v)));
}

template <class Threshold>
Bytes screened(Threshold&& threshold) {
    return page_of([&](int x, int y) { return tone(x, y) > threshold(x, y) ? 255 : 0; });
}

Bytes grey_of(const Bytes& page, bool undithering, int smooth = 248, int resolution = 300) {
    RecordingReader source(page, kWidth);
    Bytes out(page.size());
    EXPECT_EQ(bi_color2greybuf(static_cast<unsigned char>(smooth), RecordingReader::read, &source,
                               nullptr, 1, kWidth, resolution, 0, kWidth, 0, kHeight, out.data(),
                               static_cast<int>(out.size()), 1, undithering ? 1 : 0),
              0);
    return out;
}

// Peak signal-to-noise ratio in decibels.
double likeness(const Bytes& a, const Bytes& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.size()) / sum);
}

struct Named {
    std::string name;
    Bytes page;
};

TEST(Undithering, BringsScreenedTonesBack) {
    const Bytes tones = page_of(tone);
    const Named pages[] = {
        {"ordered 4 x 4", screened([](int x, int y) { return bayer_threshold(x, y, 4); })},
        {"ordered 8 x 8", screened([](int x, int y) { return bayer_threshold(x, y, 8); })},
        {"dots of 6 at 45", screened([](int x, int y) { return dot_threshold(x, y, 6, 45); })},
        {"dots of 4 at 45", screened([](int x, int y) { return dot_threshold(x, y, 4, 45); })},
        {"dots of 5.3 at 15", screened([](int x, int y) { return dot_threshold(x, y, 5.3, 15); })},
        {"dots of 7 at 75", screened([](int x, int y) { return dot_threshold(x, y, 7, 75); })},
    };
    for (const auto& [name, page] : pages) {
        const double smoothed = likeness(grey_of(page, false), tones);
        for (const int resolution : {300, 150}) {
            const double undithered = likeness(grey_of(page, true, 248, resolution), tones);
            EXPECT_GT(undithered, smoothed + 8) << name << " at " << resolution;
        }
    }
}

TEST(Undithering, LeavesEverythingElseAlone) {
    support::Random random(1);
    const auto with_contrast = [](Bytes page) {
        page[0] = 0;
        page[1] = 255;
        return page;
    };
    const Bytes ink = support::random_text(kHeight, kWidth, (kWidth + 7) / 8, 5);
    const Named pages[] = {
        {"uniform", with_contrast(page_of([](int, int) { return 200; }))},
        {"tones", with_contrast(page_of(tone))},
        {"noisy tones", page_of([&](int x, int y) {
             return std::clamp(tone(x, y) + random.between(-90, 90), 0, 255);
         })},
        {"noise", page_of([&](int, int) { return random.byte(); })},
        {"black and white noise", page_of([&](int, int) { return random.chance(0.5) ? 255 : 0; })},
        {"print", page_of([&](int x, int y) {
             return model::get_bit(ink.data(), (kWidth + 7) / 8, x, y) ? 20 : 235;
         })},
        {"strokes", page_of([](int x, int y) { return x % 9 < 3 && y % 40 < 25 ? 0 : 255; })},
        {"rules", page_of([](int, int y) { return y % 12 < 2 ? 0 : 255; })},
        {"fine columns", page_of([](int x, int) { return x % 4 < 2 ? 0 : 255; })},
        {"slanted lines", page_of([](int x, int y) { return (3 * x + 2 * y) % 18 < 9 ? 0 : 255; })},
        {"a frame", page_of([](int x, int y) { return x == 20 || y == 20 || x == 250 ? 0 : 255; })},
    };
    for (const auto& [name, page] : pages) {
        for (const int smooth : {1, 255}) {
            for (const int resolution : {-1, 150, 300}) {
                EXPECT_EQ(grey_of(page, true, smooth, resolution),
                          grey_of(page, false, smooth, resolution))
                    << name << " at " << resolution << ", smooth " << smooth;
            }
        }
    }
}

// Pages of every size, in views whose rows are wider than the page: the model's bytes, and not one
// beside them.
TEST(Undithering, GivesTheModelsBytes) {
    support::Random random(3);
    const auto screens = [&](double period, double degrees) {
        return [=](int x, int y) {
            return tone(x, y) > dot_threshold(x, y, period, degrees) ? 255 : 0;
        };
    };
    const auto bayer = [&](int size) {
        return [=](int x, int y) { return tone(x, y) > bayer_threshold(x, y, size) ? 240 : 10; };
    };
    const Bytes ink = support::random_text(400, 400, 50, 5);
    const auto print = [&](int x, int y) {
        return model::get_bit(ink.data(), 50, x, y) ? 20 : 235;
    };
    const std::function<int(int, int)> kinds[] = {
        bayer(4),
        bayer(8),
        screens(6, 45),
        screens(5.3, 15),
        screens(11, 45),  // more than one pass of a large cell
        screens(14.2, 30),
        print,
        tone,
        [&](int, int) { return random.byte(); },
        [&](int x, int y) { return y < 70 ? screens(4, 45)(x, y) : print(x, y); },
        [&](int x, int y) { return x / 16 % 3 == 1 && y / 16 % 2 == 1 ? 128 : bayer(4)(x, y); },
        [&](int x, int y) { return (bayer(4)(x, y) + random.byte()) / 2; },
        // Contrast that grows from nothing.
        [&](int x, int y) { return 90 + (bayer(4)(x, y) > 128 ? x / 4 : 0); },
        [](int x, int y) { return x % 4 < 2 || y % 60 == 0 ? 0 : 255; },
    };
    const struct {
        int width, height, resolution;
    } sizes[] = {{150, 75, 300}, {65, 65, 600}, {64, 65, 300}, {33, 120, 299},
                 {131, 97, 150}, {17, 17, 149}, {17, 16, 72},  {100, 31, 72},
                 {209, 90, 72},  {1, 1, 72},    {40, 33, -1}};
    int changed = 0;
    for (const auto& kind : kinds) {
        for (const auto& [width, height, resolution] : sizes) {
            for (const int parameter : {1, 251}) {
                const int stride = width + (random.chance(0.5) ? random.between(1, 40) : 0);
                const int left = random.between(0, 50);
                Bytes page;
                Bytes view = support::random_bytes(model::offset(height, stride, 0), 9);
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        page.push_back(static_cast<std::uint8_t>(kind(left + x, y)));
                        view[model::offset(y, stride, x)] = page.back();
                    }
                }
                const Bytes undone = model::undithered(page, height, width, parameter, resolution);
                changed += undone != page;
                Bytes expected = view;
                for (int y = 0; y < height; ++y) {
                    std::copy_n(&undone[model::offset(y, width, 0)], width,
                                &expected[model::offset(y, stride, 0)]);
                }
                grey::undither({view.data(), height, width, stride}, parameter, resolution);
                ASSERT_EQ(view, expected)
                    << "kind " << &kind - kinds << ", " << width << " x " << height << ", stride "
                    << stride << ", parameter " << parameter << ", resolution " << resolution;
            }
        }
    }
    EXPECT_GT(changed, 70);
}

// A screened picture on a page with print: the picture changes, the print does not.
TEST(Undithering, KeepsThePrintBesideAPicture) {
    constexpr int kPictureBottom = 160;
    const Bytes page = page_of([](int x, int y) {
        if (y < kPictureBottom) return tone(x, y) > dot_threshold(x, y, 6, 45) ? 255 : 0;
        return y > 180 && y % 30 < 14 && (x + y / 30 * 5) % 13 < 4 ? 0 : 255;
    });
    const Bytes plain = grey_of(page, false);
    const Bytes undithered = grey_of(page, true);
    const auto below = std::ptrdiff_t{kWidth} * (kPictureBottom + 16);
    EXPECT_TRUE(std::equal(plain.begin() + below, plain.end(), undithered.begin() + below));
    EXPECT_NE(plain, undithered);
}

TEST(Undithering, NeedsSmoothingAndContrast) {
    const Bytes page = screened([](int x, int y) { return bayer_threshold(x, y, 4); });
    EXPECT_EQ(grey_of(page, true, 0), page);
    Bytes faint = page;
    for (auto& value : faint) value = value == 0 ? 100 : 212;
    EXPECT_EQ(grey_of(faint, true), faint) << "steps of 112 call for nothing";
}

}  // namespace

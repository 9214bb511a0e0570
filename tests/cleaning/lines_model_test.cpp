// Line removal and underline extraction against the pixel model, over random ruled pages and noise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "models/lines_model.h"
#include "support/random_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using support::GuardedBuffer;
using support::Random;

constexpr int kRounds = 300;

struct Page {
    int height;
    int width;
    int stride;
    Bytes bytes;
};

void draw_rules(Page& page, Random& random) {
    for (int rule = random.between(0, 6); rule > 0; --rule) {
        const bool horizontal = random.chance(0.5);
        const int thickness = random.between(1, 5);
        const int x0 = random.between(0, page.width - 1);
        const int y0 = random.between(0, page.height - 1);
        const int x1 = horizontal ? page.width : std::min(page.width, x0 + thickness);
        const int y1 = horizontal ? std::min(page.height, y0 + thickness) : page.height;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                if (random.chance(0.97)) model::set_bit(page.bytes.data(), page.stride, x, y, true);
            }
        }
    }
}

// Noise, text or white under some rules; the padding is dirty.
Page random_page(Random& random) {
    const int height = random.between(1, random.chance(0.8) ? 60 : 150);
    const int width = random.between(1, random.chance(0.7) ? 90 : 400);
    const int stride = (width + 7) / 8 + random.between(0, 3);
    const auto seed = static_cast<std::uint32_t>(random.between(0, 1 << 30));
    Page page{height, width, stride, {}};
    const double density = random.chance(0.3) ? 0.0 : random.between(1, 19) / 20.0;
    page.bytes =
        random.chance(0.4)
            ? support::random_text(height, width, static_cast<std::size_t>(stride), seed)
            : support::random_bitonal(height, static_cast<std::size_t>(stride), density, seed);
    draw_rules(page, random);
    return page;
}

// Mostly small, at times beyond the page.
int random_setting(Random& random) {
    if (random.chance(0.2)) return random.between(0, 2);
    return random.chance(0.9) ? random.between(0, 40) : random.between(40, 65535);
}

std::string numbers(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text.append(" ").append(std::to_string(value));
    return text;
}

void expect_same(const GuardedBuffer& changed, const Bytes& expected, const Page& page,
                 const std::string& settings) {
    ASSERT_EQ(changed.contents(), expected)
        << page.height << " x " << page.width << ", stride " << page.stride << ":" << settings;
    ASSERT_TRUE(changed.guards_intact());
}

GuardedBuffer guarded(const Page& page) {
    GuardedBuffer buffer(page.bytes.size());
    std::copy(page.bytes.begin(), page.bytes.end(), buffer.data());
    return buffer;
}

using Setter = int (*)(lrm_settings*, unsigned short);

struct Setting {
    Setter set;
    int model::LrmDirection::*value;
};

constexpr Setting kHorizontal[] = {
    {lrm_set_horz_min_length, &model::LrmDirection::min_length},
    {lrm_set_horz_max_thickness, &model::LrmDirection::max_thickness},
    {lrm_set_horz_max_gap, &model::LrmDirection::max_gap},
    {lrm_set_horz_dilate, &model::LrmDirection::dilate},
    {lrm_set_horz_clean_x, &model::LrmDirection::clean_along},
    {lrm_set_horz_clean_y, &model::LrmDirection::clean_across},
};
constexpr Setting kVertical[] = {
    {lrm_set_vert_min_length, &model::LrmDirection::min_length},
    {lrm_set_vert_max_thickness, &model::LrmDirection::max_thickness},
    {lrm_set_vert_max_gap, &model::LrmDirection::max_gap},
    {lrm_set_vert_dilate, &model::LrmDirection::dilate},
    {lrm_set_vert_clean_x, &model::LrmDirection::clean_across},
    {lrm_set_vert_clean_y, &model::LrmDirection::clean_along},
};

TEST(LinesModel, HandleMatchesInRandomZones) {
    Random random(31);
    for (int round = 0; round < kRounds; ++round) {
        Page page = random_page(random);
        Bytes expected = page.bytes;
        GuardedBuffer changed = guarded(page);
        lrm_settings* const lrm = lrm_init_mem(
            changed.data(), static_cast<unsigned short>(page.height),
            static_cast<unsigned short>(page.width), static_cast<unsigned short>(page.stride));
        ASSERT_NE(lrm, nullptr);
        model::LrmSettings settings{expected.data(), page.height, page.width, page.stride};
        if (random.chance(0.6)) {
            settings.x0 = random.between(0, page.width - 1);
            settings.x1 = random.between(settings.x0 + 1, page.width);
            settings.y0 = random.between(0, page.height - 1);
            settings.y1 = random.between(settings.y0 + 1, page.height);
            ASSERT_EQ(lrm_set_zone(lrm, static_cast<unsigned short>(settings.x0),
                                   static_cast<unsigned short>(settings.x1),
                                   static_cast<unsigned short>(settings.y0),
                                   static_cast<unsigned short>(settings.y1)),
                      0);
        }
        std::string text;
        const auto draw = [&](const Setting& setting, model::LrmDirection& direction) {
            if (random.chance(0.2)) return;
            const int value = random_setting(random);
            setting.set(lrm, static_cast<unsigned short>(value));
            direction.*setting.value = value;
        };
        for (const Setting& setting : kHorizontal) draw(setting, settings.horz);
        for (const Setting& setting : kVertical) draw(setting, settings.vert);
        for (const auto& d : {settings.horz, settings.vert}) {
            text += numbers({d.min_length, d.max_thickness, d.max_gap, d.dilate, d.clean_along,
                             d.clean_across});
        }
        for (int calls = random.between(1, 2); calls > 0; --calls) {
            const bool horizontal = random.chance(0.5);
            ASSERT_EQ(horizontal ? lrm_do_horz(lrm) : lrm_do_vert(lrm), 0);
            ASSERT_EQ(horizontal ? model::lrm_do_horz(settings) : model::lrm_do_vert(settings), 0);
            expect_same(changed, expected, page, text.append(horizontal ? " horz" : " vert"));
            if (HasFatalFailure()) return;
        }
        lrm_exit(lrm);
    }
}

TEST(LinesModel, CarefulRemovalMatches) {
    Random random(32);
    for (int round = 0; round < kRounds; ++round) {
        const Page page = random_page(random);
        int n[6];
        for (int& value : n) value = random.chance(0.02) ? -3 : random_setting(random);
        const std::string text = numbers({n[0], n[1], n[2], n[3], n[4], n[5], round % 2});
        Bytes expected = page.bytes;
        GuardedBuffer changed = guarded(page);
        const bool horizontal = round % 2 == 0;
        const auto call = [&](auto function, std::uint8_t* image) {
            return function(image, page.height, page.width, page.stride, n[0], n[1], n[2], n[3],
                            n[4], n[5]);
        };
        ASSERT_EQ(call(horizontal ? linerm_h : linerm_v, changed.data()), 0);
        ASSERT_EQ(call(horizontal ? model::linerm_h : model::linerm_v, expected.data()), 0);
        expect_same(changed, expected, page, text);
        if (HasFatalFailure()) return;
    }
}

TEST(LinesModel, UnderlinesMatch) {
    Random random(33);
    for (int round = 0; round < kRounds; ++round) {
        const Page page = random_page(random);
        const int ink_value = random.chance(0.85) ? 0 : random.between(-1, 2);
        const int vertical = random.chance(0.5) ? 0 : random.between(-1, 2);
        const int x0 = random.chance(0.4) ? 0 : random.between(0, 8 * page.stride);
        const int x1 = random.chance(0.4) ? 8 * page.stride : random.between(0, 8 * page.stride);
        int n[4];
        for (int& value : n) value = random_setting(random);
        if (random.chance(0.03)) n[0] = -1;
        Bytes expected(page.bytes.size());
        GuardedBuffer changed(page.bytes.size());
        const auto call = [&](auto function, std::uint8_t* target) {
            return function(ink_value, vertical, n[0], n[1], n[2], n[3], page.bytes.data(), target,
                            page.height, page.stride, x0, x1);
        };
        const std::string text = numbers({ink_value, vertical, n[0], n[1], n[2], n[3], x0, x1});
        ASSERT_EQ(call(extract_underline, changed.data()),
                  call(model::extract_underline, expected.data()))
            << page.height << " x " << page.width << ", stride " << page.stride << ":" << text;
        expect_same(changed, expected, page, text);
        if (HasFatalFailure()) return;
    }
}

}  // namespace

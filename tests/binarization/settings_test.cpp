#include "binarization/settings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "support/allocation_limit.h"
#include "vemoprepro/binarization.h"

namespace {

int no_rows(void*, int, unsigned char*) {
    return 0;
}

struct Handle {
    bi_settings* settings = bi_setup(no_rows);
    ~Handle() { bi_upset(settings); }
};

using ByteSetter = int (*)(bi_settings*, unsigned char);
using ByteGetter = int (*)(bi_settings*, unsigned char*);

int value_of(bi_settings* settings, ByteGetter get) {
    unsigned char value = 0xEE;
    EXPECT_EQ(get(settings, &value), 0);
    return value;
}

TEST(BinarizationSettings, StartWithTheirDefaults) {
    const Handle handle;
    const std::pair<ByteGetter, int> defaults[] = {
        {bi_get_smooth, 0},  {bi_get_thresh, 128}, {bi_get_satur, 0}, {bi_get_delta1, 40},
        {bi_get_delta2, 32}, {bi_get_black1, 0},   {bi_get_black2, 0}};
    for (const auto& [get, value] : defaults) EXPECT_EQ(value_of(handle.settings, get), value);
    signed char sigma = 1;
    EXPECT_EQ(bi_get_sigma(handle.settings, &sigma), 0);
    EXPECT_EQ(sigma, 0);
}

TEST(BinarizationSettings, GiveBackWhatWasStored) {
    const Handle handle;
    const std::pair<ByteSetter, ByteGetter> pairs[] = {
        {bi_set_smooth, bi_get_smooth}, {bi_set_thresh, bi_get_thresh},
        {bi_set_satur, bi_get_satur},   {bi_set_delta1, bi_get_delta1},
        {bi_set_delta2, bi_get_delta2}, {bi_set_black1, bi_get_black1},
        {bi_set_black2, bi_get_black2}};
    unsigned char value = 249;
    for (const auto& pair : pairs) EXPECT_EQ(pair.first(handle.settings, value--), 0);
    value = 249;
    for (const auto& pair : pairs) EXPECT_EQ(value_of(handle.settings, pair.second), value--);
}

TEST(BinarizationSettings, ContrastSetsBothEdgeStrengths) {
    const Handle handle;
    const int cases[][3] = {{0, 1, 1},   {1, 1, 1},   {2, 2, 1},       {14, 14, 7},    {15, 15, 8},
                            {16, 16, 8}, {17, 17, 9}, {200, 200, 192}, {255, 255, 247}};
    for (const auto& [contrast, delta1, delta2] : cases) {
        EXPECT_EQ(bi_set_contrast(handle.settings, static_cast<unsigned char>(contrast)), 0);
        EXPECT_EQ(value_of(handle.settings, bi_get_delta1), delta1) << contrast;
        EXPECT_EQ(value_of(handle.settings, bi_get_delta2), delta2) << contrast;
    }
}

TEST(BinarizationSettings, BrightnessSetsBothDarkLevels) {
    const Handle handle;
    const int cases[][3] = {{0, 0, 0}, {1, 1, 0}, {2, 2, 1}, {128, 128, 96}, {255, 255, 191}};
    for (const auto& [brightness, black1, black2] : cases) {
        EXPECT_EQ(bi_set_brightness(handle.settings, static_cast<unsigned char>(brightness)), 0);
        EXPECT_EQ(value_of(handle.settings, bi_get_black1), black1) << brightness;
        EXPECT_EQ(value_of(handle.settings, bi_get_black2), black2) << brightness;
    }
}

TEST(BinarizationSettings, SigmaKeepsItsSign) {
    const Handle handle;
    for (const int sigma : {-128, -3, 0, 127}) {
        EXPECT_EQ(bi_set_sigma(handle.settings, static_cast<signed char>(sigma)), 0);
        signed char stored = 1;
        EXPECT_EQ(bi_get_sigma(handle.settings, &stored), 0);
        EXPECT_EQ(stored, sigma);
    }
}

TEST(BinarizationSettings, MethodIsZeroOrOne) {
    binarization::Settings settings;
    EXPECT_TRUE(set_method(settings, 1));
    EXPECT_FALSE(set_method(settings, 2));
    EXPECT_TRUE(settings.sobel_statistics);
    EXPECT_TRUE(set_method(settings, 0));
    EXPECT_FALSE(settings.sobel_statistics);
}

TEST(BinarizationSettings, RefuseANullHandleAndANullTarget) {
    for (const ByteSetter set :
         {bi_set_smooth, bi_set_undithering, bi_set_thresh, bi_set_fill_mean, bi_set_satur,
          bi_set_contrast, bi_set_delta1, bi_set_delta2, bi_set_brightness, bi_set_black1,
          bi_set_black2, bi_set_normalize_magnitude, bi_set_internal_gaussian_smoothing}) {
        EXPECT_EQ(set(nullptr, 1), -1);
        const Handle handle;
        EXPECT_EQ(set(handle.settings, 1), 0);
    }
    const Handle handle;
    for (const ByteGetter get : {bi_get_smooth, bi_get_thresh, bi_get_satur, bi_get_delta1,
                                 bi_get_delta2, bi_get_black1, bi_get_black2}) {
        unsigned char value = 77;
        EXPECT_EQ(get(nullptr, &value), -1);
        EXPECT_EQ(value, 77);
        EXPECT_EQ(get(handle.settings, nullptr), -1);
    }
    signed char sigma = 77;
    EXPECT_EQ(bi_get_sigma(nullptr, &sigma), -1);
    EXPECT_EQ(bi_get_sigma(handle.settings, nullptr), -1);
    EXPECT_EQ(sigma, 77);
    EXPECT_EQ(bi_set_sigma(nullptr, 1), -1);
    EXPECT_EQ(bi_set_dropout(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(bi_set_dropout(handle.settings, nullptr, nullptr), 0);
    EXPECT_EQ(bi_set_debug_folder(nullptr, "/tmp"), -1);
    EXPECT_EQ(bi_set_debug_folder(handle.settings, nullptr), -1);
    EXPECT_EQ(bi_set_nb_threads(nullptr, 1), -1);
    EXPECT_EQ(bi_set_nb_threads(handle.settings, 0), -1);
    EXPECT_EQ(bi_set_nb_threads(handle.settings, -5), -1);
    EXPECT_EQ(bi_set_nb_threads(handle.settings, 5), 0);
    bi_set_image_pointer(nullptr, "");
    EXPECT_EQ(bi_upset(nullptr), 0);
}

TEST(BinarizationSettings, SurviveEveryFailedAllocation) {
    const int allocations = support::fail_each_allocation([] {
        bi_settings* settings = bi_setup(no_rows);
        if (settings == nullptr) return -1;
        char path[201] = {};
        std::memset(path, 'x', 200);
        const int first = bi_set_debug_folder(settings, path);
        const int second = bi_set_debug_folder(settings, path);
        bi_upset(settings);
        return first != 0 || second != 0 ? -1 : 0;
    });
    EXPECT_GE(allocations, 3);
}

}  // namespace

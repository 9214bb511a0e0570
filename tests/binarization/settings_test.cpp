#include "binarization/settings.h"

#include <gtest/gtest.h>

#include "binarization/settings_handle.h"

namespace {

using ByteSetter = int (*)(bi_settings*, unsigned char);
using ByteGetter = int (*)(const bi_settings*, unsigned char*);

constexpr struct {
    ByteSetter set;
    ByteGetter get;
    int initial;
} kBytes[] = {{bi_set_smooth, bi_get_smooth, 0},  {bi_set_thresh, bi_get_thresh, 128},
              {bi_set_satur, bi_get_satur, 0},    {bi_set_delta1, bi_get_delta1, 40},
              {bi_set_delta2, bi_get_delta2, 32}, {bi_set_black1, bi_get_black1, 0},
              {bi_set_black2, bi_get_black2, 0}};

int value_of(bi_settings* settings, ByteGetter get) {
    unsigned char value = 0xEE;
    EXPECT_EQ(get(settings, &value), 0);
    return value;
}

TEST(BinarizationSettings, GiveBackDefaultsAndWhatWasStored) {
    const support::SettingsHandle handle(nullptr);
    for (const auto& byte : kBytes) EXPECT_EQ(value_of(handle, byte.get), byte.initial);
    unsigned char value = 249;
    for (const auto& byte : kBytes) EXPECT_EQ(byte.set(handle, value--), 0);
    value = 249;
    for (const auto& byte : kBytes) EXPECT_EQ(value_of(handle, byte.get), value--);
    signed char sigma = 1;
    EXPECT_EQ(bi_get_sigma(handle, &sigma), 0);
    EXPECT_EQ(sigma, 0);
    EXPECT_EQ(bi_set_sigma(handle, -128), 0);
    EXPECT_EQ(bi_get_sigma(handle, &sigma), 0);
    EXPECT_EQ(sigma, -128);
}

TEST(BinarizationSettings, ContrastAndBrightnessSetTwoLevelsEach) {
    const support::SettingsHandle handle(nullptr);
    const struct {
        ByteSetter set;
        ByteGetter first, second;
        int values[3];  // what is set, and what the two become
    } pairs[] = {{bi_set_contrast, bi_get_delta1, bi_get_delta2, {0, 1, 1}},
                 {bi_set_contrast, bi_get_delta1, bi_get_delta2, {1, 1, 1}},
                 {bi_set_contrast, bi_get_delta1, bi_get_delta2, {15, 15, 8}},
                 {bi_set_contrast, bi_get_delta1, bi_get_delta2, {16, 16, 8}},
                 {bi_set_contrast, bi_get_delta1, bi_get_delta2, {255, 255, 247}},
                 {bi_set_brightness, bi_get_black1, bi_get_black2, {0, 0, 0}},
                 {bi_set_brightness, bi_get_black1, bi_get_black2, {2, 2, 1}},
                 {bi_set_brightness, bi_get_black1, bi_get_black2, {255, 255, 191}}};
    for (const auto& [set, first, second, values] : pairs) {
        EXPECT_EQ(set(handle, static_cast<unsigned char>(values[0])), 0);
        EXPECT_EQ(value_of(handle, first), values[1]) << values[0];
        EXPECT_EQ(value_of(handle, second), values[2]) << values[0];
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
    const support::SettingsHandle handle(nullptr);
    for (const ByteSetter set :
         {bi_set_smooth, bi_set_undithering, bi_set_thresh, bi_set_fill_mean, bi_set_satur,
          bi_set_contrast, bi_set_delta1, bi_set_delta2, bi_set_brightness, bi_set_black1,
          bi_set_black2, bi_set_normalize_magnitude, bi_set_internal_gaussian_smoothing}) {
        EXPECT_EQ(set(nullptr, 1), -1);
        EXPECT_EQ(set(handle, 1), 0);
    }
    unsigned char value = 77;
    for (const auto& byte : kBytes) {
        EXPECT_EQ(byte.get(nullptr, &value), -1);
        EXPECT_EQ(byte.get(handle, nullptr), -1);
    }
    signed char sigma = 77;
    EXPECT_EQ(bi_get_sigma(nullptr, &sigma), -1);
    EXPECT_EQ(bi_get_sigma(handle, nullptr), -1);
    EXPECT_EQ(value + sigma, 77 + 77);
    EXPECT_EQ(bi_set_sigma(nullptr, 1), -1);
    EXPECT_EQ(bi_set_dropout(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(bi_set_dropout(handle, nullptr, nullptr), 0);
    EXPECT_EQ(bi_set_debug_folder(nullptr, "/tmp"), -1);
    EXPECT_EQ(bi_set_debug_folder(handle, nullptr), -1);
    EXPECT_EQ(bi_set_nb_threads(nullptr, 1), -1);
    EXPECT_EQ(bi_set_nb_threads(handle, 0), -1);
    EXPECT_EQ(bi_set_nb_threads(handle, -5), -1);
    EXPECT_EQ(bi_set_nb_threads(handle, 5), 0);
    bi_set_image_pointer(nullptr, "");
    EXPECT_EQ(bi_upset(nullptr), 0);
}

}  // namespace

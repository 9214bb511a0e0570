// The settings that follow a rule instead of being stored as they come.
#include "binarization/settings.h"

#include <algorithm>

namespace binarization {

void Settings::raise_smooth() {
    constexpr int kRaise = 2;
    if (smooth != 0) smooth = static_cast<std::uint8_t>(std::min(smooth + kRaise, 255));
}

Settings one_shot_settings(int mode, common::RowReader reader, const Dropout& dropout) {
    constexpr std::uint8_t kOneShotSmooth = 248;
    Settings settings;
    settings.reader = reader;
    settings.smooth = mode == 0 ? 0 : kOneShotSmooth;
    settings.undithering = mode != 0 && mode != 1;
    settings.dropout = dropout;
    return settings;
}

Settings one_shot_gradient_settings(int mode, common::RowReader reader, const Dropout& dropout) {
    Settings settings = one_shot_settings(mode, reader, dropout);
    settings.delta1 = 40;
    settings.delta2 = 32;
    settings.black1 = 128;
    settings.black2 = 96;
    return settings;
}

void set_contrast(Settings& settings, std::uint8_t contrast) {
    // Half the contrast continues an edge while it is small, a fixed distance below it afterwards;
    // the two agree at 15 and 16.
    constexpr int kProportionalUpTo = 15;
    constexpr int kDistance = 8;
    if (contrast == 0) {
        settings.delta1 = settings.delta2 = 1;
        return;
    }
    settings.delta1 = contrast;
    settings.delta2 = static_cast<std::uint8_t>(
        contrast <= kProportionalUpTo ? (contrast + 1) >> 1 : contrast - kDistance);
}

void set_brightness(Settings& settings, std::uint8_t brightness) {
    settings.black1 = brightness;
    settings.black2 = static_cast<std::uint8_t>((3 * brightness) >> 2);
}

bool set_method(Settings& settings, std::uint8_t method) {
    if (method > 1) return false;
    settings.sobel_statistics = method == 1;
    return true;
}

}  // namespace binarization

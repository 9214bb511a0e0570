// What a caller can choose about a binarization, with its defaults.
//
// Use: fill in, then hand to a do call of the family (pipeline.h). Members hold the values as the
// caller gave them; the setters below are those that do more than store one.
#pragma once

#include <cstdint>
#include <string>

#include "binarization/dropout.h"
#include "common/callbacks.h"

namespace binarization {

struct Settings {
    common::RowReader reader = nullptr;
    const void* image = nullptr;  // the whole source page, for colour conversion on several threads
    std::uint8_t smooth = 0;      // 0 off, 1 .. 255 from weak to strong
    std::uint8_t thresh = 128;    // 0 chooses it by Otsu's method
    std::uint8_t delta1 = 40;     // edge strength that starts an edge
    std::uint8_t delta2 = 32;     // edge strength that continues one
    std::uint8_t black1 = 0;      // dark levels; 128 stands for the white level of the page
    std::uint8_t black2 = 0;
    bool fill_mean = false;
    std::uint8_t satur = 0;  // kept for the caller only
    bool undithering = false;
    int threads = 1;                // at least 1
    std::int32_t sigma = 0;         // -128 .. 127
    bool sobel_statistics = false;  // the method switch: gradient do calls use that variant
    Dropout dropout;
    std::uint8_t normalize_magnitude = 0;
    std::uint8_t internal_gaussian_smoothing = 0;
    std::string debug_folder;

    // Every do call asks for a little more smoothing than the caller stored, and leaves it stored.
    void raise_smooth();
};

// The settings of calls without an object. mode: 0 plain, 1 smoothed, any other smoothed and
// undithered.
Settings one_shot_settings(int mode, common::RowReader reader, const Dropout& dropout);
Settings one_shot_gradient_settings(int mode, common::RowReader reader, const Dropout& dropout);

// Delta1 and delta2 from one contrast value.
void set_contrast(Settings& settings, std::uint8_t contrast);

// Black1 and black2 from one brightness value.
void set_brightness(Settings& settings, std::uint8_t brightness);

// Chooses what the gradient do calls run: 0 the gradient method, 1 the Sobel-statistics variant.
// Returns false, and changes nothing, for any other value. Nothing calls it yet: it is for families
// that drive this one, and no exported function has it.
bool set_method(Settings& settings, std::uint8_t method);

}  // namespace binarization

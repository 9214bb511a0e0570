// Border cropping beside its slow models: what the tests and the fuzz target have in common.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "crop_model.h"
#include "support/guarded_buffer.h"
#include "vemoprepro/cleaning.h"

namespace model {

// A page of any kind; each comparison says what the stride counts.
struct CropPage {
    std::vector<std::uint8_t> bytes;
    int height, width, stride;
};

// Calls both with a buffer of their own: results and buffers must agree.
template <class Function, class Model, class Call>
bool agree(const std::vector<std::uint8_t>& before, Function function, Model theirs, Call call) {
    support::GuardedBuffer image(before);
    std::vector<std::uint8_t> expected = before;
    return call(function, image.data()) == call(theirs, expected.data()) && image.guards_intact() &&
           image.contents() == expected;
}

inline bool bitonal_crops_agree(const CropPage& page, int ink_value) {
    return agree(std::vector<std::uint8_t>(page.bytes.size(), 0x5C), ::cropbmp, cropbmp,
                 [&](auto crop, std::uint8_t* target) {
                     return crop(ink_value, page.bytes.data(), page.height, page.width, page.stride,
                                 target);
                 });
}

// limits: dark, light and step.
inline bool image_crops_agree(const CropPage& page, int type, const std::array<int, 3>& limits) {
    return agree(page.bytes, ::cropimg, cropimg, [&](auto crop, std::uint8_t* image) {
        std::array<int, 5> results{-7, -7, -7, -7, -7};
        results[4] = crop(image, type, page.height, page.width, page.stride, limits[0], limits[1],
                          limits[2], &results[0], &results[1], &results[2], &results[3]);
        return results;
    });
}

// The mean inside the border, one byte of a grey or three of a colour page.
template <class Function>
bool means_agree(const CropPage& page, Function function, Function theirs) {
    return agree({7, 7, 7, 7}, function, theirs, [&](auto mean_of, std::uint8_t* value) {
        return mean_of(value, page.bytes.data(), page.height, page.width, page.stride);
    });
}

inline bool grey_values_agree(const CropPage& page, int from, int to) {
    return means_agree(page, ::cropgrey_get, cropgrey_get) &&
           agree(page.bytes, ::cropgrey_replace, cropgrey_replace,
                 [&](auto replace, std::uint8_t* image) {
                     return replace(from, to, image, page.height, page.width, page.stride);
                 });
}

// The stride counts pixels; from and to are rows of colours.
inline bool colours_agree(const CropPage& page, const std::vector<std::uint8_t>& from,
                          const std::vector<std::uint8_t>& to) {
    return means_agree(page, ::cropcolor_get, cropcolor_get) &&
           agree(page.bytes, ::cropcolor_replace, cropcolor_replace,
                 [&](auto replace, std::uint8_t* image) {
                     return replace(from.data(), to.data(), image, page.height, page.width,
                                    page.stride);
                 });
}

}  // namespace model

// A bitonal image as the cleaning passes see it: 16-bit sizes, which the 16-bit coordinates of runs
// and components can name, over the caller's pixels or over pixels of its own.
//
// Use: stt_image page = wrapped_image(data, height, width, stride); ... page.view() ...
//
// Keep true: a record that wraps pixels does not outlive them.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"

namespace cleaning {

struct stt_image {
    frame::Buffer<std::uint8_t> storage;  // empty where the pixels are somebody else's
    std::uint8_t* data = nullptr;         // first byte of the top row
    std::uint16_t height = 0;             // rows
    std::uint16_t width = 0;              // pixels
    std::uint16_t stride = 0;             // bytes from row to row
    std::uint16_t extra = 0;              // carried along for the caller; nothing reads it
    std::uint64_t reserved = 0;

    common::MutableBitonalView view() const { return {data, height, width, stride}; }
};

// Wraps pixels; sizes count modulo 65,536.
inline stt_image wrapped_image(std::uint8_t* data, std::int32_t height, std::int32_t width,
                               std::int32_t stride) {
    stt_image image;
    image.data = data;
    image.height = static_cast<std::uint16_t>(height);
    image.width = static_cast<std::uint16_t>(width);
    image.stride = static_cast<std::uint16_t>(stride);
    return image;
}

}  // namespace cleaning

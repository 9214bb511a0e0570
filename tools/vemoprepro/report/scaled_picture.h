// Pages made small enough to look at: each pixel is the average of a square of the page, so that
// bitonal pages become smooth greys.
//
// Use: scaled_down(page); encode() makes a PNG or JPEG in memory; marks_of_removed() paints what is
// lighter in the later of two pictures.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "page/page.h"

namespace tool::report {

struct ScaledPicture {
    PageKind kind = PageKind::kGrey;  // of the page
    int page_width = 0;
    int page_height = 0;
    int factor = 1;  // pixels of the page per pixel, each way
    int width = 0;
    int height = 0;
    int channels = 1;  // 1, 3, or 4: with alpha
    std::vector<std::uint8_t> pixels;

    const std::uint8_t* at(int x, int y) const {
        const auto index = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                           static_cast<std::size_t>(x);
        return pixels.data() + index * static_cast<std::size_t>(channels);
    }
};

// At most this many pixels on the longer side.
constexpr int kLongestPictureSide = 1000;

ScaledPicture scaled_down(const Page& page);

struct Colour {
    std::uint8_t red, green, blue;
};

// None when nothing was removed, or when the two cannot be laid over one another: they differ in
// size, or just one of them is bitonal.
std::optional<ScaledPicture> marks_of_removed(const ScaledPicture& before,
                                              const ScaledPicture& after, Colour colour);

// The bytes of a file of the type that is given.
struct EncodedPicture {
    const char* type = "image/png";
    std::string bytes;
    int page_width = 0;
    int page_height = 0;
    // What the picture covers: the page, filled up to whole squares.
    int covered_width = 0;
    int covered_height = 0;
};

// Scans become JPEGs, drawings (bitonal pages, marks) PNGs.
EncodedPicture encode(const ScaledPicture& picture);

}  // namespace tool::report

// Pages made small enough to look at: each pixel is the average of a square of the page, so that
// bitonal pages become smooth greys.
//
// Use: scaled_down(page), then encode() (report/encoded_picture.h).
#pragma once

#include <cstdint>
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

}  // namespace tool::report

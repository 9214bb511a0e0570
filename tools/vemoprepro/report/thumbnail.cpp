// Both halves show the frame of the page after: each pixel is the mean of a few places in its
// square, looked up in the pictures.
#include "report/thumbnail.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool::report {
namespace {

constexpr int kLongestSide = 180;
constexpr int kGap = 6;
constexpr int kPlaces = 4;  // looked up across a pixel, and down
constexpr std::array<double, 3> kBeyond = {231, 231, 227};

using Tone = std::array<double, 3>;

Tone tone_at(const ScaledPicture& picture, Point on_page) {
    const int x = static_cast<int>(std::floor(on_page.x / picture.factor));
    const int y = static_cast<int>(std::floor(on_page.y / picture.factor));
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) return kBeyond;
    const std::uint8_t* pixel = picture.at(x, y);
    if (picture.channels == 1)
        return {double{1} * pixel[0], double{1} * pixel[0], double{1} * pixel[0]};
    return {double{1} * pixel[0], double{1} * pixel[1], double{1} * pixel[2]};
}

void draw(const ScaledPicture& picture, const Placement& to_page, double scale, int left, int width,
          ScaledPicture& thumbnail) {
    for (int y = 0; y < thumbnail.height; ++y) {
        for (int x = 0; x < width; ++x) {
            Tone sum{};
            for (int i = 0; i < kPlaces * kPlaces; ++i) {
                const Point place{(x + (i % kPlaces + 0.5) / kPlaces) * scale,
                                  (y + (i / kPlaces + 0.5) / kPlaces) * scale};
                const Tone tone = tone_at(picture, to_page.of(place));
                for (std::size_t k = 0; k < 3; ++k) sum[k] += tone[k];
            }
            const auto at = static_cast<std::size_t>(y * thumbnail.width + left + x) * 3;
            for (std::size_t k = 0; k < 3; ++k) {
                thumbnail.pixels[at + k] =
                    static_cast<std::uint8_t>(sum[k] / (kPlaces * kPlaces) + 0.5);
            }
        }
    }
}

}  // namespace

EncodedPicture thumbnail_of(const ScaledPicture& before, const Placement& placement,
                            const ScaledPicture& after) {
    const double longer = std::max(after.page_width, after.page_height);
    const double scale = std::max(1.0, longer / kLongestSide);
    const auto part_of = [scale](int side) { return std::max(1, static_cast<int>(side / scale)); };
    const int width = part_of(after.page_width);
    ScaledPicture thumbnail;
    thumbnail.kind = PageKind::kColour;
    thumbnail.channels = 3;
    thumbnail.width = thumbnail.page_width = 2 * width + kGap;
    thumbnail.height = thumbnail.page_height = part_of(after.page_height);
    thumbnail.pixels.assign(
        static_cast<std::size_t>(thumbnail.width) * static_cast<std::size_t>(thumbnail.height) * 3,
        255);
    draw(before, placement.inverse(), scale, 0, width, thumbnail);
    draw(after, {}, scale, width + kGap, width, thumbnail);
    return encode(thumbnail);
}

}  // namespace tool::report

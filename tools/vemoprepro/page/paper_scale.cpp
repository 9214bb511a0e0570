#include "page/paper_scale.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr double kChosenFor = 300;  // dots per inch
constexpr double kLargestArea = 1e9;

}  // namespace

int scaled_length(const Page& page, double pixels_at_300) {
    return std::max(1, static_cast<int>(std::lround(pixels_at_300 * page.scale.x / kChosenFor)));
}

int scaled_area(const Page& page, double pixels_at_300) {
    const double scale = page.scale.x / kChosenFor * (page.scale.y / kChosenFor);
    return static_cast<int>(std::min(kLargestArea, std::round(pixels_at_300 * scale)));
}

}  // namespace tool

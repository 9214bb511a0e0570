// Pages at another size.
#include <algorithm>
#include <cmath>
#include <string>

#include "page/scale.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// Sides that no page has are refused when it is scaled; this one is an int all the same.
int side_of(double pixels) {
    constexpr double kTooLong = 1e9;
    return std::max(1, static_cast<int>(std::lround(std::min(pixels, kTooLong))));
}

ScaleOptions::Size size_at(const Page& page, double across, double down) {
    return {side_of(page.width * across), side_of(page.height * down)};
}

// What was only assumed of a page is nothing to scale by.
void require_resolution(const WorkingResolution& resolution) {
    if (resolution.source == ResolutionSource::kFile ||
        resolution.source == ResolutionSource::kOption) {
        return;
    }
    throw PageError("the file states no resolution to scale from; --from-dpi gives it");
}

ScaleOptions::Size target_of(const PageWork& work, const ScaleOptions& options) {
    if (options.size) return *options.size;
    if (options.factor) return size_at(work.page, *options.factor, *options.factor);
    require_resolution(work.resolution);
    const Resolution dpi = work.page.dpi;
    return size_at(work.page, 1.0 * *options.dpi / dpi.x, 1.0 * *options.dpi / dpi.y);
}

}  // namespace

Step scale_step(const StepOptions& options) {
    const ScaleOptions scale = options.scale;
    return {"scale", Effect::kScalesPage, [scale](PageWork& work) -> Outcome {
                Page& page = work.page;
                const auto [width, height] = target_of(work, scale);
                const bool same = width == page.width && height == page.height;
                if (!same) scale_page(page, width, height, scale.filter);
                if (scale.dpi) page.dpi = page.scale = {*scale.dpi, *scale.dpi};
                if (same) return {false, "has this size already"};
                return {true, "scaled to " + std::to_string(width) + " x " +
                                  std::to_string(height) + " pixels"};
            }};
}

}  // namespace tool::steps

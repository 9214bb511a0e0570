// The dark levels are those of the whole image, so that bands agree about them. Each band writes a
// page of its own, and the rows that it has in common with no other are copied when all are done:
// whatever fails, fails before the caller's page is touched.
#include "binarization/gradient/gradient.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "binarization/gradient/dark_levels.h"
#include "binarization/gradient/gradient_band.h"
#include "threads/worker_pool.h"

namespace binarization {
namespace {

constexpr std::int32_t kSeenOfNeighbour = 4;  // rows

// One band's work: the rows that it reads, the first of which is row `top` of the image, and its
// result for them.
struct Task {
    std::int32_t top;
    std::int32_t height;
    GradientBand band;
    frame::Buffer<std::uint8_t> bits;

    Task(const threads::Band& own, const common::GreyView& grey,
         const GradientParameters& parameters)
        : top(std::max(own.first - kSeenOfNeighbour, 0)),
          height(std::min(own.last + kSeenOfNeighbour, grey.height) - top),
          band(height, grey.width, parameters),
          bits(static_cast<std::size_t>(height) *
               static_cast<std::size_t>(common::bitonal_stride(grey.width))) {}

    common::MutableBitonalView page(std::int32_t width) {
        return {bits.data(), height, width, common::bitonal_stride(width)};
    }
};

void binarize_in_bands(const common::GreyView& grey, GradientParameters parameters, int threads,
                       const common::MutableBitonalView& page) {
    parameters.fill_mean = false;
    parameters.internal_gaussian_smoothing = 0;
    parameters.normalize_magnitude = 0;
    const std::vector<threads::Band> bands = threads::closed_bands(grey.height, threads);
    std::vector<Task> tasks;
    tasks.reserve(bands.size());
    for (const threads::Band& band : bands) tasks.emplace_back(band, grey, parameters);

    threads::WorkerPool pool(threads);
    for (Task& task : tasks) {
        pool.post([&task, &grey] {
            const common::GreyView rows{grey.row(task.top), task.height, grey.width, grey.stride};
            task.band.binarize(rows, task.page(grey.width));
        });
    }
    pool.join();
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const auto rows = static_cast<std::size_t>(bands[i].last - bands[i].first);
        const common::MutableBitonalView result = tasks[i].page(grey.width);
        std::memcpy(page.row(bands[i].first), result.row(bands[i].first - tasks[i].top),
                    rows * static_cast<std::size_t>(page.stride));
    }
}

}  // namespace

GradientParameters gradient_parameters(const Settings& settings) {
    return {settings.fill_mean,
            settings.internal_gaussian_smoothing,
            settings.delta1,
            settings.delta2,
            settings.black1,
            settings.black2,
            settings.normalize_magnitude};
}

void binarize_by_gradient(const common::GreyView& grey, const GradientParameters& parameters,
                          int threads, const common::MutableBitonalView& page) {
    GradientParameters scaled = parameters;
    const DarkLevels levels = page_levels(grey, {parameters.black1, parameters.black2});
    scaled.black1 = levels.black1;
    scaled.black2 = levels.black2;
    const int bands = threads::effective_threads(threads, grey.height);
    if (bands > 1) return binarize_in_bands(grey, scaled, bands, page);
    GradientBand(grey.height, grey.width, scaled).binarize(grey, page);
}

}  // namespace binarization

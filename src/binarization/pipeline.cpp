#include "binarization/pipeline.h"

#include <stdexcept>

#include "binarization/dropout.h"
#include "binarization/gradient/gradient.h"
#include "binarization/statistics/sobel_statistics.h"
#include "binarization/threshold.h"
#include "grey/grey_preparation.h"

namespace binarization {
namespace {

common::MutableBitonalView packed_page(std::uint8_t* out, int height, int width) {
    return {out, height, width, common::bitonal_stride(width)};
}

// A job that can be worked on.
struct Work {
    grey::Source source;
    grey::GreyOptions options;
    common::MutableBitonalView page;
};

Work checked(const Settings& settings, const Job& job) {
    if (!grey::known_type(job.type) || !grey::acceptable(job.width, job.region) ||
        job.out == nullptr) {
        throw std::invalid_argument("no such region");
    }
    const grey::Source source{settings.reader, job.context,
                              static_cast<const std::uint8_t*>(settings.image),
                              static_cast<grey::SourceType>(job.type), job.width};
    if (!grey::reachable(source, job.region, settings.threads)) {
        throw std::invalid_argument("nothing to read the source from");
    }
    return {source,
            {settings.smooth, settings.undithering, job.resolution, settings.threads},
            packed_page(job.out, job.region.height(), job.region.width())};
}

// Calls binarize(grey image of the region, page).
template <class Binarize>
void prepare_and_binarize(const Work& work, const grey::Region& region, Binarize&& binarize) {
    const auto pixels = grey::prepare_grey(work.source, region, work.options);
    binarize(common::GreyView{pixels.data(), region.height(), region.width(), region.width()},
             work.page);
}

// Where the source has colours and the settings drop any. A page from memory may come without a
// reader, which the dropout needs.
void drop_unwanted(const Settings& settings, const Work& work, const grey::Region& region) {
    if (!work.source.colour() || !settings.dropout.asked_for()) return;
    if (work.source.reader == nullptr) throw std::invalid_argument("dropout without a reader");
    drop_colours(settings.dropout, work.source, region, work.page);
}

SobelStatistics statistics_parameters(const Settings& settings) {
    return {settings.delta1, settings.delta2, settings.black1, settings.black2, settings.sigma};
}

}  // namespace

void threshold_region(Settings& settings, const Job& job) {
    settings.raise_smooth();
    const Work work = checked(settings, job);
    binarize_by_threshold(work.source, job.region, work.options, settings.thresh, work.page);
    drop_unwanted(settings, work, job.region);
}

void gradient_of_region(Settings& settings, const Job& job) {
    if (settings.sobel_statistics) {
        Job usual = job;
        usual.resolution = kUsualResolution;
        return statistics_of_region(settings, usual);
    }
    settings.raise_smooth();
    const Work work = checked(settings, job);
    prepare_and_binarize(work, job.region, [&](const auto& grey, const auto& page) {
        binarize_by_gradient(grey, gradient_parameters(settings), settings.threads, page);
    });
    drop_unwanted(settings, work, job.region);
}

void statistics_of_region(const Settings& settings, const Job& job) {
    const Work work = checked(settings, job);
    prepare_and_binarize(work, job.region, [&](const auto& grey, const auto& page) {
        binarize_by_sobel_statistics(grey, statistics_parameters(settings), page);
    });
    drop_unwanted(settings, work, job.region);
}

void gradient_of_grey(Settings& settings, const common::GreyView& grey, std::uint8_t* out) {
    if (!settings.sobel_statistics) settings.raise_smooth();
    if (grey.data == nullptr || out == nullptr || grey.height < 1 || grey.width < 1) {
        throw std::invalid_argument("no grey image or no page for it");
    }
    const common::MutableBitonalView page = packed_page(out, grey.height, grey.width);
    if (settings.sobel_statistics) {
        binarize_by_sobel_statistics(grey, statistics_parameters(settings), page);
    } else {
        binarize_by_gradient(grey, gradient_parameters(settings), settings.threads, page);
    }
}

}  // namespace binarization

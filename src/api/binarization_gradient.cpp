// Binarization by the gradient of the page, and by the statistics of its Sobel edges.
#include "api/binarization_handle.h"
#include "api/guard.h"
#include "binarization/gradient/gradient.h"
#include "binarization/settings.h"
#include "binarization/statistics/sobel_statistics.h"
#include "grey/grey_preparation.h"
#include "vemoprepro/binarization.h"

using api::drop_colours;
using api::guarded;
using api::kFailure;
using api::kSuccess;
using api::one_shot_settings;
using api::page_of;
using api::source_of;
using binarization::Settings;
using grey::GreyOptions;
using grey::Region;
using grey::Source;

namespace {

constexpr int kResolution = 300;

// What stands after the three numbers of a source: the region and where its page goes.
struct Job {
    void* ctx;
    int type;
    int width;
    int resolution;
    Region region;
    unsigned char* out;
};

enum class Method { kGradient, kStatistics };

// What the do calls of the gradient method run.
Method method_of(const Settings& settings) {
    return settings.sobel_statistics ? Method::kStatistics : Method::kGradient;
}

void binarize(const common::GreyView& grey, const Settings& settings, Method method,
              const common::MutableBitonalView& page) {
    if (method == Method::kStatistics) {
        binarization::binarize_by_sobel_statistics(
            grey,
            {settings.delta1, settings.delta2, settings.black1, settings.black2, settings.sigma},
            page);
    } else {
        binarization::binarize_by_gradient(grey, gradient_parameters(settings), settings.threads,
                                           page);
    }
}

// Grey preparation, one of the two methods, dropout.
int prepare_and_binarize(const Settings& settings, const Job& job, Method method) {
    const Region& region = job.region;
    if (!grey::known_type(job.type) || !grey::acceptable(job.width, region) || job.out == nullptr) {
        return kFailure;
    }
    const Source source = source_of(settings.reader, job.ctx, settings.image, job.type, job.width);
    if (!grey::reachable(source, region, settings.threads)) return kFailure;
    const GreyOptions options{settings.smooth, settings.undithering, job.resolution,
                              settings.threads};
    const common::MutableBitonalView page = page_of(job.out, region.height(), region.width());
    {
        const auto pixels = grey::prepare_grey(source, region, options);
        const common::GreyView grey{pixels.data(), region.height(), region.width(), region.width()};
        binarize(grey, settings, method, page);
    }
    return drop_colours(settings, source, region, page);
}

// With the method switched, a gradient call is the statistics call: neither the smoothing is raised
// nor the resolution used.
int gradl_do(Settings& settings, Job job) {
    const Method method = method_of(settings);
    if (method == Method::kStatistics) {
        job.resolution = kResolution;
    } else {
        settings.raise_smooth();
    }
    return prepare_and_binarize(settings, job, method);
}

int grey_gradl_do(Settings& settings, const unsigned char* pixels, int height, int width,
                  unsigned char* out) {
    const Method method = method_of(settings);
    if (method == Method::kGradient) settings.raise_smooth();
    if (pixels == nullptr || out == nullptr || height < 1 || width < 1) return kFailure;
    binarize({pixels, height, width, width}, settings, method, page_of(out, height, width));
    return kSuccess;
}

}  // namespace

int bi_gradl_do(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                int y1, unsigned char* out) {
    return bi_gradl_do_with_resolution(settings, ctx, type, width, kResolution, x0, x1, y0, y1,
                                       out);
}

int bi_gradl_do_with_resolution(bi_settings* settings, void* ctx, int type, int width,
                                int resolution, int x0, int x1, int y0, int y1,
                                unsigned char* out) {
    if (settings == nullptr) return kFailure;
    return guarded([=] {
        return gradl_do(settings->values, {ctx, type, width, resolution, {x0, x1, y0, y1}, out});
    });
}

int bi_gradl_do_debug(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                      int y1, unsigned char* out, const char* folder) {
    if (bi_set_debug_folder(settings, folder) != kSuccess) return kFailure;
    return bi_gradl_do(settings, ctx, type, width, x0, x1, y0, y1, out);
}

int bi_grey_gradl_do(bi_settings* settings, unsigned char* grey, int height, int width,
                     unsigned char* out) {
    if (settings == nullptr) return kFailure;
    return guarded([=] { return grey_gradl_do(settings->values, grey, height, width, out); });
}

int bi_gradl_do_sobel(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                      int y1, unsigned char* out) {
    if (settings == nullptr) return kFailure;
    return guarded([=] {
        const Job job{ctx, type, width, kResolution, {x0, x1, y0, y1}, out};
        return prepare_and_binarize(settings->values, job, Method::kStatistics);
    });
}

int bi_gradl(int mode, prepro_row_reader reader, void* ctx, int type, int width, int x0, int x1,
             int y0, int y1, unsigned char* out) {
    return bi_gradl_dropout(mode, reader, ctx, nullptr, nullptr, type, width, x0, x1, y0, y1, out);
}

int bi_gradl_dropout(int mode, prepro_row_reader reader, void* ctx, prepro_dropout dropout,
                     void* dropout_context, int type, int width, int x0, int x1, int y0, int y1,
                     unsigned char* out) {
    return guarded([=] {
        Settings settings = one_shot_settings(mode, reader, dropout, dropout_context);
        settings.delta1 = 40;
        settings.delta2 = 32;
        settings.black1 = 128;
        settings.black2 = 96;
        return gradl_do(settings, {ctx, type, width, kResolution, {x0, x1, y0, y1}, out});
    });
}

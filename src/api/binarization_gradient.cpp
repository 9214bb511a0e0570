// Binarization by the gradient of the page, and by the statistics of its Sobel edges.
#include <cstring>

#include "api/binarization_handle.h"
#include "api/guard.h"
#include "binarization/gradient.h"
#include "binarization/grey_preparation.h"
#include "binarization/settings.h"
#include "binarization/sobel_statistics.h"
#include "vemoprepro/binarization.h"

using api::drop_colours;
using api::guarded;
using api::kFailure;
using api::kSuccess;
using api::set_mode;
using api::source_of;
using binarization::GreyOptions;
using binarization::Region;
using binarization::Settings;
using binarization::Source;

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

void binarize_by_statistics(const common::GreyView& grey, const Settings& settings,
                            const common::MutableBitonalView& page) {
    binarization::binarize_by_sobel_statistics(
        grey, {settings.delta1, settings.delta2, settings.black1, settings.black2, settings.sigma},
        page);
}

common::MutableBitonalView page_of(unsigned char* out, int height, int width) {
    return {out, height, width, common::bitonal_stride(width)};
}

// Grey preparation, one of the two methods, dropout.
int prepare_and_binarize(const Settings& settings, const Job& job, bool statistics) {
    const Region& region = job.region;
    if (!binarization::known_type(job.type) || !binarization::acceptable(job.width, region) ||
        job.out == nullptr) {
        return kFailure;
    }
    const Source source = source_of(settings.reader, job.ctx, settings.image, job.type, job.width);
    if (!binarization::reachable(source, region, settings.threads)) return kFailure;
    const GreyOptions options{settings.smooth, settings.undithering, job.resolution,
                              settings.threads};
    const common::MutableBitonalView page = page_of(job.out, region.height(), region.width());
    {
        const auto pixels = binarization::prepare_grey(source, region, options);
        const common::GreyView grey{pixels.data(), region.height(), region.width(), region.width()};
        if (statistics) {
            binarize_by_statistics(grey, settings, page);
        } else {
            binarization::binarize_by_gradient(grey, gradient_parameters(settings),
                                               settings.threads, page);
        }
    }
    return drop_colours(settings, source, region, page);
}

// With the method switched, a gradient call is the statistics call: neither the smoothing is raised
// nor the resolution used.
int gradl_do(Settings& settings, Job job) {
    if (settings.sobel_statistics) {
        job.resolution = kResolution;
        return prepare_and_binarize(settings, job, true);
    }
    settings.raise_smooth();
    return prepare_and_binarize(settings, job, false);
}

int grey_gradl_do(Settings& settings, const unsigned char* pixels, int height, int width,
                  unsigned char* out) {
    if (!settings.sobel_statistics) settings.raise_smooth();
    if (pixels == nullptr || out == nullptr || height < 1 || width < 1) return kFailure;
    const common::GreyView grey{pixels, height, width, width};
    const common::MutableBitonalView page = page_of(out, height, width);
    if (settings.sobel_statistics) {
        binarize_by_statistics(grey, settings, page);
    } else {
        binarization::binarize_by_gradient(grey, gradient_parameters(settings), settings.threads,
                                           page);
    }
    return kSuccess;
}

void set_one_shot(Settings& settings, int mode) {
    set_mode(settings, mode);
    settings.delta1 = 40;
    settings.delta2 = 32;
    settings.black1 = 128;
    settings.black2 = 96;
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
        return prepare_and_binarize(settings->values, job, true);
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
        Settings settings;
        settings.reader = reader;
        set_one_shot(settings, mode);
        settings.dropout = dropout;
        settings.dropout_context = dropout_context;
        return gradl_do(settings, {ctx, type, width, kResolution, {x0, x1, y0, y1}, out});
    });
}

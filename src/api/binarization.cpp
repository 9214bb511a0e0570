// Binarization of a region, by a settings object and in one call, and the grey image it starts
// from.
#include "vemoprepro/binarization.h"

#include <cstring>

#include "api/binarization_handle.h"
#include "api/guard.h"
#include "binarization/pipeline.h"
#include "grey/grey_preparation.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using binarization::Job;
using binarization::Settings;
using grey::GreyOptions;
using grey::Region;
using grey::Source;
using grey::SourceType;

namespace {

// The family, and not this file, refuses what cannot be worked on: a do call raises the smoothing
// of its settings before it looks at anything else.
template <class Call>
int run(bi_settings* settings, Call&& call) {
    if (settings == nullptr) return kFailure;
    return guarded([&] {
        call(settings->values);
        return kSuccess;
    });
}

// The fourth of an image record's pointer-sized words; the others are the caller's.
const void* image_of(const void* image_record) {
    if (image_record == nullptr) return nullptr;
    const void* words[4];
    std::memcpy(words, image_record, sizeof words);
    return words[3];
}

}  // namespace

int bi_thresh_do(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                 int y1, unsigned char* out) {
    const Job job{ctx, type, width, {x0, x1, y0, y1}, out};
    return run(settings, [&](Settings& values) { threshold_region(values, job); });
}

int bi_thresh(int mode, int thresh, prepro_row_reader reader, void* ctx, int type, int width,
              int x0, int x1, int y0, int y1, unsigned char* out) {
    return bi_thresh_dropout(mode, thresh, reader, ctx, nullptr, nullptr, type, width, x0, x1, y0,
                             y1, out);
}

int bi_thresh_dropout(int mode, int thresh, prepro_row_reader reader, void* ctx,
                      prepro_dropout dropout, void* dropout_context, int type, int width, int x0,
                      int x1, int y0, int y1, unsigned char* out) {
    return guarded([=] {
        Settings settings =
            binarization::one_shot_settings(mode, reader, {dropout, dropout_context});
        settings.thresh = static_cast<std::uint8_t>(thresh & 0xFF);
        threshold_region(settings, {ctx, type, width, {x0, x1, y0, y1}, out});
        return kSuccess;
    });
}

int bi_gradl_do(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                int y1, unsigned char* out) {
    return bi_gradl_do_with_resolution(settings, ctx, type, width, binarization::kUsualResolution,
                                       x0, x1, y0, y1, out);
}

int bi_gradl_do_with_resolution(bi_settings* settings, void* ctx, int type, int width,
                                int resolution, int x0, int x1, int y0, int y1,
                                unsigned char* out) {
    const Job job{ctx, type, width, {x0, x1, y0, y1}, out, resolution};
    return run(settings, [&](Settings& values) { gradient_of_region(values, job); });
}

int bi_gradl_do_debug(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                      int y1, unsigned char* out, const char* folder) {
    if (bi_set_debug_folder(settings, folder) != kSuccess) return kFailure;
    return bi_gradl_do(settings, ctx, type, width, x0, x1, y0, y1, out);
}

int bi_grey_gradl_do(bi_settings* settings, unsigned char* grey, int height, int width,
                     unsigned char* out) {
    return run(settings, [=](Settings& values) {
        gradient_of_grey(values, {grey, height, width, width}, out);
    });
}

int bi_gradl_do_sobel(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                      int y1, unsigned char* out) {
    const Job job{ctx, type, width, {x0, x1, y0, y1}, out};
    return run(settings, [&](const Settings& values) { statistics_of_region(values, job); });
}

int bi_gradl(int mode, prepro_row_reader reader, void* ctx, int type, int width, int x0, int x1,
             int y0, int y1, unsigned char* out) {
    return bi_gradl_dropout(mode, reader, ctx, nullptr, nullptr, type, width, x0, x1, y0, y1, out);
}

int bi_gradl_dropout(int mode, prepro_row_reader reader, void* ctx, prepro_dropout dropout,
                     void* dropout_context, int type, int width, int x0, int x1, int y0, int y1,
                     unsigned char* out) {
    return guarded([=] {
        Settings settings =
            binarization::one_shot_gradient_settings(mode, reader, {dropout, dropout_context});
        gradient_of_region(settings, {ctx, type, width, {x0, x1, y0, y1}, out});
        return kSuccess;
    });
}

int bi_color2greybuf(unsigned char smooth, prepro_row_reader reader, void* ctx,
                     const void* image_record, int type, int width, int resolution, int x0, int x1,
                     int y0, int y1, unsigned char* out, int out_size, int nb_threads,
                     unsigned char undithering) {
    return guarded([=] {
        const Region region{x0, x1, y0, y1};
        if (!grey::known_type(type) || !grey::acceptable(width, region)) {
            return kFailure;
        }
        const std::int64_t grey_size = std::int64_t{region.width()} * region.height();
        if (out_size < 0 || out_size > grey_size || (out == nullptr && out_size > 0)) {
            return kFailure;
        }
        const bool from_image =
            grey::reads_image(static_cast<SourceType>(type), region, nb_threads);
        const void* image = from_image ? image_of(image_record) : nullptr;
        const Source source{reader, ctx, static_cast<const std::uint8_t*>(image),
                            static_cast<SourceType>(type), width};
        const GreyOptions options{smooth, undithering != 0, resolution, nb_threads};
        if (!grey::reachable(source, region, nb_threads)) return kFailure;
        grey::write_grey(source, region, options, out, static_cast<std::size_t>(out_size));
        return kSuccess;
    });
}

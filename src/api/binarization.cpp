// Settings objects, binarization by one threshold and the grey image it starts from.
#include "vemoprepro/binarization.h"

#include <cstring>
#include <new>

#include "api/binarization_handle.h"
#include "api/guard.h"
#include "binarization/settings.h"
#include "binarization/threshold.h"
#include "frame/memory.h"
#include "grey/grey_preparation.h"

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
using grey::SourceType;

namespace {

template <class Change>
int change(bi_settings* settings, Change&& apply) {
    if (settings == nullptr) return kFailure;
    apply(settings->values);
    return kSuccess;
}

template <class Member, class Value>
int store(bi_settings* settings, Member Settings::*member, Value value) {
    return change(settings, [&](Settings& values) { values.*member = value; });
}

template <class Member, class Value>
int fetch(const bi_settings* settings, Member Settings::*member, Value* value) {
    if (settings == nullptr || value == nullptr) return kFailure;
    *value = static_cast<Value>(settings->values.*member);
    return kSuccess;
}

int thresh_do(Settings& settings, void* ctx, int type, int width, const Region& region,
              unsigned char* out) {
    settings.raise_smooth();
    if (!grey::known_type(type) || !grey::acceptable(width, region) || out == nullptr) {
        return kFailure;
    }
    const Source source = source_of(settings.reader, ctx, settings.image, type, width);
    const GreyOptions options{.smooth = settings.smooth,
                              .undithering = settings.undithering,
                              .threads = settings.threads};
    if (!grey::reachable(source, region, options.threads)) return kFailure;
    const common::MutableBitonalView page = page_of(out, region.height(), region.width());
    binarization::binarize_by_threshold(source, region, options, settings.thresh, page);
    return drop_colours(settings, source, region, page);
}

// The fourth of an image record's pointer-sized words; the others are the caller's.
const void* image_of(const void* image_record) {
    if (image_record == nullptr) return nullptr;
    const void* words[4];
    std::memcpy(words, image_record, sizeof words);
    return words[3];
}

}  // namespace

bi_settings* bi_setup(prepro_row_reader reader) {
    void* block = frame::allocate(sizeof(bi_settings));
    if (block == nullptr) return nullptr;
    auto* settings = new (block) bi_settings;
    settings->values.reader = reader;
    return settings;
}

int bi_upset(bi_settings* settings) {
    if (settings != nullptr) settings->~bi_settings();
    frame::release(settings);
    return kSuccess;
}

int bi_set_smooth(bi_settings* settings, unsigned char smooth) {
    return store(settings, &Settings::smooth, smooth);
}

int bi_set_undithering(bi_settings* settings, unsigned char undithering) {
    return store(settings, &Settings::undithering, undithering != 0);
}

int bi_set_thresh(bi_settings* settings, unsigned char thresh) {
    return store(settings, &Settings::thresh, thresh);
}

int bi_set_fill_mean(bi_settings* settings, unsigned char fill_mean) {
    return store(settings, &Settings::fill_mean, fill_mean != 0);
}

int bi_set_satur(bi_settings* settings, unsigned char satur) {
    return store(settings, &Settings::satur, satur);
}

int bi_set_contrast(bi_settings* settings, unsigned char contrast) {
    return change(settings, [=](Settings& values) { set_contrast(values, contrast); });
}

int bi_set_delta1(bi_settings* settings, unsigned char delta1) {
    return store(settings, &Settings::delta1, delta1);
}

int bi_set_delta2(bi_settings* settings, unsigned char delta2) {
    return store(settings, &Settings::delta2, delta2);
}

int bi_set_brightness(bi_settings* settings, unsigned char brightness) {
    return change(settings, [=](Settings& values) { set_brightness(values, brightness); });
}

int bi_set_black1(bi_settings* settings, unsigned char black1) {
    return store(settings, &Settings::black1, black1);
}

int bi_set_black2(bi_settings* settings, unsigned char black2) {
    return store(settings, &Settings::black2, black2);
}

int bi_set_sigma(bi_settings* settings, signed char sigma) {
    return store(settings, &Settings::sigma, sigma);
}

int bi_set_dropout(bi_settings* settings, prepro_dropout dropout, void* context) {
    return change(settings, [=](Settings& values) {
        values.dropout = dropout;
        values.dropout_context = context;
    });
}

int bi_set_normalize_magnitude(bi_settings* settings, unsigned char normalize) {
    return store(settings, &Settings::normalize_magnitude, normalize);
}

int bi_set_internal_gaussian_smoothing(bi_settings* settings, unsigned char smoothing) {
    return store(settings, &Settings::internal_gaussian_smoothing, smoothing);
}

int bi_set_debug_folder(bi_settings* settings, const char* path) {
    if (settings == nullptr || path == nullptr) return kFailure;
    return guarded([=] {
        // A copy that cannot be made leaves the stored one as it is.
        settings->values.debug_folder = std::string(path);
        return kSuccess;
    });
}

int bi_set_nb_threads(bi_settings* settings, int nb_threads) {
    if (nb_threads < 1) return kFailure;
    return store(settings, &Settings::threads, nb_threads);
}

void bi_set_image_pointer(bi_settings* settings, const void* image) {
    if (settings != nullptr) settings->values.image = image;
}

int bi_get_smooth(bi_settings* settings, unsigned char* smooth) {
    return fetch(settings, &Settings::smooth, smooth);
}

int bi_get_thresh(bi_settings* settings, unsigned char* thresh) {
    return fetch(settings, &Settings::thresh, thresh);
}

int bi_get_satur(bi_settings* settings, unsigned char* satur) {
    return fetch(settings, &Settings::satur, satur);
}

int bi_get_delta1(bi_settings* settings, unsigned char* delta1) {
    return fetch(settings, &Settings::delta1, delta1);
}

int bi_get_delta2(bi_settings* settings, unsigned char* delta2) {
    return fetch(settings, &Settings::delta2, delta2);
}

int bi_get_black1(bi_settings* settings, unsigned char* black1) {
    return fetch(settings, &Settings::black1, black1);
}

int bi_get_black2(bi_settings* settings, unsigned char* black2) {
    return fetch(settings, &Settings::black2, black2);
}

int bi_get_sigma(bi_settings* settings, signed char* sigma) {
    return fetch(settings, &Settings::sigma, sigma);
}

int bi_thresh_do(bi_settings* settings, void* ctx, int type, int width, int x0, int x1, int y0,
                 int y1, unsigned char* out) {
    if (settings == nullptr) return kFailure;
    return guarded([=] {
        return thresh_do(settings->values, ctx, type, width, {x0, x1, y0, y1}, out);
    });
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
        Settings settings = one_shot_settings(mode, reader, dropout, dropout_context);
        settings.thresh = static_cast<std::uint8_t>(thresh & 0xFF);
        return thresh_do(settings, ctx, type, width, {x0, x1, y0, y1}, out);
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
        const Source source = source_of(reader, ctx, image, type, width);
        const GreyOptions options{smooth, undithering != 0, resolution, nb_threads};
        if (!grey::reachable(source, region, nb_threads)) return kFailure;
        if (out_size == grey_size && grey::only_converts(source, region, options)) {
            grey::convert_rows(source, region,
                               {out, region.height(), region.width(), region.width()});
            return kSuccess;
        }
        const auto grey = grey::prepare_grey(source, region, options);
        if (out_size > 0) std::memcpy(out, grey.data(), static_cast<std::size_t>(out_size));
        return kSuccess;
    });
}

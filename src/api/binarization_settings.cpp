// The settings object of the binarization: made and freed, set and read.
#include <new>
#include <string>

#include "api/binarization_handle.h"
#include "api/guard.h"
#include "frame/memory.h"
#include "vemoprepro/binarization.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using binarization::Dropout;
using binarization::Settings;

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
    return store(settings, &Settings::dropout, Dropout{dropout, context});
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

int bi_get_smooth(const bi_settings* settings, unsigned char* smooth) {
    return fetch(settings, &Settings::smooth, smooth);
}

int bi_get_thresh(const bi_settings* settings, unsigned char* thresh) {
    return fetch(settings, &Settings::thresh, thresh);
}

int bi_get_satur(const bi_settings* settings, unsigned char* satur) {
    return fetch(settings, &Settings::satur, satur);
}

int bi_get_delta1(const bi_settings* settings, unsigned char* delta1) {
    return fetch(settings, &Settings::delta1, delta1);
}

int bi_get_delta2(const bi_settings* settings, unsigned char* delta2) {
    return fetch(settings, &Settings::delta2, delta2);
}

int bi_get_black1(const bi_settings* settings, unsigned char* black1) {
    return fetch(settings, &Settings::black1, black1);
}

int bi_get_black2(const bi_settings* settings, unsigned char* black2) {
    return fetch(settings, &Settings::black2, black2);
}

int bi_get_sigma(const bi_settings* settings, signed char* sigma) {
    return fetch(settings, &Settings::sigma, sigma);
}

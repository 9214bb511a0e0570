#include "calls/calls.h"

namespace calls {
namespace {

int drop_reddish(void*, const unsigned char* colour) {
    return colour[0] > colour[2] + 60 ? 1 : 0;
}

template <class Set, class Work>
auto with_handle(Set set, Work work) {
    return [=](Desk& desk) {
        bi_settings* const handle = bi_setup(Desk::read);
        if (handle == nullptr) return -1;
        set(desk, handle);
        const int status = work(desk, handle);
        bi_upset(handle);
        return status;
    };
}

// Binarizes the colour page by a handle with these settings.
template <class Binarize, class Set, class... More>
auto by_handle(Binarize binarize, Set set, More... more) {
    return with_handle(set, [=](Desk& desk, bi_settings* handle) {
        return desk.wrote_bits(binarize(handle, &desk, PREPRO_SOURCE_RGB, desk.width, 0, desk.width,
                                        0, desk.height, desk.out.data(), more...),
                               desk.height, desk.width);
    });
}

// Binarizes the colour page by a function that does everything in one call; `leading` are the
// arguments before the reader.
template <class Binarize, class... Leading>
auto at_once(Binarize binarize, Leading... leading) {
    return [=](Desk& desk) {
        return desk.wrote_bits(binarize(leading..., Desk::read, &desk, PREPRO_SOURCE_RGB,
                                        desk.width, 0, desk.width, 0, desk.height, desk.out.data()),
                               desk.height, desk.width);
    };
}

template <class Binarize, class... Leading>
auto at_once_dropping(Binarize binarize, Leading... leading) {
    return [=](Desk& desk) {
        return desk.wrote_bits(
            binarize(leading..., Desk::read, &desk, drop_reddish, &desk, PREPRO_SOURCE_BGR,
                     desk.width, 0, desk.width, 0, desk.height, desk.out.data()),
            desk.height, desk.width);
    };
}

int threshold_of_grey(Desk& desk) {
    return desk.wrote_bits(bi_thresh(0, 130, Desk::read_grey, &desk, PREPRO_SOURCE_GREY, desk.width,
                                     0, desk.width, 0, desk.height, desk.out.data()),
                           desk.height, desk.width);
}

auto greyed(unsigned char smooth, int nb_threads, unsigned char undithering) {
    return [=](Desk& desk) {
        const void* const record[4] = {nullptr, nullptr, nullptr, desk.colour.data()};
        const int pixels = desk.width * desk.height;
        return desk.wrote(bi_color2greybuf(smooth, Desk::read, &desk, record, PREPRO_SOURCE_RGB,
                                           desk.width, 300, 0, desk.width, 0, desk.height,
                                           desk.out.data(), pixels, nb_threads, undithering),
                          desk.out.data(), static_cast<std::size_t>(pixels));
    };
}

int gradient_of_grey(Desk& desk, bi_settings* handle) {
    return desk.wrote_bits(
        bi_grey_gradl_do(handle, desk.copy(desk.grey), desk.height, desk.width, desk.out.data()),
        desk.height, desk.width);
}

int gradient_at_150_dpi(Desk& desk, bi_settings* handle) {
    return desk.wrote_bits(
        bi_gradl_do_with_resolution(handle, &desk, PREPRO_SOURCE_RGB, desk.width, 150, 0,
                                    desk.width, 0, desk.height, desk.out.data()),
        desk.height, desk.width);
}

int set_folders(Desk& desk, bi_settings* handle) {
    return desk.wrote(
        bi_set_debug_folder(handle, "/tmp") |
            bi_set_debug_folder(handle, "/a/folder/whose/path/is/longer/than/a/short/one"),
        nullptr, 0);
}

void defaults(Desk&, bi_settings*) {}

void otsu_dropout(Desk& desk, bi_settings* handle) {
    bi_set_thresh(handle, 0);
    bi_set_dropout(handle, drop_reddish, &desk);
}

void on_four_threads(Desk& desk, bi_settings* handle) {
    bi_set_nb_threads(handle, 4);
    bi_set_image_pointer(handle, desk.colour.data());
}

void gaussian_dropout(Desk& desk, bi_settings* handle) {
    bi_set_dropout(handle, drop_reddish, &desk);
    bi_set_internal_gaussian_smoothing(handle, 1);
}

void fill_mean_dark(Desk&, bi_settings* handle) {
    bi_set_fill_mean(handle, 1);
    bi_set_brightness(handle, 100);
    bi_set_normalize_magnitude(handle, 1);
}

void undither(Desk&, bi_settings* handle) {
    bi_set_smooth(handle, 100);
    bi_set_undithering(handle, 1);
}

void negative_sigma(Desk&, bi_settings* handle) {
    bi_set_sigma(handle, -20);
    bi_set_brightness(handle, 80);
}

const bool added = add_calls({
    {"bi_setup", Allocates::kYes,
     with_handle(defaults, [](Desk& desk, bi_settings*) { return desk.wrote(0, nullptr, 0); })},
    {"bi_set_debug_folder", Allocates::kYes, with_handle(defaults, set_folders)},
    {"bi_thresh, grey", Allocates::kYes, threshold_of_grey},
    {"bi_thresh, undithered", Allocates::kYes, at_once(bi_thresh, 2, 0)},
    {"bi_thresh_dropout", Allocates::kYes, at_once_dropping(bi_thresh_dropout, 1, 100)},
    {"bi_thresh_do, Otsu, dropout", Allocates::kYes, by_handle(bi_thresh_do, otsu_dropout)},
    {"bi_thresh_do, threads", Allocates::kYes, by_handle(bi_thresh_do, on_four_threads)},
    {"bi_gradl", Allocates::kYes, at_once(bi_gradl, 1)},
    {"bi_gradl_dropout", Allocates::kYes, at_once_dropping(bi_gradl_dropout, 2)},
    {"bi_gradl_do, dropout", Allocates::kYes, by_handle(bi_gradl_do, gaussian_dropout)},
    {"bi_gradl_do, fill mean", Allocates::kYes, by_handle(bi_gradl_do, fill_mean_dark)},
    {"bi_gradl_do, threads", Allocates::kYes, by_handle(bi_gradl_do, on_four_threads)},
    {"bi_gradl_do_with_resolution", Allocates::kYes, with_handle(undither, gradient_at_150_dpi)},
    {"bi_gradl_do_debug", Allocates::kYes,
     by_handle(bi_gradl_do_debug, defaults, "/a/folder/longer/than/a/short/string")},
    {"bi_grey_gradl_do", Allocates::kYes, with_handle(defaults, gradient_of_grey)},
    {"bi_gradl_do_sobel", Allocates::kYes, by_handle(bi_gradl_do_sobel, negative_sigma)},
    {"bi_color2greybuf", Allocates::kYes, greyed(0, 1, 0)},
    {"bi_color2greybuf, undithered", Allocates::kYes, greyed(248, 1, 1)},
    {"bi_color2greybuf, threads", Allocates::kYes, greyed(100, 4, 0)},
});

}  // namespace
}  // namespace calls

// Despeckling and the text filter.
#include <cstdint>

#include "api/guard.h"
#include "cleaning/specks/despeckle.h"
#include "cleaning/specks/stt_image.h"
#include "cleaning/specks/text_filter.h"
#include "common/views.h"
#include "vemoprepro/cleaning.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;

namespace {

// What an operation makes of an image of no bytes.
enum class Emptiness { kAccepted, kRefused };

Emptiness emptiness_for(int distance) {
    return distance == 0 ? Emptiness::kAccepted : Emptiness::kRefused;
}

// Checks the image, with its sizes as they count, and returns what `work` makes of it; an image
// without pixels needs no work.
template <class Work>
int on_image(unsigned char* data, int height, int width, int stride, Emptiness emptiness,
             Work work) {
    if (height < 0 || width < 0 || stride < 0) return kFailure;
    return guarded([&] {
        cleaning::stt_image image = cleaning::wrapped_image(data, height, width, stride);
        const bool no_bytes = image.height == 0 || image.stride == 0;
        if (no_bytes && emptiness == Emptiness::kRefused) return kFailure;
        if (image.height == 0 || image.width == 0) return kSuccess;
        if (data == nullptr || image.stride < common::bitonal_bytes(image.width)) return kFailure;
        return work(image);
    });
}

int by_area(unsigned char* data, int height, int width, int stride, int max_area, int distance) {
    return on_image(data, height, width, stride, emptiness_for(distance),
                    [=](const cleaning::stt_image& page) {
                        cleaning::despeckle_away_from_ink(page.view(), max_area, distance);
                        return kSuccess;
                    });
}

int by_rule(unsigned char* data, int height, int width, int stride,
            const cleaning::ComponentJudge& judge, int distance) {
    return on_image(data, height, width, stride, emptiness_for(distance),
                    [&](const cleaning::stt_image& page) {
                        if (judge.rule == nullptr) return kFailure;
                        if (distance == 0) {
                            cleaning::despeckle_by_rule(page.view(), judge);
                        } else {
                            cleaning::despeckle_by_rule_away_from_ink(page.view(), judge, distance);
                        }
                        return kSuccess;
                    });
}

}  // namespace

int despeckl_mem(unsigned char* image, int height, int width, int stride, int max_area) {
    return by_area(image, height, width, stride, max_area, 0);
}

int despeckl_c_mem(unsigned char* image, int height, int width, int stride, int max_area,
                   int distance) {
    return by_area(image, height, width, stride, max_area, distance);
}

int despeckl_cb_mem(unsigned char* image, int height, int width, int stride,
                    prepro_component_rule rule, void* user) {
    return by_rule(image, height, width, stride, {rule, user}, 0);
}

int despeckl_ccb_mem(unsigned char* image, int height, int width, int stride,
                     prepro_component_rule rule, void* user, int distance) {
    return by_rule(image, height, width, stride, {rule, user}, distance);
}

int despeckl_selective(unsigned char* image, int height, int width, int stride, int extra,
                       int max_area, int density) {
    return on_image(image, height, width, stride, Emptiness::kAccepted,
                    [=](cleaning::stt_image& page) {
                        page.extra = static_cast<std::uint16_t>(extra);
                        cleaning::despeckle_busy_regions(page.view(), max_area, density);
                        return kSuccess;
                    });
}

int pre_tva(unsigned char* image, int height, int width, int stride, short max_height,
            short min_density) {
    if (height < 1 || stride < 1 || image == nullptr) return kFailure;
    if (stride < common::bitonal_bytes(width)) return kFailure;
    // The components are formed on the sizes as they count, gaps are filled on those as given.
    return on_image(
        image, height, width, stride, Emptiness::kAccepted, [=](const cleaning::stt_image&) {
            cleaning::keep_text({image, height, width, stride}, {max_height, min_density});
            return kSuccess;
        });
}

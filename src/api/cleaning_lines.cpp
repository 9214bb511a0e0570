// Removal and extraction of lines.
#include <cstdint>
#include <limits>
#include <new>

#include "api/guard.h"
#include "cleaning/lines/line_removal.h"
#include "cleaning/lines/underline.h"
#include "common/rectangle.h"
#include "common/views.h"
#include "frame/memory.h"
#include "vemoprepro/cleaning.h"

using api::guarded;
using api::kFailure;
using api::kSuccess;
using cleaning::LineDirection;
using cleaning::LineSettings;

// All sizes are those of 16-bit arguments.
struct lrm_settings {
    unsigned char* image;
    std::int32_t height;
    std::int32_t width;
    std::int32_t stride;
    common::Rectangle zone;
    LineSettings horz;
    LineSettings vert;
};

namespace {

int set(lrm_settings* lrm, LineSettings lrm_settings::*direction,
        std::int32_t LineSettings::*setting, unsigned short value) {
    if (lrm == nullptr) return kFailure;
    lrm->*direction.*setting = value;
    return kSuccess;
}

int remove_lines(const lrm_settings* lrm, LineDirection direction, LineSettings lrm_settings::*of) {
    if (lrm == nullptr || lrm->image == nullptr) return kFailure;
    if (lrm->height == 0 || lrm->stride == 0) return kFailure;
    return guarded([&] {
        cleaning::remove_lines({lrm->image, lrm->height, lrm->width, lrm->stride}, direction,
                               lrm->zone, lrm->*of);
        return kSuccess;
    });
}

// An image without columns has no lines.
int remove_lines_carefully(LineDirection direction, unsigned char* image, int height, int width,
                           int stride, const cleaning::CarefulLineSettings& settings) {
    if (image == nullptr || height < 1 || stride < 1) return kFailure;
    if (width < 0 || stride < common::bitonal_bytes(width)) return kFailure;
    return guarded([&] {
        cleaning::remove_lines_carefully({image, height, width, stride}, direction, settings);
        return kSuccess;
    });
}

}  // namespace

lrm_settings* lrm_init_mem(unsigned char* image, unsigned short height, unsigned short width,
                           unsigned short stride) {
    if (stride < common::bitonal_bytes(width)) return nullptr;
    void* const block = frame::allocate(sizeof(lrm_settings));
    if (block == nullptr) return nullptr;
    return new (block) lrm_settings{image, height, width, stride, {0, width, 0, height}, {}, {}};
}

int lrm_exit(lrm_settings* lrm) {
    if (lrm == nullptr) return kFailure;
    frame::release(lrm);
    return kSuccess;
}

int lrm_set_zone(lrm_settings* lrm, unsigned short x0, unsigned short x1, unsigned short y0,
                 unsigned short y1) {
    if (lrm == nullptr || x1 <= x0 || x1 > lrm->width) return kFailure;
    if (y1 <= y0 || y1 > lrm->height) return kFailure;
    lrm->zone = {x0, x1, y0, y1};
    return kSuccess;
}

int lrm_set_horz_min_length(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::min_length, pixels);
}
int lrm_set_horz_max_thickness(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::max_thickness, pixels);
}
int lrm_set_horz_max_gap(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::max_gap, pixels);
}
int lrm_set_horz_dilate(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::dilate, pixels);
}
int lrm_set_horz_clean_x(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::clean_along, pixels);
}
int lrm_set_horz_clean_y(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::horz, &LineSettings::clean_across, pixels);
}
int lrm_set_vert_min_length(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::min_length, pixels);
}
int lrm_set_vert_max_thickness(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::max_thickness, pixels);
}
int lrm_set_vert_max_gap(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::max_gap, pixels);
}
int lrm_set_vert_dilate(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::dilate, pixels);
}
int lrm_set_vert_clean_x(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::clean_across, pixels);
}
int lrm_set_vert_clean_y(lrm_settings* lrm, unsigned short pixels) {
    return set(lrm, &lrm_settings::vert, &LineSettings::clean_along, pixels);
}

int lrm_do_horz(lrm_settings* lrm) {
    return remove_lines(lrm, LineDirection::kHorizontal, &lrm_settings::horz);
}

int lrm_do_vert(lrm_settings* lrm) {
    return remove_lines(lrm, LineDirection::kVertical, &lrm_settings::vert);
}

int linerm_h(unsigned char* image, int height, int width, int stride, int thickness, int min_length,
             int max_gap, int min_run, int join, int clean) {
    return remove_lines_carefully(LineDirection::kHorizontal, image, height, width, stride,
                                  {thickness, min_length, max_gap, min_run, join, clean});
}

int linerm_v(unsigned char* image, int height, int width, int stride, int thickness, int min_length,
             int max_gap, int min_run, int join, int clean) {
    return remove_lines_carefully(LineDirection::kVertical, image, height, width, stride,
                                  {thickness, min_length, max_gap, min_run, join, clean});
}

// Columns outside of the image are refused unless there are none to look at.
int extract_underline(int ink_value, int vertical, int min_extent, int min_run, int thickness,
                      int dilate, const unsigned char* source, unsigned char* target, int height,
                      int stride, int x0, int x1) {
    if (height < 0 || stride < 0) return kFailure;
    if (height == 0 || stride == 0) return 0;
    const std::int64_t width = std::int64_t{8} * stride;
    if (source == nullptr || target == nullptr) return kFailure;
    if (width > std::numeric_limits<std::int32_t>::max()) return kFailure;
    if (x0 < x1 && (x0 < 0 || x1 > width)) return kFailure;
    return guarded([&] {
        const auto columns = static_cast<std::int32_t>(width);
        return cleaning::extract_underlines(
            {source, height, columns, stride}, {target, height, columns, stride},
            vertical == 0 ? LineDirection::kHorizontal : LineDirection::kVertical,
            {ink_value, min_extent, min_run, thickness, dilate, x0, x1});
    });
}

// What the exported functions of the binarization family share.
#pragma once

#include <cstdint>

#include "api/callbacks.h"
#include "binarization/settings.h"
#include "common/views.h"
#include "grey/source.h"

struct bi_settings {
    binarization::Settings values;
};

namespace api {

grey::Source source_of(prepro_row_reader reader, void* ctx, const void* image, int type, int width);

// The dropout pass over a finished page, where the source has colours and the settings drop any.
int drop_colours(const binarization::Settings& settings, const grey::Source& source,
                 const grey::Region& region, const common::MutableBitonalView& page);

// The packed page that a call writes.
common::MutableBitonalView page_of(std::uint8_t* out, int height, int width);

// The settings of a call without an object. mode: 0 plain, 1 smoothed, any other smoothed and
// undithered.
binarization::Settings one_shot_settings(int mode, prepro_row_reader reader, prepro_dropout dropout,
                                         void* dropout_context);

}  // namespace api

// What the exported functions of the binarization family share.
#pragma once

#include <cstdint>

#include "binarization/settings.h"
#include "binarization/source.h"
#include "common/views.h"

struct bi_settings {
    binarization::Settings values;
};

namespace api {

binarization::Source source_of(prepro_row_reader reader, void* ctx, const void* image, int type,
                               int width);

// The dropout pass over a finished page, where the source has colours and the settings drop any.
int drop_colours(const binarization::Settings& settings, const binarization::Source& source,
                 const binarization::Region& region, const common::MutableBitonalView& page);

// The one-shot modes: 0 plain, 1 smoothed, any other smoothed and undithered.
void set_mode(binarization::Settings& settings, int mode);

}  // namespace api

#include "api/binarization_handle.h"

#include "api/guard.h"
#include "binarization/dropout.h"

namespace api {

using grey::Source;

Source source_of(prepro_row_reader reader, void* ctx, const void* image, int type, int width) {
    return {reader, ctx, static_cast<const std::uint8_t*>(image),
            static_cast<grey::SourceType>(type), width};
}

int drop_colours(const binarization::Settings& settings, const Source& source,
                 const grey::Region& region, const common::MutableBitonalView& page) {
    if (!source.colour() || !settings.drops_colours()) return kSuccess;
    if (source.reader == nullptr) return kFailure;
    binarization::drop_colours({settings.dropout, settings.dropout_context}, source, region, page);
    return kSuccess;
}

common::MutableBitonalView page_of(std::uint8_t* out, int height, int width) {
    return {out, height, width, common::bitonal_stride(width)};
}

binarization::Settings one_shot_settings(int mode, prepro_row_reader reader, prepro_dropout dropout,
                                         void* dropout_context) {
    constexpr std::uint8_t kOneShotSmooth = 248;
    binarization::Settings settings;
    settings.reader = reader;
    settings.smooth = mode == 0 ? 0 : kOneShotSmooth;
    settings.undithering = mode != 0 && mode != 1;
    settings.dropout = dropout;
    settings.dropout_context = dropout_context;
    return settings;
}

}  // namespace api

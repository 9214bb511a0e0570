// Plain forms of luma_chroma_rows.h.
#pragma once

#include "common/luma_chroma.h"
#include "simd/pixels/luma_chroma_rows.h"

namespace simd::plain {

inline void separate_row(const std::uint8_t* colours, std::size_t width, const LumaChromaRows& to) {
    for (std::size_t x = 0; x < width; ++x, colours += 3) {
        const common::LumaChroma value = common::to_luma_chroma(colours[0], colours[1], colours[2]);
        to.y[x] = value.y;
        to.cr[x] = value.cr;
        to.cb[x] = value.cb;
    }
}

inline void join_row(const LumaChromaRows& from, std::size_t width, std::uint8_t* colours) {
    for (std::size_t x = 0; x < width; ++x, colours += 3) {
        const common::Colour colour = common::to_colour({from.y[x], from.cr[x], from.cb[x]});
        colours[0] = colour.red;
        colours[1] = colour.green;
        colours[2] = colour.blue;
    }
}

}  // namespace simd::plain

// Rows of colours as three rows of luma and chroma, in weights of 1/65536 (ITU-R BT.601, full
// range), and back. plain/luma_chroma_rows.h says what each function computes.
//
// Keep true: rows of colours have three bytes per pixel: red, green, blue. Rows do not overlap;
// nothing is read or written beyond their pixels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

struct LumaChromaRows {
    std::uint8_t* y;
    std::uint8_t* cr;  // red difference, 128 for none
    std::uint8_t* cb;  // blue difference, 128 for none
};

void separate_row(const std::uint8_t* colours, std::size_t width, const LumaChromaRows& to);

// Green is solved from the luma.
void join_row(const LumaChromaRows& from, std::size_t width, std::uint8_t* colours);

}  // namespace simd

// Shears of images of whole bytes per pixel, in place: lines move along themselves by a number of
// pixels and a fraction of one. plain/shear_pixels.h says what each function computes.
//
// Each pixel gives the fraction of itself to the next one of its line, rounded down: place k +
// shift receives pixel k, less what it gives, plus what pixel k - 1 gives. The first pixel gives
// nothing and stays as it is.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

enum class ShearedChannels {
    kBytes,    // of 8 bits; fractions are 256ths
    kFiveBits  // three to a number of 16 bits, high byte first; fractions are 32nds, bit 15 becomes
               // 0
};

struct ShearFormat {
    ShearedChannels channels = ShearedChannels::kBytes;
    std::size_t pixel_bytes = 1;  // 1 .. 4; 2 for kFiveBits
};

// Moves a row of `count` >= 1 pixels to the right. What is left of its new place keeps its bytes.
void shear_row(const ShearFormat& format, std::uint8_t* row, std::size_t count, std::size_t shift,
               std::uint8_t fraction);

// How the bytes of a row move down: those of a pixel alike, and neighbouring bytes by at most one
// row more or less, never turning back.
struct ColumnMoves {
    static constexpr std::size_t kBlock = 16;

    const std::int32_t* block_shifts;  // of the bytes 0, kBlock, 2 * kBlock, ...; at least 0
    const std::uint8_t* shifts;        // of every byte, modulo 256
    const std::uint8_t* fractions;     // of every byte
    const std::uint8_t* background;    // a row of background pixels, bit 15 of kFiveBits cleared
};

// Moves the columns of an image down that has `height` >= 1 rows of `row_bytes` bytes and gets
// `out_height`, at least height and all shifts. The rest of every column becomes background; of
// kBytes, the places beside its first and its last pixel the mean of that and the background,
// rounded down.
struct ColumnShear {
    std::uint8_t* pixels;
    std::ptrdiff_t stride;  // bytes
    std::size_t row_bytes;
    std::size_t height;
    std::size_t out_height;
};
void shear_columns(ShearedChannels channels, const ColumnShear& image, const ColumnMoves& moves);

}  // namespace simd

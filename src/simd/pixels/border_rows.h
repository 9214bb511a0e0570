// Rows of a page while the mask of its dark border grows over them.
//
// A mask row has one bit per pixel in words of 64, pixel x in bit x % 64 (counted from the least
// significant) of word x / 64; bits beyond the row are 0. The kernels visit only the words that
// touch a mark and make grey values only there: a border costs what it covers.
//
// Use: GreyLine lines of two neighbouring rows; then propagate_marks() from the neighbour and along
// the row, in the direction in which the pass walks.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Pixels in a word of a mask row.
constexpr std::size_t kMaskBlock = 64;

constexpr std::size_t mask_words(std::size_t width) {
    return (width + kMaskBlock - 1) / kMaskBlock;
}

// The valid bits of the last word of a mask row.
constexpr std::uint64_t last_word_pixels(std::size_t width) {
    return ~std::uint64_t{0} >> (kMaskBlock * mask_words(width) - width);
}

// The bytes of a pixel in their order; X is one that means nothing.
enum class PixelLayout { kGrey, kBgr, kRgb, kXrgb };

constexpr std::size_t pixel_bytes(PixelLayout layout) {
    return layout == PixelLayout::kGrey ? 1 : layout == PixelLayout::kXrgb ? 4 : 3;
}

struct RowShape {
    PixelLayout layout;
    std::size_t width;  // pixels
};

// The grey values of one row, made in blocks of kMaskBlock pixels when they are first needed.
struct GreyLine {
    const std::uint8_t* pixels;  // the row in its image
    std::uint8_t* grey;    // that of pixel x at grey[x]; room from -1 to 64 * words, inclusive
    std::uint64_t* ready;  // a bit per block: grey holds it and one pixel on either side
};

// A pixel joins a marked neighbour when it is at most this light and differs from its neighbours by
// at most this much.
struct JoinLimits {
    std::uint8_t lightest;
    std::uint8_t steepest;
};

// The way a pass walks along a row. A pixel's neighbours are the one it comes from, the one of the
// neighbouring row in its column, and the one of the neighbouring row beside that.
enum class PassDirection { kRight, kLeft };

// Marks the pixels of at most grey value `darkest`.
void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest, std::uint64_t* marks);

// Marks each pixel, except the first of the walk, that has a marked neighbour and passes the limits
// with all three of its neighbours. Returns whether it marked any. For a row without a neighbour
// pass the row itself and marks of zeros as the neighbour.
bool propagate_marks(PassDirection direction, const RowShape& shape, const JoinLimits& limits,
                     GreyLine& row, GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks);

}  // namespace simd

// Rows of a page while the mask of its dark border grows over them. plain/border_rows.h says what
// each function computes.
//
// A mask row has one bit per pixel in words of 64: pixel x is bit x % 64, counted from the least
// significant one, of word x / 64, and bits behind the last pixel are 0. The kernels visit only the
// words that touch a mark, and make grey values only there, so that a border costs what it covers.
//
// Use: GreyLine lines of two neighbouring rows, which many calls may share; then, for each row in
// the order of a pass, propagate_marks() from the row before it and along the row itself.
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

// The grey values of one row. The kernels make them in blocks of kMaskBlock pixels, each when it is
// first needed.
struct GreyLine {
    const std::uint8_t* pixels;  // the row in its image
    std::uint8_t* grey;    // grey[x] is that of pixel x; there is room for x from -1 to 64 * words
    std::uint64_t* ready;  // a bit per block: it has been made, with one pixel on either side
};

// A pixel joins a marked neighbour when its grey value is at most `lightest` and differs from those
// of its neighbours by at most `steepest`.
struct JoinLimits {
    std::uint8_t lightest;
    std::uint8_t steepest;
};

// The direction in which a pass goes along a row. A pixel has three neighbours: the pixel before
// it on that way, the one in its column of the neighbouring row, and the one before that.
//
//     n n       n n     n: the neighbours of x in passes to the right and to the left, here with
//     n x       x n     the neighbouring row above
enum class PassDirection { kRight, kLeft };

// Marks the pixels whose grey value is at most `darkest`, besides those that are marked already.
void mark_dark(const RowShape& shape, GreyLine& line, std::uint8_t darkest, std::uint64_t* marks);

// In the order of the pass, marks each pixel that has a marked neighbour and is within the limits.
// The first pixel of the row is left as it is. Returns whether any pixel has been marked. A row
// that has no neighbour is its own, with marks of zeros.
bool propagate_marks(PassDirection direction, const RowShape& shape, const JoinLimits& limits,
                     GreyLine& row, GreyLine& neighbour, const std::uint64_t* neighbour_marks,
                     std::uint64_t* marks);

}  // namespace simd

// Rows of a page while the mask of its dark border grows over them.
//
// A mask row has one bit per pixel in words of 64, pixel x in bit x % 64 (counted from the least
// significant) of word x / 64; bits beyond the row are 0. The kernels visit only the words that
// touch a mark and make grey values only there: a border costs what it covers.
//
// Use: GreyLine lines of two neighbouring rows; then propagate_marks() from the neighbour and along
// the row, in the direction in which the pass walks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

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

namespace plain {

inline std::uint8_t grey_value(PixelLayout layout, const std::uint8_t* pixel) {
    const auto weighted = [](unsigned red, unsigned green, unsigned blue) {
        return static_cast<std::uint8_t>((299 * red + 587 * green + 114 * blue) / 1000);
    };
    switch (layout) {
        case PixelLayout::kBgr:
            return weighted(pixel[2], pixel[1], pixel[0]);
        case PixelLayout::kRgb:
            return weighted(pixel[0], pixel[1], pixel[2]);
        case PixelLayout::kXrgb:
            return weighted(pixel[1], pixel[2], pixel[3]);
        default:
            return pixel[0];
    }
}

inline bool marked(const std::uint64_t* marks, std::ptrdiff_t x) {
    return (marks[x / 64] >> (x % 64) & 1) != 0;
}

// propagate_marks() a pixel at a time, on whole rows of grey values.
inline bool propagate_marks(PassDirection direction, std::size_t width, const JoinLimits& limits,
                            const std::uint8_t* row, const std::uint8_t* neighbour,
                            const std::uint64_t* neighbour_marks, std::uint64_t* marks) {
    bool any = false;
    const std::ptrdiff_t from = direction == PassDirection::kRight ? -1 : 1;
    for (std::size_t i = 1; i < width; ++i) {
        const auto x =
            static_cast<std::ptrdiff_t>(direction == PassDirection::kRight ? i : width - 1 - i);
        if (marked(marks, x)) continue;
        if (!marked(marks, x + from) && !marked(neighbour_marks, x) &&
            !marked(neighbour_marks, x + from)) {
            continue;
        }
        const auto close = [&](std::uint8_t other) {
            return std::abs(row[x] - other) <= limits.steepest;
        };
        if (row[x] <= limits.lightest && close(row[x + from]) && close(neighbour[x]) &&
            close(neighbour[x + from])) {
            marks[x / 64] |= std::uint64_t{1} << (x % 64);
            any = true;
        }
    }
    return any;
}

}  // namespace plain
}  // namespace simd

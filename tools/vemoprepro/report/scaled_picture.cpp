// Squares are summed row by row of the page; those at the right and lower edges average over the
// part of them that the page has.
#include "report/scaled_picture.h"

#include <algorithm>

#include "files/pix.h"
#include "page/ink.h"

namespace tool::report {
namespace {

constexpr int kJpegQuality = 82;

// A pixel that became lighter by this much was removed from a scan; less is noise, or the way a
// colour became a grey.
constexpr int kLighter = 64;
// The faintest mark, so that single pixels of a large page show.
constexpr int kFaintestMark = 110;

struct Cells {
    std::vector<std::uint32_t> sums;
    int factor;
    int channels;

    void add_row(const Page& page, int y) {
        const unsigned char* row = page.row(y);
        const auto count = static_cast<std::size_t>(channels);
        for (int x = 0; x < page.width; ++x) {
            std::uint32_t* cell = sums.data() + static_cast<std::size_t>(x / factor) * count;
            if (page.kind == PageKind::kBitonal) {
                *cell += is_ink(row, x) ? 0U : 255U;
                continue;
            }
            const unsigned char* pixel = row + static_cast<std::size_t>(x) * count;
            for (std::size_t channel = 0; channel < count; ++channel) {
                cell[channel] += pixel[channel];
            }
        }
    }
};

// How light a pixel of a scan looks, 0 .. 255. Sixteenths are near enough to mark what became
// lighter; no pixel is made from it.
int lightness(const std::uint8_t* pixel, int channels) {
    return channels == 1 ? pixel[0] : (pixel[0] * 5 + pixel[1] * 9 + pixel[2] * 2) / 16;
}

std::uint8_t mark_strength(int lighter_by, bool bitonal) {
    if (lighter_by < (bitonal ? 1 : kLighter)) return 0;
    return static_cast<std::uint8_t>(std::min(255, kFaintestMark + lighter_by * 2));
}

}  // namespace

ScaledPicture scaled_down(const Page& page) {
    ScaledPicture picture;
    picture.kind = page.kind;
    picture.page_width = page.width;
    picture.page_height = page.height;
    const int longer = std::max(page.width, page.height);
    picture.factor = (longer + kLongestPictureSide - 1) / kLongestPictureSide;
    picture.width = (page.width + picture.factor - 1) / picture.factor;
    picture.height = (page.height + picture.factor - 1) / picture.factor;
    picture.channels = page.kind == PageKind::kColour ? 3 : 1;
    const auto row_size =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.channels);
    picture.pixels.reserve(row_size * static_cast<std::size_t>(picture.height));
    Cells cells{std::vector<std::uint32_t>(row_size), picture.factor, picture.channels};
    for (int top = 0; top < page.height; top += picture.factor) {
        const int bottom = std::min(top + picture.factor, page.height);
        std::fill(cells.sums.begin(), cells.sums.end(), 0U);
        for (int y = top; y < bottom; ++y) cells.add_row(page, y);
        for (std::size_t i = 0; i < row_size; ++i) {
            const int x = static_cast<int>(i) / picture.channels * picture.factor;
            const int columns = std::min(picture.factor, page.width - x);
            const auto area = static_cast<std::uint32_t>(columns * (bottom - top));
            picture.pixels.push_back(static_cast<std::uint8_t>(cells.sums[i] / area));
        }
    }
    return picture;
}

std::optional<ScaledPicture> marks_of_removed(const ScaledPicture& before,
                                              const ScaledPicture& after, Colour colour) {
    const bool bitonal = before.kind == PageKind::kBitonal;
    if (before.page_width != after.page_width || before.page_height != after.page_height ||
        bitonal != (after.kind == PageKind::kBitonal)) {
        return std::nullopt;
    }
    ScaledPicture marks = before;
    marks.channels = 4;
    marks.pixels.clear();
    bool any = false;
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            const int lighter_by = lightness(after.at(x, y), after.channels) -
                                   lightness(before.at(x, y), before.channels);
            const std::uint8_t alpha = mark_strength(lighter_by, bitonal);
            any |= alpha != 0;
            for (const std::uint8_t part : {colour.red, colour.green, colour.blue, alpha}) {
                marks.pixels.push_back(alpha == 0 ? std::uint8_t{0} : part);
            }
        }
    }
    if (!any) return std::nullopt;
    return marks;
}

EncodedPicture encode(const ScaledPicture& picture) {
    const bool scan = picture.channels != 4 && picture.kind != PageKind::kBitonal;
    const files::PixOwner image =
        files::pix_of(picture.pixels.data(), picture.width, picture.height, picture.channels);
    EncodedPicture encoded;
    encoded.type = scan ? "image/jpeg" : "image/png";
    encoded.bytes = scan ? files::jpeg_of(image.get(), kJpegQuality) : files::png_of(image.get());
    encoded.page_width = picture.page_width;
    encoded.page_height = picture.page_height;
    encoded.covered_width = picture.width * picture.factor;
    encoded.covered_height = picture.height * picture.factor;
    return encoded;
}

}  // namespace tool::report

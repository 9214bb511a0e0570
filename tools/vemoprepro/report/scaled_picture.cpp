// Squares are summed row by row of the page; those at the right and lower edges average over the
// part of them that the page has.
#include "report/scaled_picture.h"

#include <algorithm>

#include "page/ink.h"

namespace tool::report {
namespace {

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

}  // namespace tool::report

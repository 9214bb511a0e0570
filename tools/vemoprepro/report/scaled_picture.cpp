// Squares are summed row by row of the page; those at the right and lower edges average over the
// part of them that the page has.
#include "report/scaled_picture.h"

#include <algorithm>

#include "page/ink.h"

namespace tool::report {
namespace {

// The sums of a row of squares; of bitonal pages sums of darkness, most of which are none.
struct Cells {
    std::vector<std::uint32_t> sums;
    int factor;
    int channels;

    void add_row(const Page& page, int y) {
        if (page.kind == PageKind::kBitonal) {
            add_ink(page, y);
            return;
        }
        const unsigned char* pixel = page.row(y);
        std::uint32_t* cell = sums.data();
        for (int x = 0; x < page.width; x += factor, cell += channels) {
            const int end = std::min(x + factor, page.width);
            for (int i = x; i < end; ++i) {
                for (int channel = 0; channel < channels; ++channel) cell[channel] += *pixel++;
            }
        }
    }

  private:
    void add_ink(const Page& page, int y) {
        int end = 0;
        for (int x = next_pixel(page, 0, y, true); x < page.width;
             x = next_pixel(page, end, y, true)) {
            end = next_pixel(page, x, y, false);
            for (; x < end; ++x) sums[static_cast<std::size_t>(x / factor)] += 255;
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
            const std::uint32_t sum = cells.sums[i];
            picture.pixels.push_back(static_cast<std::uint8_t>(
                (page.kind == PageKind::kBitonal ? 255 * area - sum : sum) / area));
        }
    }
    return picture;
}

}  // namespace tool::report

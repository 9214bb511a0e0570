// The page is made smaller by averaging squares of pixels. Of the small greys a pixel is ink when
// it is darker than the mean of the blocks around it by a share of the contrast that the page's ink
// has; so shade and grounds do no harm, and neither does a page of white letters on black.
#include "reading/small_ink.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tool::reading {
namespace {

// An A4 page has the former at 150 dots per inch and the latter at 110.
constexpr std::int64_t kMostUnreduced = 2'200'000;
constexpr std::int64_t kMostReduced = 1'200'000;
constexpr int kMostReduction = 255;  // sums of that many greys fit 16 bits, and of pixels 8

int reduction_for(const Page& page) {
    if (std::int64_t{page.width} * page.height <= kMostUnreduced) return 1;
    int by = 2;
    while (by < kMostReduction &&
           std::int64_t{page.width / by} * std::int64_t{page.height / by} > kMostReduced) {
        ++by;
    }
    return by;
}

// A row's pixels of eight columns each, one per byte, so that columns are summed eight at once.
std::array<std::uint64_t, 256> make_pixels_of_bytes() {
    std::array<std::uint64_t, 256> pixels{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        std::array<unsigned char, 8> one_each{};
        for (unsigned bit = 0; bit < 8; ++bit) one_each[bit] = (byte & (0x80U >> bit)) != 0;
        std::memcpy(&pixels[byte], one_each.data(), sizeof pixels[byte]);
    }
    return pixels;
}

// The columns of `by` rows, summed; of a bitonal page their white pixels, as greys.
void sum_columns(const Page& page, int y0, int by, std::vector<std::uint16_t>& sums) {
    std::fill(sums.begin(), sums.end(), std::uint16_t{0});
    if (page.kind != PageKind::kBitonal) {
        for (int y = y0; y < y0 + by; ++y) {
            const unsigned char* row = page.row(y);
            for (std::size_t i = 0; i < sums.size(); ++i) {
                sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
            }
        }
        return;
    }
    static const std::array<std::uint64_t, 256> kPixels = make_pixels_of_bytes();
    for (std::size_t i = 0; i < page.stride(); ++i) {
        std::uint64_t packed = 0;
        for (int y = y0; y < y0 + by; ++y) packed += kPixels[page.row(y)[i]];
        std::array<unsigned char, 8> ink;
        std::memcpy(ink.data(), &packed, sizeof packed);
        for (std::size_t bit = 0; bit < 8; ++bit) {
            sums[i * 8 + bit] = static_cast<std::uint16_t>((by - ink[bit]) * 255);
        }
    }
}

// kBy: 0 for a number that is known at run time only.
template <int kBy, bool kColour>
void average(const std::uint16_t* from, int by, int width, unsigned char* row) {
    constexpr int kOne = 1 << 16;
    if (kBy != 0) by = kBy;
    const auto share = static_cast<unsigned>(kOne / (by * by) + 1);
    for (int x = 0; x < width; ++x) {
        unsigned sum = 0;
        for (int i = 0; i < by; ++i) {
            const std::uint16_t* at = from + (kColour ? 3 : 1) * (x * by + i);
            sum += kColour ? (at[0] + 2U * at[1] + at[2]) / 4 : at[0];
        }
        row[x] = static_cast<unsigned char>(sum * share / kOne);
    }
}

template <bool kColour>
void average_row(const std::uint16_t* sums, int by, int width, unsigned char* row) {
    switch (by) {
        case 1:
            return average<1, kColour>(sums, by, width, row);
        case 2:
            return average<2, kColour>(sums, by, width, row);
        case 3:
            return average<3, kColour>(sums, by, width, row);
        default:
            return average<0, kColour>(sums, by, width, row);
    }
}

Page small_grey(const Page& page, int by) {
    const Resolution dpi{page.dpi.x / by, page.dpi.y / by};
    Page grey = make_page(PageKind::kGrey, std::max(1, page.width / by),
                          std::max(1, page.height / by), dpi);
    std::vector<std::uint16_t> sums(page.stride() * (page.kind == PageKind::kBitonal ? 8 : 1));
    for (int y = 0; y < grey.height; ++y) {
        sum_columns(page, y * by, std::min(by, page.height), sums);
        if (page.kind == PageKind::kColour) {
            average_row<true>(sums.data(), by, grey.width, grey.row(y));
        } else {
            average_row<false>(sums.data(), by, grey.width, grey.row(y));
        }
    }
    return grey;
}

constexpr int kBlock = 16;
// A block with less contrast has nothing but the noise of the paper.
constexpr int kLeastContrast = 24;

struct BlockGreys {
    int mean, contrast;
};

BlockGreys measure_block(const Page& grey, int x0, int y0) {
    const int x1 = std::min(grey.width, x0 + kBlock), y1 = std::min(grey.height, y0 + kBlock);
    int sum = 0;
    unsigned char darkest = 255, lightest = 0;
    for (int y = y0; y < y1; ++y) {
        const unsigned char* row = grey.row(y);
        for (int x = x0; x < x1; ++x) {
            sum += row[x];
            darkest = std::min(darkest, row[x]);
            lightest = std::max(lightest, row[x]);
        }
    }
    return {sum / ((x1 - x0) * (y1 - y0)), lightest - darkest};
}

// Block by block, the grey that ink is darker than at the block's centre.
class Limits {
  public:
    explicit Limits(const Page& grey)
        : across_((grey.width + kBlock - 1) / kBlock), down_((grey.height + kBlock - 1) / kBlock) {
        std::vector<int> contrasts;
        for (int j = 0; j < down_; ++j) {
            for (int i = 0; i < across_; ++i) {
                const BlockGreys block = measure_block(grey, i * kBlock, j * kBlock);
                limits_.push_back(block.mean);
                if (block.contrast >= kLeastContrast) contrasts.push_back(block.contrast);
            }
        }
        smooth_and_lower(strong_of(contrasts) / kInkShare);
    }

    // Between the centres of the blocks it is interpolated. limits: as long as whole blocks cover
    // the row.
    void of_row(int y, std::vector<std::uint16_t>& limits) const {
        const int below = y + kBlock / 2, j = below / kBlock - 1, past = below % kBlock;
        const auto at = [&](int i) { return near(i, j) * (kBlock - past) + near(i, j + 1) * past; };
        for (int i = 0; i < across_; ++i) {
            const int centre = at(i) * kBlock, before = at(i - 1) * kBlock,
                      after = at(i + 1) * kBlock;
            std::uint16_t* to = limits.data() + static_cast<std::ptrdiff_t>(i) * kBlock;
            for (int x = 0; x < kBlock / 2; ++x) {
                to[x] = static_cast<std::uint16_t>(before +
                                                   (centre - before) / kBlock * (x + kBlock / 2));
                to[x + kBlock / 2] =
                    static_cast<std::uint16_t>(centre + (after - centre) / kBlock * x);
            }
        }
    }
    std::size_t padded_width() const { return static_cast<std::size_t>(across_) * kBlock; }

    static constexpr int kScale = kBlock * kBlock;  // what limits are multiplied by

  private:
    static constexpr int kInkShare = 5;  // ink is darker by a fifth of the contrast

    // What the upper decile of the blocks with ink has.
    static int strong_of(std::vector<int>& contrasts) {
        if (contrasts.empty()) return 255;
        const auto strong =
            contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
        std::nth_element(contrasts.begin(), strong, contrasts.end());
        return *strong;
    }

    int near(int i, int j) const {
        i = std::clamp(i, 0, across_ - 1);
        j = std::clamp(j, 0, down_ - 1);
        return limits_[static_cast<std::size_t>(j * across_ + i)];
    }

    // The mean over each block and its eight neighbours.
    void smooth_and_lower(int darker) {
        std::vector<int> smoothed;
        smoothed.reserve(limits_.size());
        for (int j = 0; j < down_; ++j) {
            for (int i = 0; i < across_; ++i) {
                int sum = 0;
                for (int dj = -1; dj <= 1; ++dj) {
                    for (int di = -1; di <= 1; ++di) sum += near(i + di, j + dj);
                }
                smoothed.push_back(std::max(0, sum / 9 - darker));
            }
        }
        limits_ = std::move(smoothed);
    }

    int across_, down_;
    std::vector<int> limits_;
};

// Eight bytes of 0 and 1 as the bits of one, the first one highest.
unsigned char packed(const unsigned char* eight) {
    unsigned byte = 0;
    for (int i = 0; i < 8; ++i) byte = byte << 1 | eight[i];
    return static_cast<unsigned char>(byte);
}

}  // namespace

Page small_ink(const Page& page) {
    const Page grey = small_grey(page, reduction_for(page));
    const Limits limits(grey);
    Page ink = make_page_like(grey, PageKind::kBitonal);
    std::vector<std::uint16_t> limits_of_row(limits.padded_width());
    std::vector<unsigned char> dark(ink.stride() * 8);
    for (int y = 0; y < grey.height; ++y) {
        limits.of_row(y, limits_of_row);
        const unsigned char* row = grey.row(y);
        for (std::size_t x = 0; x < static_cast<std::size_t>(grey.width); ++x) {
            dark[x] = row[x] * Limits::kScale < limits_of_row[x];
        }
        for (std::size_t i = 0; i < ink.stride(); ++i) ink.row(y)[i] = packed(&dark[i * 8]);
    }
    return ink;
}

}  // namespace tool::reading

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

#include "page/ink.h"

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

// The blocks of the rows y0 .. y0 + kBlock - 1, as far as the page goes. Columns are gathered
// before blocks are.
class BlockRow {
  public:
    explicit BlockRow(const Page& grey)
        : grey_(grey), width_(static_cast<std::size_t>(grey.width)) {}

    void gather(int y0) {
        rows_ = std::min(kBlock, grey_.height - y0);
        sums_.assign(width_, 0);
        darkest_.assign(width_, 255);
        lightest_.assign(width_, 0);
        for (int y = y0; y < y0 + rows_; ++y) {
            const unsigned char* row = grey_.row(y);
            for (std::size_t x = 0; x < width_; ++x) {
                sums_[x] = static_cast<std::uint16_t>(sums_[x] + row[x]);
                darkest_[x] = std::min(darkest_[x], row[x]);
                lightest_[x] = std::max(lightest_[x], row[x]);
            }
        }
    }

    BlockGreys block(int x0) const {
        const auto begin = static_cast<std::size_t>(x0);
        const std::size_t end = std::min(width_, begin + kBlock);
        int sum = 0;
        unsigned char darkest = 255, lightest = 0;
        for (std::size_t x = begin; x < end; ++x) {
            sum += sums_[x];
            darkest = std::min(darkest, darkest_[x]);
            lightest = std::max(lightest, lightest_[x]);
        }
        return {sum / (static_cast<int>(end - begin) * rows_), lightest - darkest};
    }

  private:
    const Page& grey_;
    std::size_t width_;
    int rows_ = 0;
    std::vector<std::uint16_t> sums_;
    std::vector<unsigned char> darkest_, lightest_;
};

// Block by block, the grey that ink is darker than at the block's centre.
class Limits {
  public:
    explicit Limits(const Page& grey)
        : across_((grey.width + kBlock - 1) / kBlock), down_((grey.height + kBlock - 1) / kBlock) {
        std::vector<int> contrasts;
        BlockRow row(grey);
        for (int j = 0; j < down_; ++j) {
            row.gather(j * kBlock);
            for (int i = 0; i < across_; ++i) {
                const BlockGreys block = row.block(i * kBlock);
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
            const int before = at(i - 1), centre = at(i), after = at(i + 1);
            std::uint16_t* to = limits.data() + static_cast<std::ptrdiff_t>(i) * kBlock;
            ramp(before * kBlock + (centre - before) * (kBlock / 2), centre - before, to);
            ramp(centre * kBlock, after - centre, to + kBlock / 2);
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

    // Half a block of limits. They fit 16 bits, and so do the steps modulo those.
    static void ramp(int first, int step, std::uint16_t* to) {
        static constexpr std::uint16_t kPlaces[kBlock / 2] = {0, 1, 2, 3, 4, 5, 6, 7};
        const auto from = static_cast<std::uint16_t>(first), by = static_cast<std::uint16_t>(step);
        for (int x = 0; x < kBlock / 2; ++x) {
            to[x] = static_cast<std::uint16_t>(from + by * kPlaces[x]);
        }
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

void mark_darker(const unsigned char* row, const std::uint16_t* limits, int width,
                 unsigned char* dark) {
    for (int x = 0; x < width; ++x) {
        const auto grey = static_cast<std::uint16_t>(row[x] * Limits::kScale);
        dark[x] = grey < limits[x] ? 1 : 0;
    }
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
        mark_darker(grey.row(y), limits_of_row.data(), grey.width, dark.data());
        for (std::size_t i = 0; i < ink.stride(); ++i) ink.row(y)[i] = ink_byte(&dark[i * 8]);
    }
    return ink;
}

}  // namespace tool::reading

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
#include "reading/small_grey.h"

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
        int before = at(0), centre = before;
        for (int i = 0; i < across_; ++i) {
            const int after = at(i + 1);
            std::uint16_t* to = limits.data() + static_cast<std::ptrdiff_t>(i) * kBlock;
            ramp(before * kBlock + (centre - before) * (kBlock / 2), centre - before, to);
            ramp(centre * kBlock, after - centre, to + kBlock / 2);
            before = centre;
            centre = after;
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

Page darker_ink(const Page& grey) {
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

}  // namespace

Page small_ink(const Page& page) {
    const int by = reduction_for(page);
    if (by == 1 && page.kind == PageKind::kGrey) return darker_ink(page);
    return darker_ink(small_grey(page, by));
}

}  // namespace tool::reading

#include "reading/coarse_bits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

// A tile is wider than a stroke; with its neighbours around it is as wide as a few letters.
constexpr int kTile = 16;
// Tiles whose greys differ by less, with their neighbours, are paper.
constexpr int kLeastContrast = 24;
// Of the page's strong contrasts: what is fainter is the other side, a stain or a crease.
constexpr double kFaint = 0.3;

// The bits 0, 2, 4, ... side by side.
std::uint32_t every_other_bit(std::uint32_t word) {
    word &= 0x55555555;
    word = (word | word >> 1) & 0x33333333;
    word = (word | word >> 2) & 0x0F0F0F0F;
    word = (word | word >> 4) & 0x00FF00FF;
    return (word | word >> 8) & 0x0000FFFF;
}

// 16 pixels from 32 of two rows each.
std::uint32_t halved(std::uint32_t top, std::uint32_t bottom) {
    const std::uint32_t one = top | bottom, both = top & bottom;
    return every_other_bit((one & one >> 1) | both | both >> 1);
}

Page halved(const Page& bits) {
    Page half = make_page(PageKind::kBitonal, bits.width / 2, bits.height / 2, bits.dpi);
    const std::size_t words = bits.stride() / 4;
    for (int y = 0; y < half.height; ++y) {
        unsigned char* row = half.row(y);
        std::memset(row, 0, half.stride());
        for (std::size_t i = 0; i < words && 2 * i < half.stride(); ++i) {
            const std::uint32_t pixels =
                halved(pixels_at(bits.row(2 * y), i), pixels_at(bits.row(2 * y + 1), i));
            row[2 * i] = static_cast<unsigned char>(pixels >> 8);
            row[2 * i + 1] = static_cast<unsigned char>(pixels);
        }
    }
    clear_padding(half);
    return half;
}

// Every second pixel of every second row, as the mean of four. A colour page's greens are its
// greys.
Page halved_greys(const Page& page) {
    Page small = make_page(PageKind::kGrey, page.width / 2, page.height / 2, page.dpi);
    const bool colours = page.kind == PageKind::kColour;
    const std::size_t step = colours ? 3 : 1;
    const std::size_t first = colours ? 1 : 0;
    const auto width = static_cast<std::size_t>(small.width);
    for (int y = 0; y < small.height; ++y) {
        const unsigned char* top = page.row(2 * y) + first;
        const unsigned char* bottom = page.row(2 * y + 1) + first;
        unsigned char* to = small.row(y);
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t i = 2 * step * x;
            const int sum = top[i] + top[i + step] + bottom[i] + bottom[i + step];
            to[x] = static_cast<unsigned char>(sum / 4);
        }
    }
    return small;
}

Page greys_of(const Page& page) {
    if (page.kind == PageKind::kGrey) return copy_of(page);
    Page grey = make_page_like(page, PageKind::kGrey);
    const std::size_t size = grey.size();
    const unsigned char* green = page.bytes.get() + 1;
    unsigned char* to = grey.bytes.get();
    for (std::size_t i = 0; i < size; ++i) to[i] = green[3 * i];
    return grey;
}

struct Greys {
    int darkest = 255, lightest = 0;
    int contrast() const { return lightest - darkest; }
    void add(const Greys& other) {
        darkest = std::min(darkest, other.darkest);
        lightest = std::max(lightest, other.lightest);
    }
};

// The greys of tiles, and thresholds from them.
class Tiles {
  public:
    explicit Tiles(const Page& grey)
        : across_((grey.width + kTile - 1) / kTile), down_((grey.height + kTile - 1) / kTile) {
        for (int y = 0; y < down_; ++y) add_row(grey, y);
        least_contrast_ = find_least_contrast();
    }

    // Pixels of the tile that are darker are ink.
    unsigned char threshold(int x, int y) const {
        Greys around;
        for (int j = std::max(0, y - 1); j <= std::min(down_ - 1, y + 1); ++j) {
            for (int i = std::max(0, x - 1); i <= std::min(across_ - 1, x + 1); ++i)
                around.add(at(i, j));
        }
        return static_cast<unsigned char>(
            around.contrast() < least_contrast_ ? 0 : (around.darkest + around.lightest + 1) / 2);
    }

  private:
    void add_row(const Page& grey, int y) {
        const auto width = static_cast<std::size_t>(grey.width);
        darkest_.assign(width, 255);
        lightest_.assign(width, 0);
        const int end = std::min(grey.height, (y + 1) * kTile);
        for (int j = y * kTile; j < end; ++j) {
            const unsigned char* row = grey.row(j);
            for (std::size_t x = 0; x < width; ++x) {
                darkest_[x] = std::min(darkest_[x], row[x]);
                lightest_[x] = std::max(lightest_[x], row[x]);
            }
        }
        for (std::size_t x = 0; x < width; x += kTile) {
            Greys greys;
            for (std::size_t i = x; i < std::min(width, x + kTile); ++i)
                greys.add({darkest_[i], lightest_[i]});
            greys_.push_back(greys);
        }
    }

    const Greys& at(int x, int y) const {
        return greys_[static_cast<std::size_t>(y * across_ + x)];
    }

    int find_least_contrast() const {
        std::vector<int> contrasts;
        for (const Greys& greys : greys_) {
            if (greys.contrast() >= kLeastContrast) contrasts.push_back(greys.contrast());
        }
        if (contrasts.empty()) return kLeastContrast;
        const auto strong =
            contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() * 9 / 10);
        std::nth_element(contrasts.begin(), strong, contrasts.end());
        return std::max(kLeastContrast, static_cast<int>(*strong * kFaint));
    }

    int across_, down_;
    int least_contrast_ = kLeastContrast;
    std::vector<Greys> greys_;
    std::vector<unsigned char> darkest_, lightest_;  // of the columns of a row of tiles
};

std::int64_t ink_of(const Page& bits) {
    std::int64_t ink = 0;
    for (int y = 0; y < bits.height; ++y) {
        for (std::size_t i = 0; i < bits.stride() / 4; ++i)
            ink += count_bits(pixels_at(bits.row(y), i));
    }
    return ink;
}

// The share of an area; none of no area.
double share_of(std::int64_t part, std::int64_t area) {
    return area == 0 ? 0 : static_cast<double>(part) / static_cast<double>(area);
}

CoarseBits bits_by_tiles(const Page& grey) {
    CoarseBits coarse{make_page_like(grey, PageKind::kBitonal), 0};
    const Tiles tiles(grey);
    const auto width = static_cast<std::size_t>(grey.width);
    std::vector<unsigned char> thresholds(width);
    std::vector<unsigned char> dark(8 * coarse.bits.stride());
    std::int64_t printed = 0, printed_of_row = 0;
    for (int y = 0; y < grey.height; ++y) {
        if (y % kTile == 0) {
            printed_of_row = 0;
            for (std::size_t x = 0; x < width; x += kTile) {
                const std::size_t size = std::min<std::size_t>(kTile, width - x);
                const unsigned char threshold =
                    tiles.threshold(static_cast<int>(x) / kTile, y / kTile);
                std::fill_n(thresholds.begin() + static_cast<std::ptrdiff_t>(x), size, threshold);
                if (threshold != 0) printed_of_row += static_cast<std::int64_t>(size);
            }
        }
        printed += printed_of_row;
        const unsigned char* row = grey.row(y);
        for (std::size_t x = 0; x < width; ++x) dark[x] = row[x] < thresholds[x] ? 1 : 0;
        unsigned char* ink = coarse.bits.row(y);
        for (std::size_t i = 0; i < dark.size() / 8; ++i) ink[i] = ink_byte(&dark[8 * i]);
    }
    coarse.ink_share = share_of(ink_of(coarse.bits), printed);
    return coarse;
}

}  // namespace

CoarseBits coarse_bits(const Page& page, int halvings) {
    if (page.kind == PageKind::kBitonal) {
        Page bits = halvings > 0 ? halved(page) : copy_of(page);
        for (int i = 1; i < halvings; ++i) bits = halved(bits);
        const double ink_share = share_of(ink_of(bits), std::int64_t{bits.width} * bits.height);
        return {std::move(bits), ink_share};
    }
    Page grey = halvings > 0 ? halved_greys(page) : greys_of(page);
    for (int i = 1; i < halvings; ++i) grey = halved_greys(grey);
    return bits_by_tiles(grey);
}

}  // namespace tool::reading

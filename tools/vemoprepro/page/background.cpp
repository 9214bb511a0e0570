#include "page/background.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "page/ink.h"

namespace tool {
namespace {

// The edge of a page is as wide as one in so many pixels of its shorter side.
constexpr int kEdgeShare = 100;
constexpr int kMidGrey = 128;

class EdgeCounts {
  public:
    explicit EdgeCounts(const Page& page)
        : page_(page), edge_(std::max(1, std::min(page.width, page.height) / kEdgeShare)) {
        for (int y = 0; y < page.height; ++y) {
            if (y < edge_ || y >= page.height - edge_) {
                count(y, 0, page.width);
            } else {
                const int right = std::max(edge_, page.width - edge_);
                count(y, 0, std::min(edge_, page.width));
                count(y, right, page.width);
            }
        }
    }

    unsigned char median(std::size_t channel) const {
        std::int64_t below = 0;
        std::size_t value = 0;
        while (value < 255 && 2 * (below + counts_[channel][value]) < total_) {
            below += counts_[channel][value++];
        }
        return static_cast<unsigned char>(value);
    }

  private:
    void count(int y, int begin, int end) {
        const unsigned char* row = page_.row(y);
        for (int x = begin; x < end; ++x) {
            ++total_;
            if (page_.kind == PageKind::kBitonal) {
                ++counts_[0][is_ink(row, x) ? 0 : 255];
            } else if (page_.kind == PageKind::kGrey) {
                ++counts_[0][row[x]];
            } else {
                const unsigned char* pixel = row + std::ptrdiff_t{3} * x;
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    ++counts_[channel][pixel[channel]];
                }
            }
        }
    }

    const Page& page_;
    int edge_;
    std::int64_t total_ = 0;
    std::array<std::array<std::int64_t, 256>, 3> counts_{};
};

unsigned char grey_of(const PixelColour& colour) {
    return static_cast<unsigned char>((299 * colour[0] + 587 * colour[1] + 114 * colour[2]) / 1000);
}

PixelColour all_of(unsigned char grey) {
    return {grey, grey, grey};
}

}  // namespace

PixelColour background_of(const Page& page, const Background& background) {
    if (background.from_border) {
        const EdgeCounts edge(page);
        if (page.kind != PageKind::kColour) return all_of(edge.median(0));
        return {edge.median(0), edge.median(1), edge.median(2)};
    }
    if (page.kind == PageKind::kColour) return background.colour;
    const unsigned char grey = grey_of(background.colour);
    if (page.kind == PageKind::kGrey) return all_of(grey);
    return all_of(grey < kMidGrey ? 0 : 255);
}

}  // namespace tool

#include "reading/limit_bits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "page/ink.h"

namespace tool::reading {
namespace {

constexpr int kTogether = 16;  // pixels are marked at a time
constexpr int kLongestStretch = 64;

using Offsets = std::array<std::uint16_t, kLongestStretch>;  // 0, 1, 2 ...

// Marks the pixels that are no lighter than a limit which begins at `limit` and grows by `step`
// from pixel to pixel, both in 256ths of a grey.
void mark_dark(const unsigned char* __restrict greys, int count, std::uint16_t limit,
               std::uint16_t step, const Offsets& offsets, unsigned char* __restrict marks) {
    const std::uint16_t* __restrict offset = offsets.data();
    for (int x = 0; x < count; ++x) {
        const auto here =
            static_cast<std::uint16_t>(limit + static_cast<unsigned>(offset[x]) * step);
        marks[x] = greys[x] <= static_cast<unsigned char>(here >> 8) ? 1 : 0;
    }
}

// Rows of marks: 1 for every pixel that is no lighter than the limit there.
class MarkedRows {
  public:
    MarkedRows(const Page& grey, const BlockGrid& limits)
        : grey_(grey),
          rows_(limits, grey.width),
          side_(limits.side),
          marks_(8 * stride_of(PageKind::kBitonal, grey.width)) {
        std::iota(offsets_.begin(), offsets_.end(), static_cast<std::uint16_t>(0));
    }

    // For the columns begin .. end - 1 at least. What is beyond the page's width is 0.
    const unsigned char* mark(int y, int begin, int end) {
        // Products with these, rounded down, are the exact quotients of the small numbers here:
        // rounded up by so little they do not get past a whole number.
        constexpr double kRoundedUp = 1 + 1e-11;
        const double part = kRoundedUp * 256 / (rows_.scale() * kLimitParts);
        rows_.begin(y);
        const int last = std::min((end - 1) / side_ + 1, rows_.stretches() - 1);
        for (int k = begin / side_; k <= last; ++k) {
            const auto [x, count, first, step] = rows_.stretch(k);
            const int from = static_cast<int>(first * part);
            const int to = static_cast<int>((first + (count - 1) * step) * part);
            // Whole vectors are faster: what is too much belongs to later stretches.
            const int whole = (count + kTogether - 1) / kTogether * kTogether;
            mark_dark(grey_.row(y) + x, x + whole <= grey_.width ? whole : count,
                      static_cast<std::uint16_t>(from),
                      static_cast<std::uint16_t>((to - from) / std::max(1, count - 1)), offsets_,
                      marks_.data() + x);
        }
        return marks_.data();
    }

  private:
    const Page& grey_;
    BlockRows rows_;
    int side_;
    std::vector<unsigned char> marks_;
    Offsets offsets_;
};

}  // namespace

Page bits_within(const Page& grey, const BlockGrid& limits) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    MarkedRows rows(grey, limits);
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char* marks = rows.mark(y, 0, grey.width);
        unsigned char* ink = bits.row(y);
        for (std::size_t i = 0; i < bits.stride(); ++i) ink[i] = ink_byte(&marks[8 * i]);
    }
    return bits;
}

void add_bits_within(const Page& grey, const BlockGrid& limits, const Box& part, Page& bits) {
    MarkedRows rows(grey, limits);
    const int right = part.x + part.width;
    for (int y = part.y; y < part.y + part.height; ++y) {
        const unsigned char* marks = rows.mark(y, part.x, right);
        unsigned char* ink = bits.row(y);
        for (int i = part.x / 8; i < (right + 7) / 8; ++i) ink[i] |= ink_byte(&marks[8 * i]);
    }
}

}  // namespace tool::reading

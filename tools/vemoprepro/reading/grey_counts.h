// How often every grey occurs in a rectangle of bytes.
//
// Equal pixels side by side would each have to wait for the count of the one before, so neighbours
// are counted in two histograms that are added up in the end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tool::reading {

class GreyCounts {
  public:
    // Counts no more than 65535 bytes: `rows` rows of `width`, `stride` bytes from one to the next.
    GreyCounts(const unsigned char* first, std::size_t stride, int width, int rows)
        : counted_(width * rows) {
        std::array<std::uint16_t, 256> others{};
        for (int y = 0; y < rows; ++y) {
            const unsigned char* row = first + static_cast<std::size_t>(y) * stride;
            int x = 0;
            for (; x + 1 < width; x += 2) {
                ++counts_[row[x]];
                ++others[row[x + 1]];
            }
            if (x < width) ++counts_[row[x]];
        }
        for (std::size_t level = 0; level < 256; ++level) {
            counts_[level] = static_cast<std::uint16_t>(counts_[level] + others[level]);
        }
    }

    int counted() const { return counted_; }
    int of(int level) const { return counts_[static_cast<std::size_t>(level)]; }

    // No byte is lower; 248 where that is all one can say without looking at every count.
    int no_lower_than() const {
        int level = 0;
        while (level < 248 && are_none(level)) level += kTogether;
        return level;
    }
    // The lowest level that so many bytes do not exceed.
    int reached_from_below(int wanted) const {
        if (wanted <= 0) return 0;
        int level = no_lower_than();
        for (int seen = of(level); level < 255 && seen < wanted;) seen += of(++level);
        return level;
    }
    // The highest level that so many bytes do not fall below.
    int reached_from_above(int wanted) const {
        int level = 255;
        for (int seen = of(level); level > 0 && seen < wanted;) seen += of(--level);
        return level;
    }

  private:
    static constexpr int kTogether = 8;

    bool are_none(int level) const {
        std::array<std::uint64_t, 2> eight;
        std::memcpy(eight.data(), &counts_[static_cast<std::size_t>(level)], sizeof eight);
        return (eight[0] | eight[1]) == 0;
    }

    std::array<std::uint16_t, 256> counts_{};
    int counted_;
};

}  // namespace tool::reading

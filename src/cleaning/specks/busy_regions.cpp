// A window reaches 32 pixels to each side of the first pixel of a block of 8 x 8. It holds the
// pairs along rows whose left pixel lies in the 8 bytes from 4 before the block on, in the 8 groups
// of 8 rows from 4 above the block on and in the first row of the next group. It holds the pairs
// along columns whose upper pixel lies in those 8 bytes and in the first column of the next byte,
// in the same 8 groups. So counts per byte and group of rows are all that is needed: summed over
// the groups of a window, which moves down with the rows of blocks, then over 8 neighbours. Beyond
// the page there is nothing to count.
#include "cleaning/specks/busy_regions.h"

#include <algorithm>
#include <cstring>

#include "simd/bits/colour_changes.h"

namespace cleaning {
namespace {

constexpr std::int32_t kBlock = 8;                    // rows and columns
constexpr std::int32_t kReach = 32;                   // pixels to each side of a window's centre
constexpr std::size_t kBefore = kReach / kBlock;      // groups before that of the centre
constexpr std::size_t kWindow = 2 * kReach / kBlock;  // groups of a window
constexpr std::int32_t kMostChanges = 65 * 64;        // of a window, in one direction

// Pixels of the window around `centre` that lie inside a side of `size` pixels.
std::int32_t window_pixels(std::int32_t centre, std::int32_t size) {
    return std::min(centre + kReach, size - 1) - std::max(centre - kReach, 0) + 1;
}

// A count a byte of a row, with zeros for the windows that reach beyond the ends.
class RowCounts {
  public:
    explicit RowCounts(std::size_t bytes)
        : values_(frame::Buffer<std::int16_t>::zeroed(bytes + 2 * kWindow)) {}

    std::int16_t* data() { return values_.data() + kBefore; }
    std::int16_t& operator[](std::size_t b) { return values_[kBefore + b]; }

    // The sums over the windows of bytes b - kBefore .. b - kBefore + kWindow - 1.
    void sum_windows(std::size_t bytes, RowCounts& sums) {
        static_assert(kWindow == 8);
        std::int16_t* const in = values_.data();
        std::int16_t* const out = sums.data();
        for (std::size_t b = 0; b < bytes; ++b) {
            out[b] = static_cast<std::int16_t>(in[b] + in[b + 1] + in[b + 2] + in[b + 3] +
                                               in[b + 4] + in[b + 5] + in[b + 6] + in[b + 7]);
        }
    }

  private:
    frame::Buffer<std::int16_t> values_;
};

class ChangeWindows {
  public:
    ChangeWindows(common::BitonalView page, std::int32_t density)
        : page_(page),
          factor_(2.0F * static_cast<float>(density) / 300.0F),
          bytes_(static_cast<std::size_t>(common::bitonal_bytes(page.width))),
          groups_((static_cast<std::size_t>(page.height) + kBlock - 1) / kBlock),
          counts_(groups_ * kKinds * bytes_),
          across_(bytes_),
          down_(bytes_),
          down_left_(bytes_),
          with_first_(bytes_),
          across_sums_(bytes_),
          down_sums_(bytes_),
          thresholds_(bytes_) {
        for (std::size_t g = 0; g < groups_; ++g) count_group(g);
        for (std::size_t g = 0; g + 1 < kBefore && g < groups_; ++g) slide<1>(g);
    }

    // Sets busy[b] to 1 or 0 for each block of a row of blocks, the rows in order from 0 on.
    // Returns whether any is busy.
    bool find_busy(std::size_t row, std::uint8_t* busy) {
        if (row + kBefore - 1 < groups_) slide<1>(row + kBefore - 1);
        if (row > kBefore) slide<-1>(row - kBefore - 1);
        std::copy_n(across_.data(), bytes_, with_first_.data());
        if (row + kBefore < groups_) add(with_first_, counts(row + kBefore).across_first);
        with_first_.sum_windows(bytes_, across_sums_);
        down_.sum_windows(bytes_, down_sums_);
        choose_thresholds(window_pixels(static_cast<std::int32_t>(row) * kBlock, page_.height));
        const std::int16_t* const across = across_sums_.data();
        const std::int16_t* const down = down_sums_.data();
        const std::int16_t* const next_left = down_left_.data() + kBefore;
        const std::int16_t* const thresholds = thresholds_.data();
        unsigned any = 0;
        for (std::size_t b = 0; b < bytes_; ++b) {
            const auto downwards = static_cast<std::int16_t>(down[b] + next_left[b]);
            busy[b] = std::min(across[b], downwards) > thresholds[b] ? 1 : 0;
            any |= busy[b];
        }
        return any != 0;
    }

    std::size_t rows() const { return groups_; }
    std::size_t blocks_of_row() const { return bytes_; }

  private:
    static constexpr std::size_t kKinds = 4;

    simd::ChangeCounts counts(std::size_t group) {
        std::uint8_t* const of_group = counts_.data() + group * kKinds * bytes_;
        return {of_group, of_group + bytes_, of_group + 2 * bytes_, of_group + 3 * bytes_};
    }

    void count_group(std::size_t group) {
        const std::int32_t y = static_cast<std::int32_t>(group) * kBlock;
        const std::int32_t rows = std::min(kBlock, page_.height - y);
        simd::count_changes(page_.row(y), page_.stride, rows, y + rows < page_.height, page_.width,
                            counts(group));
    }

    template <int kSign = 1>
    void add(RowCounts& sums, const std::uint8_t* values) const {
        std::int16_t* const out = sums.data();
        for (std::size_t b = 0; b < bytes_; ++b) {
            out[b] = static_cast<std::int16_t>(out[b] + kSign * values[b]);
        }
    }

    // Takes a group into the window of groups, or out of it.
    template <int kSign>
    void slide(std::size_t group) {
        const simd::ChangeCounts moved = counts(group);
        add<kSign>(across_, moved.across);
        add<kSign>(down_, moved.down);
        add<kSign>(down_left_, moved.down_left);
    }

    // The most changes that a window of so many rows may have and not be busy.
    void choose_thresholds(std::int32_t window_rows) {
        if (window_rows == threshold_rows_) return;
        threshold_rows_ = window_rows;
        for (std::size_t b = 0; b < bytes_; ++b) {
            const std::int32_t columns =
                window_pixels(static_cast<std::int32_t>(b) * kBlock, page_.width);
            const float most = static_cast<float>(window_rows * columns) * factor_;
            // Beyond these ends nothing changes, and a large float has no integer.
            thresholds_[b] = static_cast<std::int16_t>(
                std::clamp(most, -1.0F, static_cast<float>(kMostChanges)));
        }
    }

    common::BitonalView page_;
    float factor_;
    std::size_t bytes_;
    std::size_t groups_;
    frame::Buffer<std::uint8_t> counts_;  // of every group
    RowCounts across_;                    // sums over the groups of the window
    RowCounts down_;
    RowCounts down_left_;
    RowCounts with_first_;  // across_ with the first row of the group below
    RowCounts across_sums_;
    RowCounts down_sums_;
    frame::Buffer<std::int16_t> thresholds_;
    std::int32_t threshold_rows_ = 0;  // rows of the windows that the thresholds are for
};

// The mask bytes of a row of blocks, given as 1 and 0 and replaced.
void mark_row(std::uint8_t* blocks, std::size_t count) {
    const auto mark = [](int busy, int next_busy) {
        return static_cast<std::uint8_t>(-busy & (0x80 | -next_busy));
    };
    for (std::size_t b = 0; b + 1 < count; ++b) blocks[b] = mark(blocks[b], blocks[b + 1]);
    blocks[count - 1] = mark(blocks[count - 1], 1);
}

}  // namespace

BusyRegions::BusyRegions(common::BitonalView page, std::int32_t density) {
    ChangeWindows windows(page, density);
    row_bytes_ = windows.blocks_of_row();
    mask_ = frame::Buffer<std::uint8_t>(windows.rows() * row_bytes_);
    for (std::size_t row = 0; row < windows.rows(); ++row) {
        std::uint8_t* const blocks = mask_.data() + row * row_bytes_;
        if (!windows.find_busy(row, blocks)) continue;
        mark_row(blocks, row_bytes_);
        any_ = true;
    }
}

}  // namespace cleaning

// The window of a block, of 65 x 65 pixels, reaches 32 pixels to each side of the block's first
// pixel. Changes are counted in cells, the 8 x 8 pixels of the blocks; a window is 8 x 8 cells and
// one more row and column of pixels:
//
//   - A pair of neighbours along a row belongs to its left pixel. A window has the pairs of 8
//     columns of cells, from 4 before the block on, in 65 rows: those of 8 rows of cells, from 4
//     above the block on, and those of the first row of pixels of the ninth.
//   - A pair along a column belongs to its upper pixel. A window has the pairs of the same 8 rows
//     of cells, in 65 columns: those of the same 8 columns of cells, and those of the first column
//     of pixels of the ninth.
//
// So four counts a cell are enough (simd/bits/colour_changes.h). They are summed over the rows of
// cells of a window, by a sliding window that moves down the page with the rows of blocks, and then
// over 8 cells side by side. Beyond the page there is nothing to count.
#include "cleaning/specks/busy_regions.h"

#include <algorithm>
#include <cstring>

#include "simd/bits/colour_changes.h"

namespace cleaning {
namespace {

constexpr std::int32_t kBlock = 8;                         // rows and columns of pixels
constexpr std::int32_t kReach = 32;                        // pixels to each side of the first one
constexpr std::size_t kCellsBefore = kReach / kBlock;      // of a window, before the block's own
constexpr std::size_t kWindowCells = 2 * kReach / kBlock;  // of a window, in a row or column
constexpr std::int32_t kMostChanges = 65 * 64;             // of a window, in one direction

// Pixels of the window around `centre` that the page has along a side of `size` pixels.
std::int32_t window_pixels(std::int32_t centre, std::int32_t size) {
    return std::min(centre + kReach, size - 1) - std::max(centre - kReach, 0) + 1;
}

// A number for each cell of a row, and zeros beyond the ends, where windows reach to.
class CellRow {
  public:
    // Throws std::bad_alloc.
    explicit CellRow(std::size_t cells)
        : values_(frame::Buffer<std::int16_t>::zeroed(cells + 2 * kWindowCells)) {}

    std::int16_t* data() { return values_.data() + kCellsBefore; }

    // Sets sums[b] to the sum over the window of block b, cells b - kCellsBefore on.
    void sum_windows(std::size_t cells, CellRow& sums) {
        static_assert(kWindowCells == 8);
        std::int16_t* const in = values_.data();
        std::int16_t* const out = sums.data();
        for (std::size_t b = 0; b < cells; ++b) {
            out[b] = static_cast<std::int16_t>(in[b] + in[b + 1] + in[b + 2] + in[b + 3] +
                                               in[b + 4] + in[b + 5] + in[b + 6] + in[b + 7]);
        }
    }

  private:
    frame::Buffer<std::int16_t> values_;
};

// The changes inside the windows of one row of blocks after another.
//
// Use: ChangeWindows(page, density) (find_busy)*, the rows of blocks in order from 0 on.
class ChangeWindows {
  public:
    // Throws std::bad_alloc.
    ChangeWindows(common::BitonalView page, std::int32_t density)
        : page_(page),
          factor_(2.0F * static_cast<float>(density) / 300.0F),
          columns_(static_cast<std::size_t>(common::bitonal_bytes(page.width))),
          rows_((static_cast<std::size_t>(page.height) + kBlock - 1) / kBlock),
          counts_(rows_ * kCountsOfCell * columns_),
          across_(columns_),
          down_(columns_),
          down_left_(columns_),
          across_with_next_(columns_),
          across_sums_(columns_),
          down_sums_(columns_),
          thresholds_(columns_) {
        for (std::size_t row = 0; row < rows_; ++row) count_row(row);
        for (std::size_t row = 0; row + 1 < kCellsBefore && row < rows_; ++row) slide<1>(row);
    }

    // Sets busy[b] to 1 or 0 for each block of a row of blocks. Returns whether any is busy.
    bool find_busy(std::size_t row, std::uint8_t* busy) {
        slide_to(row);
        sum_windows(row);
        choose_thresholds(window_pixels(static_cast<std::int32_t>(row) * kBlock, page_.height));
        const std::int16_t* const across = across_sums_.data();
        const std::int16_t* const down = down_sums_.data();
        const std::int16_t* const down_next = down_left_.data() + kCellsBefore;
        const std::int16_t* const thresholds = thresholds_.data();
        unsigned any = 0;
        for (std::size_t b = 0; b < columns_; ++b) {
            const auto downwards = static_cast<std::int16_t>(down[b] + down_next[b]);
            busy[b] = std::min(across[b], downwards) > thresholds[b] ? 1 : 0;
            any |= busy[b];
        }
        return any != 0;
    }

    std::size_t rows() const { return rows_; }
    std::size_t blocks_of_row() const { return columns_; }

  private:
    static constexpr std::size_t kCountsOfCell = 4;

    simd::ChangeCounts counts(std::size_t row) {
        std::uint8_t* const of_row = counts_.data() + row * kCountsOfCell * columns_;
        return {of_row, of_row + columns_, of_row + 2 * columns_, of_row + 3 * columns_};
    }

    void count_row(std::size_t row) {
        const std::int32_t y = static_cast<std::int32_t>(row) * kBlock;
        const std::int32_t pixel_rows = std::min(kBlock, page_.height - y);
        simd::count_changes(page_.row(y), page_.stride, pixel_rows, y + pixel_rows < page_.height,
                            page_.width, counts(row));
    }

    template <int kSign = 1>
    void add(CellRow& sums, const std::uint8_t* values) const {
        std::int16_t* const out = sums.data();
        for (std::size_t b = 0; b < columns_; ++b) {
            out[b] = static_cast<std::int16_t>(out[b] + kSign * values[b]);
        }
    }

    // Takes a row of cells into the sliding window of rows, or out of it.
    template <int kSign>
    void slide(std::size_t row) {
        const simd::ChangeCounts moved = counts(row);
        add<kSign>(across_, moved.across);
        add<kSign>(down_, moved.down);
        add<kSign>(down_left_, moved.down_left);
    }

    // Moves the sliding window of rows to that of a row of blocks.
    void slide_to(std::size_t row) {
        if (row + kCellsBefore - 1 < rows_) slide<1>(row + kCellsBefore - 1);
        if (row > kCellsBefore) slide<-1>(row - kCellsBefore - 1);
    }

    // Sums the cells side by side that lie in the window of each block of a row.
    void sum_windows(std::size_t row) {
        std::copy_n(across_.data(), columns_, across_with_next_.data());
        if (row + kCellsBefore < rows_) {
            add(across_with_next_, counts(row + kCellsBefore).across_first);
        }
        across_with_next_.sum_windows(columns_, across_sums_);
        down_.sum_windows(columns_, down_sums_);
    }

    // The most changes that the windows of a row of blocks, which have so many rows of pixels, may
    // have and not be busy.
    void choose_thresholds(std::int32_t window_rows) {
        if (window_rows == threshold_rows_) return;
        threshold_rows_ = window_rows;
        for (std::size_t b = 0; b < columns_; ++b) {
            const std::int32_t window_columns =
                window_pixels(static_cast<std::int32_t>(b) * kBlock, page_.width);
            const float most = static_cast<float>(window_rows * window_columns) * factor_;
            // Limits beyond these ends decide as the ends do, and a large float has no integer.
            thresholds_[b] = static_cast<std::int16_t>(
                std::clamp(most, -1.0F, static_cast<float>(kMostChanges)));
        }
    }

    common::BitonalView page_;
    float factor_;                        // changes per pixel above which a window is busy
    std::size_t columns_;                 // cells of a row
    std::size_t rows_;                    // rows of cells
    frame::Buffer<std::uint8_t> counts_;  // of every cell
    CellRow across_;                      // sums over the rows of the sliding window
    CellRow down_;
    CellRow down_left_;
    CellRow across_with_next_;  // across_ and the first row of pixels below the sliding window
    CellRow across_sums_;       // of the window of each block
    CellRow down_sums_;         // without its last column of pixels
    frame::Buffer<std::int16_t> thresholds_;
    std::int32_t threshold_rows_ = 0;  // rows of the windows that the thresholds are for
};

// Turns the ones and zeros of a row of blocks into the bytes of its mask row.
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

// The dots of a screen average out over one cell of it: the tone that they stand for is the mean
// over a square of that size, taken once, or twice where the screen is beyond doubt, which leaves
// nothing of the dots at angles where one square does not match them exactly.
//
// A page is rarely all screen. It is judged tile by tile whether the screen is there: pixels far
// from the mean of their cell, yet like the pixels one lattice shift away. Print on plain paper,
// rules and continuous tones fail one of the two and keep their bytes. The weight of the tone runs
// linearly from the middle of one tile to the middle of the next, so that no tile shows.
#include "grey/undithering.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "frame/buffer.h"
#include "grey/screen_analysis.h"

namespace grey {
namespace {

using common::GreyView;
using common::MutableGreyView;

constexpr int kTile = 16;           // pixels
constexpr int kLeastDeviation = 6;  // mean distance from the cell's mean where a screen is
constexpr int kFillFrom = 6;        // of 8 neighbours that make a tile between them theirs

constexpr int kMostMismatch = 14;  // tenths of the deviation, over both lattice shifts
constexpr std::int64_t kNoCounterpart = 255 * kTile * kTile;

// The division of a sum of weights 2 * cell, rounded, by multiplication; exact for even tones.
class CellMean {
  public:
    explicit CellMean(int cell)
        : half_(static_cast<std::uint16_t>(cell)),
          reciprocal_(static_cast<std::uint16_t>((65536 + 2 * cell - 1) / (2 * cell))) {}

    std::uint8_t operator()(int sum) const {
        return static_cast<std::uint8_t>((static_cast<std::uint32_t>(sum + half_) * reciprocal_) >>
                                         16);
    }

  private:
    std::uint16_t half_;
    std::uint16_t reciprocal_;
};

// Averages of a page over squares of `cell` pixels around each pixel. Even cells take half of the
// pixel at either end; beyond the page's edge its last pixel goes on.
class CellAverage {
  public:
    CellAverage(const GreyView& page, int cell)
        : radius_(cell / 2),
          end_weight_(cell % 2 == 0 ? 1 : 2),
          mean_(cell),
          view_{nullptr, page.height, page.width, page.width},
          pixels_(size_of(page)),
          rows_(size_of(page)),
          line_(static_cast<std::size_t>(page.width + 2 * radius_)),
          columns_(static_cast<std::size_t>(page.width)) {
        std::memcpy(pixels_.data(), page.data, pixels_.size());
    }

    void apply() {
        for (int y = 0; y < view_.height; ++y) average_row(y);
        average_columns();
    }

    GreyView view() const { return {pixels_.data(), view_.height, view_.width, view_.stride}; }

  private:
    static std::size_t size_of(const GreyView& page) {
        return static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.width);
    }

    void average_row(int y) {
        const auto width = static_cast<std::size_t>(view_.width);
        const auto radius = static_cast<std::size_t>(radius_);
        const std::uint8_t* from = pixels_.data() + static_cast<std::size_t>(y) * width;
        std::uint8_t* to = rows_.data() + static_cast<std::size_t>(y) * width;
        std::memset(line_.data(), from[0], radius);
        std::memcpy(line_.data() + radius, from, width);
        std::memset(line_.data() + radius + width, from[width - 1], radius);
        int inner = 0;
        for (std::size_t i = 1; i < 2 * radius; ++i) inner += line_[i];
        for (std::size_t x = 0; x < width; ++x) {
            const int first = line_[x];
            const int last = line_[x + 2 * radius];
            to[x] = mean_(2 * inner + end_weight_ * (first + last));
            inner += last - line_[x + 1];
        }
    }

    const std::uint8_t* averaged_row(int y) const {
        return rows_.data() + static_cast<std::size_t>(std::clamp(y, 0, view_.height - 1)) *
                                  static_cast<std::size_t>(view_.width);
    }

    void average_columns() {
        const std::size_t width = columns_.size();
        std::fill(columns_.begin(), columns_.end(), std::uint16_t{0});
        const auto add = [&](const std::uint8_t* in, const std::uint8_t* out) {
            for (std::size_t x = 0; x < width; ++x) {
                columns_[x] = static_cast<std::uint16_t>(columns_[x] + in[x] - out[x]);
            }
        };
        const frame::Buffer<std::uint8_t> nothing = frame::Buffer<std::uint8_t>::zeroed(width);
        for (int y = 1 - radius_; y < radius_; ++y) add(averaged_row(y), nothing.data());
        for (int y = 0; y < view_.height; ++y) {
            const std::uint8_t* first = averaged_row(y - radius_);
            const std::uint8_t* last = averaged_row(y + radius_);
            std::uint8_t* to = pixels_.data() + static_cast<std::size_t>(y) * width;
            for (std::size_t x = 0; x < width; ++x) {
                to[x] = mean_(2 * columns_[x] + end_weight_ * (first[x] + last[x]));
            }
            add(last, averaged_row(y - radius_ + 1));
        }
    }

    int radius_;
    int end_weight_;  // the pixels between the ends weigh 2
    CellMean mean_;
    GreyView view_;
    frame::Buffer<std::uint8_t> pixels_;
    frame::Buffer<std::uint8_t> rows_;  // averaged along the rows
    frame::Buffer<std::uint8_t> line_;
    frame::Buffer<std::uint16_t> columns_;
};

// Where on a page a screen is, tile by tile.
class TileMap {
  public:
    TileMap(const GreyView& grey, const GreyView& tones, const Screen& screen)
        : columns_((grey.width + kTile - 1) / kTile),
          rows_((grey.height + kTile - 1) / kTile),
          screened_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
        for (int row = 0; row < rows_; ++row) {
            for (int column = 0; column < columns_; ++column) {
                at(row, column) = holds_screen(grey, tones, screen, row, column) ? 1 : 0;
            }
        }
        fill_holes();
    }

    // Of 32 * 32: how far the pixel is inside screened tiles.
    int weight(int y, int x) const {
        const Place vertical = place(y, rows_);
        const Place horizontal = place(x, columns_);
        const int upper = (32 - horizontal.part) * at(vertical.tile, horizontal.tile) +
                          horizontal.part * at(vertical.tile, horizontal.next);
        const int lower = (32 - horizontal.part) * at(vertical.next, horizontal.tile) +
                          horizontal.part * at(vertical.next, horizontal.next);
        return (32 - vertical.part) * upper + vertical.part * lower;
    }

    // Whether all tiles that the rows y and x of that tile row look at are without a screen.
    bool row_is_plain(int y) const {
        const Place vertical = place(y, rows_);
        for (int column = 0; column < columns_; ++column) {
            if (at(vertical.tile, column) + at(vertical.next, column) != 0) return false;
        }
        return true;
    }

  private:
    struct Place {
        int tile;  // whose middle is at or before the position
        int next;
        int part;  // of 32: the way from the one middle to the other
    };

    static Place place(int position, int tiles) {
        const int twice = 2 * position + 1 - kTile;  // in half pixels from the first middle
        const int tile = twice < 0 ? -1 : twice / (2 * kTile);
        const int part = twice - tile * 2 * kTile;
        return {std::clamp(tile, 0, tiles - 1), std::clamp(tile + 1, 0, tiles - 1), part};
    }

    std::uint8_t& at(int row, int column) {
        return screened_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                         static_cast<std::size_t>(column)];
    }
    int at(int row, int column) const {
        return screened_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                         static_cast<std::size_t>(column)];
    }

    static bool holds_screen(const GreyView& grey, const GreyView& tones, const Screen& screen,
                             int row, int column);

    // A tile that its neighbours surround is one that print or an edge in the picture kept from
    // being recognised.
    void fill_holes() {
        const std::vector<std::uint8_t> before = screened_;
        for (int row = 1; row + 1 < rows_; ++row) {
            for (int column = 1; column + 1 < columns_; ++column) {
                int neighbours = -at(row, column);
                for (int dy = -1; dy <= 1; ++dy) {
                    for (int dx = -1; dx <= 1; ++dx) {
                        neighbours += before[static_cast<std::size_t>(row + dy) *
                                                 static_cast<std::size_t>(columns_) +
                                             static_cast<std::size_t>(column + dx)];
                    }
                }
                if (neighbours >= kFillFrom) at(row, column) = 1;
            }
        }
    }

    int columns_;
    int rows_;
    std::vector<std::uint8_t> screened_;
};

// How unlike the pixels of a tile are to those `shift` away on one side, for a whole tile; pixels
// whose counterpart would be outside the page do not count.
std::int64_t mismatch(const GreyView& grey, int row, int column, Shift shift) {
    const int top = std::max(row * kTile, -shift.y);
    const int bottom = std::min({grey.height, (row + 1) * kTile, grey.height - shift.y});
    const int left = std::max(column * kTile, -shift.x);
    const int right = std::min({grey.width, (column + 1) * kTile, grey.width - shift.x});
    if (top >= bottom || left >= right) return kNoCounterpart;
    int sum = 0;
    for (int y = top; y < bottom; ++y) {
        const std::uint8_t* here = grey.row(y);
        const std::uint8_t* there = grey.row(y + shift.y) + shift.x;
        for (int x = left; x < right; ++x) sum += std::abs(here[x] - there[x]);
    }
    return std::int64_t{sum} * kTile * kTile / ((bottom - top) * (right - left));
}

// The side that is more alike decides, so that the tiles along the edge of a screened picture are
// judged by what is inside.
std::int64_t least_mismatch(const GreyView& grey, int row, int column, Shift shift) {
    return std::min(mismatch(grey, row, column, shift),
                    mismatch(grey, row, column, {-shift.x, -shift.y}));
}

// How far the pixels of a tile are from their cells' means, and whether they are so all over it.
struct Deviation {
    std::int64_t total = 0;  // for a whole tile
    bool even = false;       // no quarter has less than a third of its share
};

Deviation deviation_of(const GreyView& grey, const GreyView& tones, int row, int column) {
    std::array<std::int64_t, 4> quarters{};
    std::array<std::int64_t, 4> pixels{};
    const int bottom = std::min(grey.height, (row + 1) * kTile);
    const int right = std::min(grey.width, (column + 1) * kTile);
    for (int y = row * kTile; y < bottom; ++y) {
        for (int x = column * kTile; x < right; ++x) {
            const std::size_t quarter =
                (y % kTile >= kTile / 2 ? 2U : 0U) + (x % kTile >= kTile / 2 ? 1U : 0U);
            quarters[quarter] += std::abs(grey.row(y)[x] - tones.row(y)[x]);
            ++pixels[quarter];
        }
    }
    const std::int64_t sum = quarters[0] + quarters[1] + quarters[2] + quarters[3];
    const std::int64_t count = pixels[0] + pixels[1] + pixels[2] + pixels[3];
    Deviation deviation{sum * kTile * kTile / count, true};
    for (std::size_t i = 0; i < quarters.size(); ++i) {
        deviation.even = deviation.even && 3 * quarters[i] * count >= sum * pixels[i];
    }
    return deviation;
}

bool TileMap::holds_screen(const GreyView& grey, const GreyView& tones, const Screen& screen,
                           int row, int column) {
    const Deviation deviation = deviation_of(grey, tones, row, column);
    if (deviation.total < kLeastDeviation * kTile * kTile || !deviation.even) return false;
    // Noise has 2.8 times its deviation here, an edge 2 to 4 times, a lattice well below once.
    return 10 * (least_mismatch(grey, row, column, screen.first) +
                 least_mismatch(grey, row, column, screen.second)) <=
           kMostMismatch * deviation.total;
}

// `grey` goes over to `tones` where the map says so.
void blend(const MutableGreyView& grey, const GreyView& tones, const TileMap& map) {
    for (int y = 0; y < grey.height; ++y) {
        if (map.row_is_plain(y)) continue;
        std::uint8_t* row = grey.row(y);
        for (int x = 0; x < grey.width; ++x) {
            const int change = (tones.row(y)[x] - row[x]) * map.weight(y, x);
            row[x] = static_cast<std::uint8_t>(row[x] + ((change + 512) >> 10));
        }
    }
}

}  // namespace

void undither(const MutableGreyView& grey, int parameter, int resolution) {
    const Screen screen = find_screen(grey, parameter, resolution);
    if (!screen.found()) return;
    const int strength = std::min(screen.count, 4);
    CellAverage tones(grey, screen.cell());
    for (int pass = 2; pass < strength; ++pass) tones.apply();
    const TileMap map(grey, tones.view(), screen);
    blend(grey, tones.view(), map);
}

}  // namespace grey

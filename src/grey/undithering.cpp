// The dots of a screen average out over one cell of it: the tone that they stand for is the mean
// over a square of that size. Where the screen is beyond doubt the mean is taken twice, which
// leaves nothing of the dots at angles where one square does not match them exactly.
//
// A page is rarely all screen, so it is judged tile by tile whether the screen is there: the pixels
// are far from the mean of their cell, yet like the pixels one lattice shift away. Print on plain
// paper, ruled lines and continuous tones fail one of the two and keep their bytes. The weight of
// the tone runs linearly from the middle of one tile to the middle of the next, so that no tile
// shows.
//
// To the bit:
//
// 1. The page's screen is what screen_analysis.cpp finds. Without one the page stays as it is.
// 2. Let c be |first.x| + |first.y|. Averaging a page once gives every pixel the mean of c pixels
//    of its row, and then, from these means, the mean of c pixels of its column. Each is the mean
//    of a sum s of weights that add up to 2 * c. For an odd c the pixels up to (c - 1) / 2 away on
//    either side weigh 2; for an even c those less than c / 2 away weigh 2, and the two that are c
//    / 2 away weigh 1. Beyond the page's edge its last pixel goes on. The mean is
//    ((s + c) * q) >> 16 with q = (65536 + 2 * c - 1) / (2 * c), truncated: s / (2 * c) rounded,
//    from c = 13 on for some s by 1 too much; where all pixels are equal it is their value. It is a
//    byte again.
// 3. The tones are the page averaged once where the screen's count is 3, and the result averaged
//    once more where it is above 3.
// 4. The page is cut from the upper left corner into tiles of 16 x 16 pixels; at the right and at
//    the lower edge they are what is left. With n the pixels of a tile and D the sum of |pixel -
//    tone| over it, its deviation is 256 * D / n, truncated.
// 5. A tile has four quarters of 8 x 8 pixels, as far as they lie on the page: rows 0 .. 7 and
//    8 .. 15, each with columns 0 .. 7 and 8 .. 15. It is even when 3 * d * n >= D * k for each of
//    them, d being the sum of |pixel - tone| over the quarter and k the number of its pixels.
// 6. The mismatch of a tile for a shift is taken over its k pixels whose counterpart, the pixel one
//    shift away, is on the page: 256 times the sum of |pixel - counterpart|, divided by k and
//    truncated, or 256 * 255 where k is 0. Of a shift and its opposite the smaller mismatch counts.
// 7. A tile is screened when its deviation is at least 6 * 256, it is even, and 10 times the sum of
//    its mismatches for `first` and for `second` is at most 14 times its deviation.
// 8. A tile with eight neighbours of which at least six are screened by 7 is screened, too.
// 9. Let u be 2 * y + 1 - 16 for a pixel's row y, t = floor(u / 32) and b = u - 32 * t: tile row t
//    has the weight 32 - b and tile row t + 1 the weight b, each replaced by the nearest tile row
//    that there is. The same holds for columns. The weight w of a pixel's tone is the sum over the
//    four tiles of the product of both weights, tiles that are not screened left out. The pixel
//    becomes pixel + (((tone - pixel) * w + 512) >> 10), the shift rounding down.
#include "grey/undithering.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "common/page.h"
#include "frame/buffer.h"
#include "grey/screen_analysis.h"

namespace grey {
namespace {

using common::GreyView;
using common::MutableGreyView;

constexpr int kTile = 16;           // pixels
constexpr int kLeastDeviation = 6;  // mean distance from the cell's mean where a screen is
constexpr int kFillFrom = 6;        // screened neighbours, of 8, that make a tile screened
constexpr int kMostMismatch = 14;   // of a screened tile, for both shifts, in tenths of deviation
constexpr std::int64_t kNoCounterpart = 255 * kTile * kTile;

// The mean of a sum of weights 2 * cell.
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

// The averages of a page over squares of `cell` pixels around each pixel.
//
// Use: CellAverage average(page, cell) copies the page; (average.apply)*, each of which averages
// what view() shows.
class CellAverage {
  public:
    CellAverage(const GreyView& page, int cell)
        : radius_(cell / 2),
          end_weight_(cell % 2 == 0 ? 1 : 2),
          mean_(cell),
          pixels_(page.height, page.width),
          rows_(page.height, page.width),
          padded_row_(static_cast<std::size_t>(page.width + 2 * radius_)),
          columns_(static_cast<std::size_t>(page.width)) {
        for (int y = 0; y < page.height; ++y) {
            std::memcpy(pixels_.view().row(y), page.row(y), columns_.size());
        }
    }

    void apply() {
        for (int y = 0; y < view().height; ++y) average_row(y);
        average_columns();
    }

    GreyView view() const { return pixels_.view(); }

  private:
    void average_row(int y) {
        const std::size_t width = columns_.size();
        const auto radius = static_cast<std::size_t>(radius_);
        const std::uint8_t* from = pixels_.view().row(y);
        std::uint8_t* to = rows_.view().row(y);
        std::memset(padded_row_.data(), from[0], radius);
        std::memcpy(padded_row_.data() + radius, from, width);
        std::memset(padded_row_.data() + radius + width, from[width - 1], radius);
        int inner = 0;
        for (std::size_t i = 1; i < 2 * radius; ++i) inner += padded_row_[i];
        for (std::size_t x = 0; x < width; ++x) {
            const int first = padded_row_[x];
            const int last = padded_row_[x + 2 * radius];
            to[x] = mean_(2 * inner + end_weight_ * (first + last));
            inner += last - padded_row_[x + 1];
        }
    }

    const std::uint8_t* averaged_row(int y) const {
        return rows_.view().row(std::clamp(y, 0, view().height - 1));
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
        for (int y = 0; y < view().height; ++y) {
            const std::uint8_t* first = averaged_row(y - radius_);
            const std::uint8_t* last = averaged_row(y + radius_);
            std::uint8_t* to = pixels_.view().row(y);
            for (std::size_t x = 0; x < width; ++x) {
                to[x] = mean_(2 * columns_[x] + end_weight_ * (first[x] + last[x]));
            }
            add(last, averaged_row(y - radius_ + 1));
        }
    }

    int radius_;
    int end_weight_;  // the pixels between the ends weigh 2
    CellMean mean_;
    common::GreyPage pixels_;
    common::GreyPage rows_;  // averaged along the rows
    frame::Buffer<std::uint8_t> padded_row_;
    frame::Buffer<std::uint16_t> columns_;  // sums of the pixels between the ends
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
                at(row, column) = is_screened(grey, tones, screen, row, column) ? 1 : 0;
            }
        }
        fill_holes();
    }

    // How far the pixel is inside screened tiles: 0 .. 32 * 32.
    int weight(int y, int x) const {
        const Place vertical = place(y, rows_);
        const Place horizontal = place(x, columns_);
        const int upper = (32 - horizontal.part) * at(vertical.tile, horizontal.tile) +
                          horizontal.part * at(vertical.tile, horizontal.next);
        const int lower = (32 - horizontal.part) * at(vertical.next, horizontal.tile) +
                          horizontal.part * at(vertical.next, horizontal.next);
        return (32 - vertical.part) * upper + vertical.part * lower;
    }

    // Whether weight(y, x) is 0 for every x.
    bool row_is_plain(int y) const {
        const Place vertical = place(y, rows_);
        for (int column = 0; column < columns_; ++column) {
            if (at(vertical.tile, column) + at(vertical.next, column) != 0) return false;
        }
        return true;
    }

  private:
    struct Place {
        int tile;  // the last one whose middle is at or before the position
        int next;  // the tile behind that one
        int part;  // how far the position is from the one middle to the other: 0 .. 31 of 32
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

    static bool is_screened(const GreyView& grey, const GreyView& tones, const Screen& screen,
                            int row, int column);

    // Print over a screen, or an edge in the picture, keeps a tile from being recognised. Its
    // neighbours tell that it is one of them.
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

// How much the pixels of a tile differ from those one shift away, in total, scaled up from the
// pixels whose counterpart is on the page to a tile of full size.
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

// Of the two sides the one that is more alike decides: a tile at the edge of a screened picture is
// judged by the inside of the picture.
std::int64_t least_mismatch(const GreyView& grey, int row, int column, Shift shift) {
    return std::min(mismatch(grey, row, column, shift),
                    mismatch(grey, row, column, {-shift.x, -shift.y}));
}

// How far the pixels of a tile are from their tones, and whether they are so all over it.
struct Deviation {
    std::int64_t total = 0;  // scaled up to a tile of full size
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

bool TileMap::is_screened(const GreyView& grey, const GreyView& tones, const Screen& screen,
                          int row, int column) {
    const Deviation deviation = deviation_of(grey, tones, row, column);
    if (deviation.total < kLeastDeviation * kTile * kTile || !deviation.even) return false;
    // The sum of both mismatches is 2.8 times the deviation for noise, 2 to 4 times for an edge,
    // and well below once for the dots of a screen.
    return 10 * (least_mismatch(grey, row, column, screen.first) +
                 least_mismatch(grey, row, column, screen.second)) <=
           kMostMismatch * deviation.total;
}

// Every pixel moves towards its tone by the share that the map gives.
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

// A pixel is a weighted mean of the 4 x 4 pixels around its place. Places are counted in 1/256 of a
// pixel, weights in 1/1024.
#include "reading/resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kPlaceBits = 8;
constexpr int kPlaces = 1 << kPlaceBits;
constexpr int kWeightBits = 10;
constexpr int kOne = 1 << kWeightBits;

using Weights = std::array<int, 4>;
using WeightTable = std::array<Weights, kPlaces>;

// The weights of each place between two pixels; they sum up to kOne.
WeightTable make_weights() {
    WeightTable table{};
    for (int place = 0; place < kPlaces; ++place) {
        const double t = static_cast<double>(place) / kPlaces;
        const double before = t * (-1 + t * (2 - t)) / 2;
        const double after = t * t * (t - 1) / 2;
        const double right = t * (1 + t * (4 - 3 * t)) / 2;
        Weights& w = table[static_cast<std::size_t>(place)];
        w[0] = static_cast<int>(std::lround(before * kOne));
        w[2] = static_cast<int>(std::lround(right * kOne));
        w[3] = static_cast<int>(std::lround(after * kOne));
        w[1] = kOne - w[0] - w[2] - w[3];
    }
    return table;
}

const WeightTable& weights() {
    static const WeightTable kTable = make_weights();
    return kTable;
}

const Weights& at_place(const WeightTable& table, int place) {
    return table[static_cast<std::size_t>(place & (kPlaces - 1))];
}

int weighted(const Weights& w, int a, int b, int c, int d) {
    return w[0] * a + w[1] * b + w[2] * c + w[3] * d;
}

unsigned char to_grey(int sum) {
    return static_cast<unsigned char>(
        std::clamp((sum + (1 << (2 * kWeightBits - 1))) >> (2 * kWeightBits), 0, 255));
}

int weighted_line(const Weights& across, const unsigned char* at) {
    return weighted(across, at[0], at[1], at[2], at[3]);
}

// The grey at a place of the page. Neighbours beyond the page's edge are taken from its nearest
// pixels.
unsigned char grey_near_edge(const Page& grey, const WeightTable& table, int x, int y) {
    const int left = (x >> kPlaceBits) - 1;
    const int top = (y >> kPlaceBits) - 1;
    std::array<int, 4> lines{};
    for (int j = 0; j < 4; ++j) {
        const unsigned char* row = grey.row(std::clamp(top + j, 0, grey.height - 1));
        const auto at = [&](int i) { return int{row[std::clamp(left + i, 0, grey.width - 1)]}; };
        lines[static_cast<std::size_t>(j)] =
            weighted(at_place(table, x), at(0), at(1), at(2), at(3));
    }
    return to_grey(weighted(at_place(table, y), lines[0], lines[1], lines[2], lines[3]));
}

// The same, faster, for places whose 4 x 4 pixels all lie on the page.
unsigned char grey_inside(const Page& grey, const WeightTable& table, int x, int y) {
    const Weights& across = at_place(table, x);
    const std::size_t stride = grey.stride();
    const unsigned char* at = grey.row((y >> kPlaceBits) - 1) + (x >> kPlaceBits) - 1;
    return to_grey(
        weighted(at_place(table, y), weighted_line(across, at), weighted_line(across, at + stride),
                 weighted_line(across, at + 2 * stride), weighted_line(across, at + 3 * stride)));
}

bool has_all_neighbours(const Page& grey, int x, int y) {
    const int left = x >> kPlaceBits, top = y >> kPlaceBits;
    return left >= 1 && top >= 1 && left + 2 < grey.width && top + 2 < grey.height;
}

// The weighted sums across row y at the places of a row of twice the width.
std::vector<int> doubled_line(const Page& grey, int y) {
    const unsigned char* row = grey.row(std::clamp(y, 0, grey.height - 1));
    std::vector<unsigned char> wide(static_cast<std::size_t>(grey.width) + 4);
    for (int x = -2; x < grey.width + 2; ++x) {
        wide[static_cast<std::size_t>(x + 2)] = row[std::clamp(x, 0, grey.width - 1)];
    }
    const Weights& before = at_place(weights(), -kPlaces / 4);
    const Weights& after = at_place(weights(), kPlaces / 4);
    std::vector<int> line(static_cast<std::size_t>(grey.width) * 2);
    for (std::size_t x = 0; x < line.size() / 2; ++x) {
        line[2 * x] = weighted_line(before, &wide[x]);
        line[2 * x + 1] = weighted_line(after, &wide[x + 1]);
    }
    return line;
}

// Four rows of sums across, around a place between the second and the third.
using Lines = std::array<std::vector<int>, 4>;

unsigned char down(const Weights& w, const Lines& lines, std::size_t x) {
    return to_grey(weighted(w, lines[0][x], lines[1][x], lines[2][x], lines[3][x]));
}

// Where the pixels of a level page lie on the page that it is made from, in 1/2^32 of a pixel,
// which keeps the error over a whole row below a place of the weight table.
class TurnedGrid {
  public:
    struct Point {
        std::int64_t x, y;
    };

    TurnedGrid(const Page& grey, int rise, int run, int width, int height)
        : centre_{std::int64_t{grey.width - 1} << 31, std::int64_t{grey.height - 1} << 31},
          width_(width),
          height_(height) {
        constexpr double kPixel = 4294967296.0;
        const double length = std::hypot(rise, run);
        cosine_ = std::llround(run / length * kPixel);
        sine_ = std::llround(rise / length * kPixel);
    }

    Point row_start(int y) const {
        // From the centre, in half pixels.
        const std::int64_t u = 1 - width_, v = 2 * std::int64_t{y} + 1 - height_;
        return {centre_.x + (u * cosine_ + v * sine_) / 2,
                centre_.y + (v * cosine_ - u * sine_) / 2};
    }
    void step_right(Point& point) const {
        point.x += cosine_;
        point.y -= sine_;
    }

    // As places of the weight table.
    static int place(std::int64_t coordinate) {
        return static_cast<int>(coordinate >> (32 - kPlaceBits));
    }

  private:
    Point centre_;  // of the page
    int width_, height_;
    std::int64_t cosine_, sine_;
};

// The grey of most light pixels of a sample; 255 where all are dark.
unsigned char paper_grey(const Page& grey) {
    constexpr int kSampledRows = 16, kLight = 128;
    std::array<int, 256> counts{};
    for (int y = 0; y < grey.height; y += kSampledRows) {
        for (int x = 0; x < grey.width; ++x) ++counts[grey.row(y)[x]];
    }
    const auto most = std::max_element(counts.begin() + kLight, counts.end());
    return *most == 0 ? 255 : static_cast<unsigned char>(most - counts.begin());
}

}  // namespace

Page doubled(const Page& grey) {
    Page large = make_page(PageKind::kGrey, grey.width * 2, grey.height * 2,
                           {grey.dpi.x * 2, grey.dpi.y * 2});
    large.scale = {grey.scale.x * 2, grey.scale.y * 2};
    Lines lines;
    for (int y = 0; y < large.height; ++y) {
        const int place = y * (kPlaces / 2) - kPlaces / 4;
        const int top = (place >> kPlaceBits) - 1;
        if (y == 0) {
            for (int j = 0; j < 4; ++j) {
                lines[static_cast<std::size_t>(j)] = doubled_line(grey, top + j);
            }
        }
        if (y % 2 == 1) {
            std::rotate(lines.begin(), lines.begin() + 1, lines.end());
            lines[3] = doubled_line(grey, top + 3);
        }
        const Weights& weights_down = at_place(weights(), place);
        unsigned char* row = large.row(y);
        for (std::size_t x = 0; x < lines[0].size(); ++x) row[x] = down(weights_down, lines, x);
    }
    return large;
}

Page levelled(const Page& grey, int rise, int run, int width, int height) {
    Page level = make_page(PageKind::kGrey, width, height, grey.dpi);
    level.scale = grey.scale;
    const WeightTable& table = weights();
    const TurnedGrid grid(grey, rise, run, width, height);
    const unsigned char paper = paper_grey(grey);
    const int right = (grey.width - 1) * kPlaces;
    const int bottom = (grey.height - 1) * kPlaces;
    for (int y = 0; y < height; ++y) {
        TurnedGrid::Point point = grid.row_start(y);
        unsigned char* row = level.row(y);
        for (int x = 0; x < width; ++x, grid.step_right(point)) {
            const int px = TurnedGrid::place(point.x), py = TurnedGrid::place(point.y);
            const bool on_page = px >= 0 && py >= 0 && px <= right && py <= bottom;
            row[x] = !on_page                           ? paper
                     : has_all_neighbours(grey, px, py) ? grey_inside(grey, table, px, py)
                                                        : grey_near_edge(grey, table, px, py);
        }
    }
    return level;
}

}  // namespace tool::reading

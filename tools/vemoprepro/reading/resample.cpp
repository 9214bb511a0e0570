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

// The weights a quarter of a pixel before and after a pixel's centre are multiples of this: without
// it, sums across a row of greys, counted from the middle one, fit 16 bits, and sums of those are
// exact as floating point numbers.
constexpr int kCommon = 8;
constexpr int kMiddle = 128;
constexpr float kUnit = static_cast<float>(kOne / kCommon) * (kOne / kCommon);

// Of a row of twice the width, by columns: first those to the left of each pixel's centre, then
// those to the right.
using HalfColumns = std::vector<std::int16_t>;

void sum_across(const std::int16_t* __restrict greys, const Weights& weights, std::size_t width,
                std::int16_t* __restrict sums) {
    const auto w0 = static_cast<std::int16_t>(weights[0] / kCommon);
    const auto w1 = static_cast<std::int16_t>(weights[1] / kCommon);
    const auto w2 = static_cast<std::int16_t>(weights[2] / kCommon);
    const auto w3 = static_cast<std::int16_t>(weights[3] / kCommon);
    for (std::size_t x = 0; x < width; ++x) {
        sums[x] = static_cast<std::int16_t>(w0 * greys[x] + w1 * greys[x + 1] + w2 * greys[x + 2] +
                                            w3 * greys[x + 3]);
    }
}

// The weighted sums across row y, or the nearest one. greys: room for a row and two pixels at
// either side of it.
void doubled_line(const Page& grey, int y, std::vector<std::int16_t>& greys, HalfColumns& line) {
    const unsigned char* row = grey.row(std::clamp(y, 0, grey.height - 1));
    const auto width = static_cast<std::size_t>(grey.width);
    for (std::size_t x = 0; x < width; ++x) {
        greys[x + 2] = static_cast<std::int16_t>(row[x] - kMiddle);
    }
    greys[0] = greys[1] = greys[2];
    greys[width + 2] = greys[width + 3] = greys[width + 1];
    sum_across(greys.data(), at_place(weights(), -kPlaces / 4), width, line.data());
    sum_across(greys.data() + 1, at_place(weights(), kPlaces / 4), width, line.data() + width);
}

// Four rows of sums across, around a place between the second and the third.
using Lines = std::array<HalfColumns, 4>;

void sum_down(const Lines& lines, const Weights& weights, std::size_t from, std::size_t width,
              unsigned char* __restrict row) {
    const std::int16_t* __restrict a = lines[0].data() + from;
    const std::int16_t* __restrict b = lines[1].data() + from;
    const std::int16_t* __restrict c = lines[2].data() + from;
    const std::int16_t* __restrict d = lines[3].data() + from;
    const auto w0 = static_cast<float>(weights[0] / kCommon);
    const auto w1 = static_cast<float>(weights[1] / kCommon);
    const auto w2 = static_cast<float>(weights[2] / kCommon);
    const auto w3 = static_cast<float>(weights[3] / kCommon);
    for (std::size_t x = 0; x < width; ++x) {
        const float sum = w0 * a[x] + w1 * b[x] + w2 * c[x] + w3 * d[x];
        const float level = std::clamp(sum / kUnit + (kMiddle + 0.5F), 0.0F, 255.0F);
        row[x] = static_cast<unsigned char>(static_cast<int>(level));
    }
}

void interleave(const unsigned char* __restrict left, const unsigned char* __restrict right,
                std::size_t width, unsigned char* __restrict row) {
    for (std::size_t x = 0; x < width; ++x) {
        row[2 * x] = left[x];
        row[2 * x + 1] = right[x];
    }
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
    const auto width = static_cast<std::size_t>(std::max(grey.width, 1));
    Lines lines;
    for (HalfColumns& line : lines) line.resize(2 * width);
    std::vector<std::int16_t> greys(width + 4);
    std::vector<unsigned char> left(width), right(width);
    for (int y = 0; y < large.height; ++y) {
        const int place = y * (kPlaces / 2) - kPlaces / 4;
        const int top = (place >> kPlaceBits) - 1;
        if (y == 0) {
            for (int j = 0; j < 4; ++j) {
                doubled_line(grey, top + j, greys, lines[static_cast<std::size_t>(j)]);
            }
        }
        if (y % 2 == 1) {
            std::rotate(lines.begin(), lines.begin() + 1, lines.end());
            doubled_line(grey, top + 3, greys, lines[3]);
        }
        const Weights& weights_down = at_place(weights(), place);
        sum_down(lines, weights_down, 0, width, left.data());
        sum_down(lines, weights_down, width, width, right.data());
        interleave(left.data(), right.data(), width, large.row(y));
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

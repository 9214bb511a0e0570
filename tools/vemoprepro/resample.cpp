/* A pixel is a weighted mean of the 4 x 4 pixels around its place. Places are counted in 1/256 of a
 * pixel, weights in 1/1024. */
#include "resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "grey_page.h"

namespace tool {
namespace {

constexpr int kPlaceBits = 8;
constexpr int kPlaces = 1 << kPlaceBits;
constexpr int kWeightBits = 10;
constexpr int kOne = 1 << kWeightBits;

using Weights = std::array<int, 4>;

/* The weights of each place between two pixels; they sum up to kOne. */
std::array<Weights, kPlaces> make_weights() {
    std::array<Weights, kPlaces> table{};
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

const Weights& weights_at(std::int64_t place) {
    static const std::array<Weights, kPlaces> kTable = make_weights();
    return kTable[static_cast<std::size_t>(place & (kPlaces - 1))];
}

unsigned char to_grey(int sum) {
    return static_cast<unsigned char>(
        std::clamp((sum + (1 << (2 * kWeightBits - 1))) >> (2 * kWeightBits), 0, 255));
}

/* The grey at a place of the page; places off the page see the page's nearest pixels. */
unsigned char grey_at(const Page& grey, std::int64_t x, std::int64_t y) {
    const auto left = static_cast<int>(x >> kPlaceBits) - 1;
    const auto top = static_cast<int>(y >> kPlaceBits) - 1;
    const Weights& across = weights_at(x);
    const Weights& down = weights_at(y);
    const bool inside = left >= 0 && top >= 0 && left + 3 < grey.width && top + 3 < grey.height;
    int sum = 0;
    for (int j = 0; j < 4; ++j) {
        const unsigned char* row = grey.row(std::clamp(top + j, 0, grey.height - 1));
        int line = 0;
        for (int i = 0; i < 4; ++i) {
            const int column = inside ? left + i : std::clamp(left + i, 0, grey.width - 1);
            line += across[static_cast<std::size_t>(i)] * row[column];
        }
        sum += down[static_cast<std::size_t>(j)] * line;
    }
    return to_grey(sum);
}

Page grey_page(int width, int height, Resolution dpi) {
    Page page;
    page.kind = PageKind::grey;
    page.width = width;
    page.height = height;
    page.dpi = dpi;
    page.bytes = allocate_pixels(page.size());
    return page;
}

}  // namespace

Page doubled(const Page& grey) {
    Page large = grey_page(grey.width * 2, grey.height * 2, {grey.dpi.x * 2, grey.dpi.y * 2});
    for (int y = 0; y < large.height; ++y)
        for (int x = 0; x < large.width; ++x)
            large.row(y)[x] = grey_at(grey, std::int64_t{x} * (kPlaces / 2) - kPlaces / 4,
                                      std::int64_t{y} * (kPlaces / 2) - kPlaces / 4);
    return large;
}

Page levelled(const Page& grey, int rise, int run, int width, int height) {
    Page level = grey_page(width, height, grey.dpi);
    /* In 1/2^32 of a pixel, which keeps the error over a whole row below a place. */
    constexpr double kUnit = 4294967296.0;
    constexpr int kShift = 32 - kPlaceBits;
    const double length = std::hypot(rise, run);
    const std::int64_t cosine = std::llround(run / length * kUnit);
    const std::int64_t sine = std::llround(rise / length * kUnit);
    const std::int64_t right = std::int64_t{grey.width - 1} * kPlaces;
    const std::int64_t bottom = std::int64_t{grey.height - 1} * kPlaces;
    for (int y = 0; y < height; ++y) {
        const std::int64_t u = 1 - width, v = 2 * std::int64_t{y} + 1 - height; /* doubled */
        std::int64_t fx = (std::int64_t{grey.width - 1} << 31) + (u * cosine + v * sine) / 2;
        std::int64_t fy = (std::int64_t{grey.height - 1} << 31) + (v * cosine - u * sine) / 2;
        unsigned char* row = level.row(y);
        for (int x = 0; x < width; ++x, fx += cosine, fy -= sine) {
            const std::int64_t px = fx >> kShift, py = fy >> kShift;
            const bool on_page = px >= 0 && py >= 0 && px <= right && py <= bottom;
            row[x] = on_page ? grey_at(grey, px, py) : 255;
        }
    }
    return level;
}

}  // namespace tool

// Where lines of text begin and end, the ink changes from row to row. The changes are summed along
// each slope; along that of the text they do not cancel each other, and the sum of their squares is
// greatest (W. Postl, "Detection of linear oblique structures and skew scan in digitized
// documents", 1986). Ink is counted in cells of a row's eight pixels, which move as a whole.
//
// The alignment is the root of that sum, so that those of bands may be added up without a single
// rule or picture outweighing the lines of text in the other bands.
#include "reading/slope_fan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tool::reading {
namespace {

constexpr int kCell = 8;

constexpr std::array<unsigned char, 256> kInkOfByte = [] {
    std::array<unsigned char, 256> ink{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        ink[byte] = static_cast<unsigned char>(std::popcount(byte));
    }
    return ink;
}();

// The changes of the ink from each row to the next, column of cells by column of cells.
struct Edges {
    int columns, rows;
    std::vector<std::int8_t> changes;

    explicit Edges(const Page& ink)
        : columns(ink.width / kCell),
          rows(ink.height + 1),
          changes(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {
        for (int column = 0; column < columns; ++column) {
            std::int8_t* change = of(column);
            int above = 0;
            for (int y = 0; y < ink.height; ++y) {
                const int count = kInkOfByte[ink.row(y)[column]];
                change[y] = static_cast<std::int8_t>(count - above);
                above = count;
            }
            change[ink.height] = static_cast<std::int8_t>(-above);
        }
    }
    std::int8_t* of(int column) {
        return changes.data() + static_cast<std::ptrdiff_t>(column) * rows;
    }
    const std::int8_t* of(int column) const {
        return changes.data() + static_cast<std::ptrdiff_t>(column) * rows;
    }
};

// How far a column of cells moves down so that lines of the slope lie level.
int drift(const Edges& edges, int column, int slope) {
    const int from_middle = 2 * column + 1 - edges.columns;  // in half cells
    const int sides = 2 * SlopeFan::kRun, drop = from_middle * slope * kCell;
    return drop >= 0 ? (drop + sides / 2) / sides : -((sides / 2 - drop) / sides);  // rounded
}

double alignment(const std::vector<std::int16_t>& sums, std::size_t begin, std::size_t end) {
    std::int64_t power = 0;
    for (std::size_t y = begin; y < end; ++y) power += std::int32_t{sums[y]} * sums[y];
    return std::sqrt(static_cast<double>(power));
}

class FanSearch {
  public:
    explicit FanSearch(const Page& ink)
        : edges_(ink),
          margin_(std::abs(drift(edges_, 0, SlopeFan::kSteepest)) + 1),
          sums_(static_cast<std::size_t>(edges_.rows + 2 * margin_)) {}

    void try_slope(int index) {
        const int slope = index - SlopeFan::kSteepest;
        std::fill(sums_.begin(), sums_.end(), std::int16_t{0});
        int column = 0;
        for (; column + kTogether <= edges_.columns; column += kTogether) {
            add_columns(column, slope);
        }
        for (; column < edges_.columns; ++column) add_column(column, slope);
        const std::size_t size = sums_.size(), bands = fan.bands.size();
        for (std::size_t band = 0; band < bands; ++band) {
            fan.bands[band][static_cast<std::size_t>(index)] =
                alignment(sums_, band * size / bands, (band + 1) * size / bands);
        }
    }

    void interpolate(int index) {
        for (SlopeFan::Alignments& band : fan.bands) {
            const auto i = static_cast<std::size_t>(index);
            band[i] = (band[i - 1] + band[i + 1]) / 2;
        }
    }

    int best() const {
        int found = 0;
        double highest = -1;
        for (std::size_t i = 0; i < SlopeFan::kSlopes; i += 2) {
            double sum = 0;
            for (const SlopeFan::Alignments& band : fan.bands) sum += band[i];
            if (sum > highest) {
                highest = sum;
                found = static_cast<int>(i);
            }
        }
        return found;
    }

    SlopeFan fan;

  private:
    // Several columns of cells are added at once, row by row of those that all of them cover, which
    // saves most of the reading and writing of sums. Their changes together fit a byte.
    static constexpr int kTogether = 8;
    static_assert(kTogether * kCell <= 127);

    std::int16_t* sums_for(int column, int slope) {
        return sums_.data() + margin_ + drift(edges_, column, slope);
    }
    void add_part(int column, int slope, int begin, int end) {
        std::int16_t* to = sums_for(column, slope);
        const std::int8_t* changes = edges_.of(column);
        for (int y = begin; y < end; ++y) to[y] = static_cast<std::int16_t>(to[y] + changes[y]);
    }
    void add_column(int column, int slope) { add_part(column, slope, 0, edges_.rows); }

    void add_columns(int first, int slope) {
        std::array<int, kTogether> down{};  // against the lowest of them
        int lowest = INT_MAX, highest = INT_MIN;
        for (int i = 0; i < kTogether; ++i) {
            const int place = drift(edges_, first + i, slope);
            down[static_cast<std::size_t>(i)] = place;
            lowest = std::min(lowest, place);
            highest = std::max(highest, place);
        }
        const int shared = edges_.rows - (highest - lowest);
        if (shared <= 0) {
            for (int i = 0; i < kTogether; ++i) add_column(first + i, slope);
            return;
        }
        std::array<const std::int8_t*, kTogether> from{};
        for (int i = 0; i < kTogether; ++i) {
            const int before = highest - down[static_cast<std::size_t>(i)];
            add_part(first + i, slope, 0, before);
            add_part(first + i, slope, before + shared, edges_.rows);
            from[static_cast<std::size_t>(i)] = edges_.of(first + i) + before;
        }
        add_shared(from, shared, sums_.data() + margin_ + highest);
    }

    // Written out, so that compilers add vectors of bytes before they widen them.
    static void add_shared(const std::array<const std::int8_t*, kTogether>& from, int rows,
                           std::int16_t* to) {
        const auto [a, b, c, d, e, f, g, h] = from;
        for (int y = 0; y < rows; ++y) {
            const auto one = static_cast<std::int8_t>(a[y] + b[y] + c[y] + d[y]);
            const auto other = static_cast<std::int8_t>(e[y] + f[y] + g[y] + h[y]);
            to[y] = static_cast<std::int16_t>(to[y] + static_cast<std::int8_t>(one + other));
        }
    }

    const Edges edges_;
    const int margin_;
    std::vector<std::int16_t> sums_;
};

// Around the best slope all are tried, elsewhere every other one.
constexpr int kAroundBest = 8;

}  // namespace

SlopeFan fan_along_rows(const Page& ink) {
    FanSearch search(ink);
    for (int i = 0; i < SlopeFan::kSlopes; i += 2) search.try_slope(i);
    const int best = search.best();
    for (int i = 1; i < SlopeFan::kSlopes; i += 2) {
        if (std::abs(i - best) <= kAroundBest) {
            search.try_slope(i);
        } else {
            search.interpolate(i);
        }
    }
    return search.fan;
}

}  // namespace tool::reading

#include "reading/bright_region.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace tool::reading {
namespace {

// Half the width of dark things that are closed, in pixels of the small page.
constexpr int kPrint = 3;

using Mask = std::vector<std::uint8_t>;

std::size_t index_of(const Page& grey, int x, int y) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(grey.width) +
           static_cast<std::size_t>(x);
}

enum class Spread { kBright, kDark };

// Every pixel of a line gets bright (or dark) that has such a one up to `reach` away.
void spread_line(std::uint8_t* line, int count, std::ptrdiff_t step, Spread what, int reach,
                 Mask& copy) {
    copy.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) copy[static_cast<std::size_t>(i)] = line[step * i];
    const std::uint8_t spreading = what == Spread::kBright ? 1 : 0;
    int last = -reach - 1;  // the last one that spreads
    int ahead = 0;
    for (int i = 0; i < count; ++i) {
        for (; ahead < count && ahead <= i + reach; ++ahead) {
            if (copy[static_cast<std::size_t>(ahead)] == spreading) last = ahead;
        }
        if (last >= i - reach) line[step * i] = spreading;
    }
}

void spread(Mask& mask, const Page& grey, Spread what, int reach) {
    Mask copy;
    for (int y = 0; y < grey.height; ++y) {
        spread_line(mask.data() + index_of(grey, 0, y), grey.width, 1, what, reach, copy);
    }
    for (int x = 0; x < grey.width; ++x) {
        spread_line(mask.data() + x, grey.height, grey.width, what, reach, copy);
    }
}

struct Regions {
    std::vector<int> labels;         // of the pixels; 0: dark
    std::vector<std::int64_t> size;  // by label
};

// By neighbours at the side.
Regions regions_of(const Mask& mask, const Page& grey) {
    Regions regions{std::vector<int>(mask.size()), {0}};
    std::vector<std::size_t> waiting;
    const auto width = static_cast<std::size_t>(grey.width);
    for (std::size_t start = 0; start < mask.size(); ++start) {
        if (mask[start] == 0 || regions.labels[start] != 0) continue;
        const int label = static_cast<int>(regions.size.size());
        regions.size.push_back(0);
        const auto visit = [&](std::size_t at) {
            if (mask[at] == 0 || regions.labels[at] != 0) return;
            regions.labels[at] = label;
            ++regions.size.back();
            waiting.push_back(at);
        };
        for (visit(start); !waiting.empty();) {
            const std::size_t at = waiting.back();
            waiting.pop_back();
            if (at % width != 0) visit(at - 1);
            if (at % width != width - 1) visit(at + 1);
            if (at >= width) visit(at - width);
            if (at + width < mask.size()) visit(at + width);
        }
    }
    return regions;
}

// Of spots that are sorted by x, then y (A. Andrew, Another efficient algorithm for convex hulls in
// two dimensions, 1979).
std::vector<Spot> hull_of(std::vector<Spot> spots) {
    std::sort(spots.begin(), spots.end(),
              [](Spot a, Spot b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    std::vector<Spot> hull;
    const auto add = [&](Spot spot, std::size_t kept) {
        while (hull.size() >= kept + 2 &&
               cross(hull.back() - hull[hull.size() - 2], spot - hull.back()) <= 0) {
            hull.pop_back();
        }
        hull.push_back(spot);
    };
    for (const Spot& spot : spots) add(spot, 0);
    const std::size_t upper = hull.size() - 1;
    for (auto spot = spots.rbegin() + 1; spot != spots.rend(); ++spot) add(*spot, upper);
    hull.pop_back();
    return hull;
}

void measure(BrightRegion& region, const Regions& regions, int label, const Page& grey) {
    std::vector<Spot> spots;
    for (int y = 0; y < grey.height; ++y) {
        int first = grey.width, last = -1;
        for (int x = 0; x < grey.width; ++x) {
            if (regions.labels[index_of(grey, x, y)] != label) continue;
            first = std::min(first, x);
            last = x;
        }
        if (last < 0) continue;
        region.area += last - first + 1;
        for (const double dy : {-0.5, 0.5}) {
            spots.push_back({first - 0.5, y + dy});
            spots.push_back({last + 0.5, y + dy});
        }
    }
    region.hull = hull_of(std::move(spots));
}

// By how much the hull grows without its side from i to the next corner, and the corner that takes
// the place of both; none when its neighbours do not meet beyond it.
struct Removal {
    double growth;
    Spot corner;
};
std::optional<Removal> without_side(const std::vector<Spot>& hull, std::size_t i) {
    const std::size_t n = hull.size();
    const Spot before = hull[(i + n - 1) % n], a = hull[i], b = hull[(i + 1) % n],
               after = hull[(i + 2) % n];
    if (cross(a - before, after - b) <= 0) return std::nullopt;
    const std::optional<Spot> corner = meeting(before, a, after, b);
    if (!corner) return std::nullopt;
    return Removal{cross(*corner - a, b - *corner) / 2, *corner};
}

}  // namespace

BrightRegion largest_bright_region(const Page& grey, int least, int narrowest) {
    BrightRegion region;
    region.bright.resize(grey.size());
    std::transform(grey.bytes.get(), grey.bytes.get() + grey.size(), region.bright.begin(),
                   [&](unsigned char level) { return level >= least ? 1 : 0; });
    Mask closed = region.bright;
    spread(closed, grey, Spread::kBright, kPrint);
    spread(closed, grey, Spread::kDark, kPrint + narrowest / 2);
    spread(closed, grey, Spread::kBright, narrowest / 2);
    Regions regions = regions_of(closed, grey);
    const auto largest = std::max_element(regions.size.begin(), regions.size.end());
    if (*largest == 0) return region;
    measure(region, regions, static_cast<int>(largest - regions.size.begin()), grey);
    *largest = 0;
    region.next = *std::max_element(regions.size.begin(), regions.size.end());
    return region;
}

std::optional<Quadrilateral> quadrilateral_around(const std::vector<Spot>& hull) {
    std::vector<Spot> sides = hull;
    while (sides.size() > 4) {
        std::optional<Removal> best;
        std::size_t which = 0;
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const std::optional<Removal> removal = without_side(sides, i);
            if (!removal || (best && removal->growth >= best->growth)) continue;
            best = removal;
            which = i;
        }
        if (!best) return std::nullopt;
        sides[which] = best->corner;
        sides.erase(sides.begin() + static_cast<std::ptrdiff_t>((which + 1) % sides.size()));
    }
    if (sides.size() < 4) return std::nullopt;
    return Quadrilateral{sides[0], sides[1], sides[2], sides[3]};
}

TwoTones two_tones(const Page& grey) {
    std::array<double, 256> counts{};
    for (std::size_t i = 0; i < grey.size(); ++i) ++counts[grey.bytes[i]];
    double total = 0, sum = 0;
    for (std::size_t level = 0; level < 256; ++level) {
        total += counts[level];
        sum += counts[level] * static_cast<double>(level);
    }
    TwoTones best{128, 0, 255};
    double most = -1, below = 0, below_sum = 0;
    for (std::size_t level = 1; level < 256; ++level) {
        below += counts[level - 1];
        below_sum += counts[level - 1] * static_cast<double>(level - 1);
        if (below == 0 || below == total) continue;
        const double dark = below_sum / below, light = (sum - below_sum) / (total - below);
        const double parted = below * (total - below) * (light - dark) * (light - dark);
        if (parted <= most) continue;
        most = parted;
        best = {static_cast<int>(level), dark, light};
    }
    return best;
}

}  // namespace tool::reading

#include "reading/photographed_page.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "reading/bright_region.h"
#include "reading/page_side.h"
#include "reading/small_grey.h"

namespace tool::reading {
namespace {

// Sides are looked for on a page of about this length.
constexpr int kSmall = 480;
constexpr int kShortestSide = 64;  // of the small page

// Where between the dark and the light tone of the picture paper may begin: it may lie half in the
// shade, and what is around it half in the light.
constexpr double kParts[] = {0.5, 0.3, 0.7, 0.15};
// Fingers that hold the page are narrower, in pixels of the small page.
constexpr int kNarrowest[] = {0, 28};

constexpr double kLeastArea = 0.25;  // of the picture
// A second region of so much of the first's area is another page.
constexpr double kAnotherPage = 0.2;
// The region fills its outline, and little else in the picture is as bright.
constexpr double kFilled = 0.9, kPaperInside = 0.5, kBrightOutside = 0.3;
// A line from side to side that is bright for less of its length is a gap between two pages.
constexpr double kGap = 0.2;
constexpr double kSharpest = 60, kBluntest = 120;  // angles at the corners
// Two outlines are one and the same when no corner differs by more, as a share of the small page.
constexpr double kSame = 0.015;

struct Candidate {
    std::optional<Quadrilateral> corners;
    std::string doubt;
};

Candidate doubtful(const char* doubt) {
    return {std::nullopt, doubt};
}

double degrees_at(Spot before, Spot corner, Spot after) {
    const Spot a = before - corner, b = after - corner;
    return std::atan2(std::abs(cross(a, b)), dot(a, b)) * 57.29577951308232;
}

bool has_page_angles(const Quadrilateral& corners) {
    for (std::size_t i = 0; i < 4; ++i) {
        const double angle = degrees_at(corners[(i + 3) % 4], corners[i], corners[(i + 1) % 4]);
        if (angle < kSharpest || angle > kBluntest) return false;
    }
    return true;
}

bool lies_within(const Page& grey, const Quadrilateral& corners) {
    return std::all_of(corners.begin(), corners.end(), [&](Spot corner) {
        return corner.x >= 1 && corner.y >= 1 && corner.x <= grey.width - 2 &&
               corner.y <= grey.height - 2;
    });
}

bool surrounds(const Quadrilateral& corners, Spot spot) {
    for (std::size_t i = 0; i < 4; ++i) {
        if (cross(corners[(i + 1) % 4] - corners[i], spot - corners[i]) < 0) return false;
    }
    return true;
}

// Whether paper is bright nearly everywhere inside, and nearly nowhere outside.
bool parts_bright_from_dark(const Page& grey, const BrightRegion& region,
                            const Quadrilateral& corners) {
    double inside = 0, bright_inside = 0, outside = 0, bright_outside = 0;
    std::size_t i = 0;
    for (int y = 0; y < grey.height; ++y) {
        for (int x = 0; x < grey.width; ++x, ++i) {
            const bool within = surrounds(corners, {1.0 * x, 1.0 * y});
            (within ? inside : outside) += 1;
            (within ? bright_inside : bright_outside) += region.bright[i];
        }
    }
    return bright_inside >= kPaperInside * inside && bright_outside <= kBrightOutside * outside;
}

// The corners where the sides meet that are fitted to those of `rough`.
Candidate fit_sides(const Page& grey, const Quadrilateral& rough) {
    std::vector<PageSide> sides;
    for (std::size_t i = 0; i < 4; ++i) {
        std::string doubt;
        const std::optional<PageSide> side = fit_side(grey, rough[i], rough[(i + 1) % 4], doubt);
        if (!side) return {std::nullopt, doubt};
        sides.push_back(*side);
    }
    Quadrilateral corners;
    for (std::size_t i = 0; i < 4; ++i) {
        const PageSide &before = sides[(i + 3) % 4], &after = sides[i];
        const std::optional<Spot> corner = meeting(before.from, before.to, after.from, after.to);
        if (!corner) return doubtful("its sides do not meet");
        corners[i] = *corner;
    }
    if (!lies_within(grey, corners)) return doubtful("a corner lies outside of the picture");
    for (std::size_t i = 0; i < 4; ++i) {
        const PageSide side{corners[i], corners[(i + 1) % 4], sides[i].step};
        if (!is_seen(grey, side)) return doubtful("a side does not stand out from what is around");
        if (goes_on(grey, side)) return doubtful("a side goes on beyond its corner");
    }
    return {corners, ""};
}

// Whether a dark gap parts the bright from the first side to the third: two pages lie close
// together.
bool has_gap(const Page& grey, const BrightRegion& region, const Quadrilateral& corners) {
    const auto [a, b, c, d] = corners;
    constexpr int kSteps = 100;
    for (int i = kSteps / 10; i <= kSteps - kSteps / 10; ++i) {
        const double share = 1.0 * i / kSteps;
        const Spot from = a + share * (b - a), to = d + share * (c - d);
        int bright = 0;
        for (int j = 1; j < kSteps; ++j) {
            const Spot spot = from + 1.0 * j / kSteps * (to - from);
            const auto x = std::lround(spot.x), y = std::lround(spot.y);
            bright += region.bright[static_cast<std::size_t>(y * grey.width + x)];
        }
        if (bright < kGap * kSteps) return true;
    }
    return false;
}

Candidate outline_from(const Page& grey, int least, int narrowest) {
    const BrightRegion region = largest_bright_region(grey, least, narrowest);
    const double picture = 1.0 * grey.width * grey.height;
    const auto area = static_cast<double>(region.area);
    if (area < kLeastArea * picture) return doubtful("nothing bright is large enough");
    if (static_cast<double>(region.next) > kAnotherPage * area) {
        return doubtful("there is more than one bright thing");
    }
    const std::optional<Quadrilateral> rough = quadrilateral_around(region.hull);
    if (!rough) return doubtful("its outline has no four sides");
    if (area < kFilled * area_of(*rough)) return doubtful("its outline has no four sides");
    Candidate candidate = fit_sides(grey, *rough);
    if (!candidate.corners) return candidate;
    const Quadrilateral& corners = *candidate.corners;
    if (!has_page_angles(corners)) return doubtful("its corners are far from right angles");
    if (area_of(corners) < kLeastArea * picture) return doubtful("it is too small a part");
    if (!parts_bright_from_dark(grey, region, corners)) {
        return doubtful("what is around it is not darker");
    }
    const auto [a, b, c, d] = corners;
    if (has_gap(grey, region, corners) || has_gap(grey, region, {b, c, d, a})) {
        return doubtful("there seem to be two pages");
    }
    return candidate;
}

bool are_same(const Page& grey, const Quadrilateral& one, const Quadrilateral& other) {
    const double most = kSame * std::max(grey.width, grey.height);
    // Either may begin at any corner.
    for (std::size_t turn = 0; turn < 4; ++turn) {
        bool same = true;
        for (std::size_t i = 0; i < 4; ++i) {
            same &= (one[i] - other[(i + turn) % 4]).length() <= most;
        }
        if (same) return true;
    }
    return false;
}

// Of all that look like a page, if they are one and the same.
Candidate only_outline(const Page& grey) {
    const TwoTones tones = two_tones(grey);
    std::optional<Quadrilateral> found;
    std::string doubt;
    for (const double part : kParts) {
        const double least = tones.dark + part * (tones.light - tones.dark);
        for (const int narrowest : kNarrowest) {
            const Candidate candidate =
                outline_from(grey, static_cast<int>(std::lround(least)), narrowest);
            if (doubt.empty()) doubt = candidate.doubt;
            if (!candidate.corners) continue;
            if (found && !are_same(grey, *found, *candidate.corners)) {
                return doubtful("there is more than one outline");
            }
            if (!found) found = candidate.corners;
        }
    }
    return {found, found ? "" : doubt};
}

int on_picture(double place, int by, int side) {
    const double full = (place + 0.5) * by - 0.5;
    return std::clamp(static_cast<int>(std::lround(full)), 0, side - 1);
}

}  // namespace

FoundPage find_page(const Page& page) {
    const int by = std::max(1, std::max(page.width, page.height) / kSmall);
    if (page.width / by < kShortestSide || page.height / by < kShortestSide) {
        return {std::nullopt, "no page found: the picture is too small"};
    }
    const Page grey = small_grey(page, by);
    const Candidate outline = only_outline(grey);
    if (!outline.corners) return {std::nullopt, "no page found: " + outline.doubt};
    Corners corners{};
    for (std::size_t i = 0; i < 4; ++i) {
        const Spot corner = (*outline.corners)[i];
        corners[i] = {on_picture(corner.x, by, page.width), on_picture(corner.y, by, page.height)};
    }
    return {in_order(corners), ""};
}

}  // namespace tool::reading

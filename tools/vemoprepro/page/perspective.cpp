#include "page/perspective.h"

#include <vemoprepro/geometry.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "page/ink.h"

namespace tool {
namespace {

// The pixels of a bitonal page that has gone through greys: ink is darker.
constexpr int kPaper = 129;

void check_corners(const Page& page, const Corners& corners) {
    for (const Corner& corner : corners) {
        if (corner.x >= 0 && corner.y >= 0 && corner.x < page.width && corner.y < page.height) {
            continue;
        }
        throw PageError("the corner " + std::to_string(corner.x) + "," + std::to_string(corner.y) +
                        " lies outside of the page");
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const Corner &a = corners[i], &b = corners[(i + 1) % 4], &c = corners[(i + 2) % 4];
        const std::int64_t turn =
            std::int64_t{b.x - a.x} * (c.y - b.y) - std::int64_t{b.y - a.y} * (c.x - b.x);
        if (turn <= 0) throw PageError("the four corners do not surround a page");
    }
}

Page colour_of(const Page& page) {
    Page colour = make_page_like(page, PageKind::kColour);
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* row = page.row(y);
        unsigned char* pixel = colour.row(y);
        for (int x = 0; x < page.width; ++x) {
            const unsigned char grey = page.kind == PageKind::kGrey ? row[x]
                                       : is_ink(row, x)             ? 0
                                                                    : 255;
            for (int channel = 0; channel < 3; ++channel) *pixel++ = grey;
        }
    }
    return colour;
}

// Of a colour page whose pixels are all grey.
Page as_kind(Page colour, PageKind kind) {
    if (kind == PageKind::kColour) return colour;
    Page made = kind == PageKind::kGrey ? make_page_like(colour, kind) : blank_page_like(colour);
    for (int y = 0; y < made.height; ++y) {
        const unsigned char* pixel = colour.row(y);
        unsigned char* row = made.row(y);
        for (int x = 0; x < made.width; ++x, pixel += 3) {
            if (kind == PageKind::kGrey) {
                row[x] = *pixel;
            } else if (*pixel < kPaper) {
                set_ink(row, x);
            }
        }
    }
    return made;
}

}  // namespace

Corners in_order(Corners corners) {
    auto& [a, b, c, d] = corners;
    check_points_order(&a.x, &a.y, &b.x, &b.y, &c.x, &c.y, &d.x, &d.y);
    return corners;
}

void rectify(Page& page, const Corners& corners) {
    check_corners(page, corners);
    const auto& [a, b, c, d] = corners;
    int height = 0, width = 0;
    if (give_appropriate_height_and_width(a.x, a.y, b.x, b.y, c.x, c.y, d.x, d.y, &height,
                                          &width) != 0 ||
        height < 1 || width < 1 || height > kLongestSide || width > kLongestSide) {
        throw PageError("between the corners there is no page of 1 .. 32767 pixels a side");
    }
    const PageKind kind = page.kind;
    if (kind != PageKind::kColour) page = colour_of(page);
    Page upright = make_page(PageKind::kColour, width, height, page.dpi);
    upright.scale = page.scale;
    perspective_transformation_color(page.bytes.get(), upright.bytes.get(), page.width, page.height,
                                     width, height, a.x, a.y, b.x, b.y, c.x, c.y, d.x, d.y);
    page = as_kind(std::move(upright), kind);
}

}  // namespace tool

#include "report/removed_pixels.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "page/ink.h"

namespace tool::report {
namespace {

// A pixel that became lighter by this much was removed from a scan; less is noise.
constexpr int kLighter = 64;
// Greys below this are ink that stayed, to tell spots by.
constexpr int kDark = 128;
// The faintest mark of a small picture, so that single pixels show.
constexpr int kFaintestMark = 110;

constexpr int kSpotSide = 96;  // pixels, a multiple of 32
constexpr std::size_t kMostSpots = 12;

// How light a pixel looks, 0 .. 255. Sixteenths are near enough: no pixel is made from it.
unsigned char lightness(const unsigned char* pixel) {
    return static_cast<unsigned char>((pixel[0] * 5 + pixel[1] * 9 + pixel[2] * 2) / 16);
}

bool remove_bits(const Page& before, const Page& after, Page& removed) {
    unsigned char any = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const int lost = before.bytes[i] & ~after.bytes[i];
        removed.bytes[i] = static_cast<unsigned char>(lost);
        any |= removed.bytes[i];
    }
    return any != 0;
}

bool remove_greys(const Page& before, const Page& after, Page& removed) {
    std::memset(removed.bytes.get(), 0, removed.size());
    bool any = false;
    for (int y = 0; y < before.height; ++y) {
        const unsigned char* old_row = before.row(y);
        const unsigned char* new_row = after.row(y);
        unsigned char* row = removed.row(y);
        for (int x = 0; x < before.width; ++x) {
            if (new_row[x] - old_row[x] < kLighter) continue;
            set_ink(row, x);
            any = true;
        }
    }
    return any;
}

struct Spot {
    Point centre;
    int removed = 0;
    bool beside_ink = false;
};

int ink_of(const Page& page, const Box& box) {
    int ink = 0;
    for (int y = box.y; y < box.y + box.height; ++y) {
        const unsigned char* row = page.row(y);
        if (page.kind == PageKind::kGrey) {
            ink += static_cast<int>(std::count_if(row + box.x, row + box.x + box.width,
                                                  [](unsigned char grey) { return grey < kDark; }));
            continue;
        }
        for (int i = box.x / 8; i < (box.x + box.width + 7) / 8; ++i) ink += std::popcount(row[i]);
    }
    return ink;
}

bool more_telling(const Spot& one, const Spot& other) {
    if (one.beside_ink != other.beside_ink) return one.beside_ink;
    return one.removed > other.removed;
}

}  // namespace

Page light_page(const Page& page) {
    if (page.kind != PageKind::kColour) return copy_of(page);
    Page light = make_page_like(page, PageKind::kGrey);
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* pixel = page.row(y);
        unsigned char* row = light.row(y);
        for (int x = 0; x < page.width; ++x, pixel += 3) row[x] = lightness(pixel);
    }
    return light;
}

std::optional<Page> removed_pixels(const Page& before, const Page& after) {
    if (before.width != after.width || before.height != after.height || before.kind != after.kind) {
        return std::nullopt;
    }
    Page removed = make_page_like(before, PageKind::kBitonal);
    const bool any = before.kind == PageKind::kBitonal ? remove_bits(before, after, removed)
                                                       : remove_greys(before, after, removed);
    if (!any) return std::nullopt;
    return removed;
}

EncodedPicture marks_of(const Page& removed, Colour colour) {
    ScaledPicture marks = scaled_down(removed);
    std::vector<std::uint8_t> pixels;
    pixels.reserve(marks.pixels.size() * 4);
    for (const std::uint8_t light : marks.pixels) {
        const int alpha = light == 255 ? 0 : std::min(255, kFaintestMark + (255 - light) * 2);
        for (const std::uint8_t part : {colour.red, colour.green, colour.blue}) {
            pixels.push_back(alpha == 0 ? std::uint8_t{0} : part);
        }
        pixels.push_back(static_cast<std::uint8_t>(alpha));
    }
    marks.channels = 4;
    marks.pixels = std::move(pixels);
    return encode(marks);
}

std::vector<Point> spots_of(const Page& removed, const Page& after) {
    std::vector<Spot> spots;
    for (int y = 0; y < removed.height; y += kSpotSide) {
        for (int x = 0; x < removed.width; x += kSpotSide) {
            const Box box{x, y, std::min(kSpotSide, removed.width - x),
                          std::min(kSpotSide, removed.height - y)};
            const int lost = ink_of(removed, box);
            if (lost == 0) continue;
            const bool beside_ink = ink_of(after, box) > 0;
            spots.push_back({{x + box.width / 2.0, y + box.height / 2.0}, lost, beside_ink});
        }
    }
    const auto count = std::min(kMostSpots, spots.size());
    std::partial_sort(spots.begin(), spots.begin() + static_cast<std::ptrdiff_t>(count),
                      spots.end(), more_telling);
    std::vector<Point> centres;
    for (std::size_t i = 0; i < count; ++i) centres.push_back(spots[i].centre);
    return centres;
}

}  // namespace tool::report

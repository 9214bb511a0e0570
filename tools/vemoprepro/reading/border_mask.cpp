#include "reading/border_mask.h"

#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "page/ink.h"
#include "page/paper_scale.h"
#include "reading/thick_parts.h"

namespace tool::reading {
namespace {

// At 300 dots per inch: 2 mm. Rules and the strokes of all but the largest letters are thinner, the
// shadow of a lid is thicker.
constexpr double kThick = 24;
// The library grows the border of greys by this, and paints a frame of as many pixels in any case.
constexpr int kGrown = 8;
// So pages get a margin that takes the frame.
constexpr int kMargin = kGrown + 1;

int least_thickness(const Page& page) {
    return std::max(4, scaled_length(page, kThick));
}

// The page with a margin of the greys at its edges. White is 254: 255 is left to what is painted.
Page with_margin(const Page& grey) {
    Page wide =
        make_page(PageKind::kGrey, grey.width + 2 * kMargin, grey.height + 2 * kMargin, grey.dpi);
    for (int y = 0; y < wide.height; ++y) {
        const unsigned char* from = grey.row(std::clamp(y - kMargin, 0, grey.height - 1));
        unsigned char* to = wide.row(y);
        std::memset(to, from[0], kMargin);
        std::memcpy(to + kMargin, from, static_cast<std::size_t>(grey.width));
        std::memset(to + kMargin + grey.width, from[grey.width - 1], kMargin);
        for (int x = 0; x < wide.width; ++x) to[x] = std::min<unsigned char>(to[x], 254);
    }
    return wide;
}

struct Grown {
    Page mask;
    Page core;  // without the white that was grown over in the end: between letters at the edge
};

Grown grown_inside_margin(const Page& wide, const Page& grey, int light) {
    Grown grown{make_page_like(grey, PageKind::kBitonal), make_page_like(grey, PageKind::kBitonal)};
    const auto width = static_cast<std::size_t>(grey.width);
    const auto lightest = static_cast<unsigned char>(light);
    std::vector<unsigned char> set(8 * grown.mask.stride()), dark(set.size());
    for (int y = 0; y < grey.height; ++y) {
        const unsigned char *from = wide.row(y + kMargin) + kMargin, *greys = grey.row(y);
        unsigned char *set_here = set.data(), *dark_here = dark.data();
        for (std::size_t x = 0; x < width; ++x) {
            const unsigned char is_set = from[x] == 255 ? 1 : 0;
            const unsigned char is_dark = greys[x] < lightest ? 1 : 0;
            set_here[x] = is_set;
            dark_here[x] = is_set & is_dark;
        }
        for (std::size_t i = 0; i < grown.mask.stride(); ++i) {
            grown.mask.row(y)[i] = ink_byte(&set[8 * i]);
            grown.core.row(y)[i] = ink_byte(&dark[8 * i]);
        }
    }
    return grown;
}

// Elsewhere no border starts.
bool is_dark_at_edges(const Page& grey, int dark) {
    const unsigned char *top = grey.row(0), *bottom = grey.row(grey.height - 1);
    for (int x = 0; x < grey.width; ++x) {
        if (top[x] < dark || bottom[x] < dark) return true;
    }
    for (int y = 0; y < grey.height; ++y) {
        if (grey.row(y)[0] < dark || grey.row(y)[grey.width - 1] < dark) return true;
    }
    return false;
}

}  // namespace

Page border_of_bits(const Page& bits) {
    Page mask = make_page_like(bits, PageKind::kBitonal);
    if (cropbmp(0, bits.bytes.get(), bits.height, bits.width, static_cast<int>(bits.stride()),
                mask.bytes.get()) != 0) {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < mask.size(); ++i) mask.bytes[i] ^= bits.bytes[i];
    const int thick = least_thickness(bits);
    keep_thick_at_edges(mask, mask, thick, thick / 2);
    return mask;
}

Page border_of_greys(const Page& grey, const BorderGreys& greys) {
    if (!is_dark_at_edges(grey, greys.dark)) return blank_page_like(grey);
    Page wide = with_margin(grey);
    int x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    if (cropimg(wide.bytes.get(), PREPRO_CROP_GREY, wide.height, wide.width,
                static_cast<int>(wide.stride()), greys.dark, greys.light, greys.step, &x0, &x1, &y0,
                &y1) != 0) {
        throw std::bad_alloc();
    }
    Grown grown = grown_inside_margin(wide, grey, greys.light);
    const int thick = least_thickness(grey);
    keep_thick_at_edges(grown.mask, grown.core, thick, thick / 2 + kGrown);
    return std::move(grown.mask);
}

}  // namespace tool::reading

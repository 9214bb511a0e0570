// Dark borders of scanned pages. The page keeps its size: a border is painted over with the colour
// of the paper beside it, so that the binarization finds no edge where it was.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "page/ink.h"
#include "reading/border_mask.h"
#include "reading/border_print.h"
#include "reading/letters.h"
#include "reading/luminance.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

constexpr reading::BorderGreys kBorder = {110, 190, 32};
// Told from paper that lies in deep shade.
constexpr reading::BorderGreys kDeepBorder = {40, 90, 16};
constexpr int kShortestSide = 24;
constexpr const char* kPrintInTheDark = "print lies in the dark at the edges";
constexpr int kLongestCropped = kLongestSide - 18;  // a margin is put around

std::string text_of(const Box& content) {
    return "content " + std::to_string(content.width) + " x " + std::to_string(content.height) +
           " pixels at " + std::to_string(content.x) + ", " + std::to_string(content.y);
}

// Ends inclusive.
Box box_between(int x0, int x1, int y0, int y1) {
    return {x0, y0, x1 - x0 + 1, y1 - y0 + 1};
}

// Calls paint(y, x, end) for every run of the mask.
template <typename Paint>
void for_runs(const Page& mask, Paint paint) {
    for (int y = 0; y < mask.height; ++y) {
        for (int x = next_pixel(mask, 0, y, true); x < mask.width;) {
            const int end = next_pixel(mask, x, y, false);
            paint(y, x, end);
            x = next_pixel(mask, end, y, true);
        }
    }
}

// Paints what the mask covers like the paper inside of it.
void paint_as_paper(Page& page, const Page& mask) {
    const int channels = page.kind == PageKind::kGrey ? 1 : 3;
    const auto bytes = [&](int y, int x) { return page.row(y) + std::ptrdiff_t{x} * channels; };
    // White is what the library looks for the paper behind.
    for_runs(mask, [&](int y, int x, int end) { std::fill(bytes(y, x), bytes(y, end), 255); });
    std::array<unsigned char, 3> paper{255};
    if (channels == 1) {
        cropgrey_get(paper.data(), page.bytes.get(), page.height, page.width, page.width);
    } else {
        cropcolor_get(paper.data(), page.bytes.get(), page.height, page.width, page.width);
    }
    for_runs(mask, [&](int y, int x, int end) {
        for (unsigned char* pixel = bytes(y, x); pixel < bytes(y, end); pixel += channels) {
            std::copy_n(paper.data(), channels, pixel);
        }
    });
}

// The smallest rectangle that holds all that the mask does not cover; none when it covers all.
std::optional<Box> box_outside(const Page& mask) {
    int x0 = mask.width, x1 = -1, y0 = -1, y1 = -1;
    for (int y = 0; y < mask.height; ++y) {
        const int first = next_pixel(mask, 0, y, false);
        if (first == mask.width) continue;
        int last = mask.width - 1;
        while (is_ink(mask, last, y)) --last;
        x0 = std::min(x0, first);
        x1 = std::max(x1, last);
        if (y0 < 0) y0 = y;
        y1 = y;
    }
    if (y1 < 0) return std::nullopt;
    return box_between(x0, x1, y0, y1);
}

// The mask's share of the dark pixels in the inner part of the page.
double dark_covered(const Page& grey, const Page& mask) {
    const Box inner = inner_part(grey);
    std::int64_t dark = 0, covered = 0;
    for_runs(mask, [&](int y, int x, int end) {
        if (y < inner.y || y >= inner.y + inner.height) return;
        const unsigned char* row = grey.row(y);
        const auto is_dark = [](unsigned char pixel) { return pixel < kBorder.dark; };
        const int first = std::max(x, inner.x), last = std::min(end, inner.x + inner.width);
        if (first < last) covered += std::count_if(row + first, row + last, is_dark);
    });
    if (covered == 0) return 0;
    for (int y = inner.y; y < inner.y + inner.height; ++y) {
        const unsigned char* row = grey.row(y);
        for (int x = inner.x; x < inner.x + inner.width; ++x) dark += row[x] < kBorder.dark ? 1 : 0;
    }
    return static_cast<double>(covered) / static_cast<double>(dark);
}

bool is_empty(const Page& mask) {
    return std::all_of(mask.bytes.get(), mask.bytes.get() + mask.size(),
                       [](unsigned char byte) { return byte == 0; });
}

// No print may go with the border, whatever share of the dark it is. What deep dark alone gives is
// tried when print lies in the shade.
Outcome crop_greys(PageWork& work, bool force) {
    const bool colour = work.page.kind == PageKind::kColour;
    const Page copy = colour ? reading::grey_of(work.page) : Page{};
    const Page& grey = colour ? copy : work.page;
    bool covers_all = false;
    for (const reading::BorderGreys& greys : {kBorder, kDeepBorder}) {
        const Page mask = reading::border_of_greys(grey, greys);
        if (is_empty(mask)) return {false, "no border"};
        const std::optional<Box> content = box_outside(mask);
        covers_all = !content;
        if (covers_all || (!force && reading::covers_print(mask, grey))) continue;
        const double dark = dark_covered(grey, mask);
        paint_as_paper(work.page, mask);
        if (work.kept) paint_as_paper(*work.kept, mask);
        work.content = content;
        const bool much = dark > kMostInk;
        return {
            true,
            text_of(*content) + (much ? ", " + percent(dark) + " of the dark inside the page" : ""),
            dark, much};
    }
    return {false, covers_all ? "all of the page would be border" : kPrintInTheDark};
}

// None without ink.
std::optional<Box> box_of_ink(const Page& page) {
    int x0 = page.width, x1 = -1, y0 = page.height, y1 = -1;
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* row = page.row(y);
        for (int i = 0; i < static_cast<int>(page.stride()); ++i) {
            if (row[i] == 0) continue;
            x0 = std::min(x0, i * 8 + std::countl_zero(row[i]));
            x1 = std::max(x1, i * 8 + 7 - std::countr_zero(row[i]));
            y0 = std::min(y0, y);
            y1 = y;
        }
    }
    if (y1 < 0) return std::nullopt;
    return box_between(x0, x1, y0, y1);
}

// The border becomes paper: black on a page whose ink is white.
void paint_bits(Page& bits, const Page& mask, bool negative) {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        const int border = mask.bytes[i], byte = bits.bytes[i];
        bits.bytes[i] = static_cast<unsigned char>(negative ? byte | border : byte & ~border);
    }
}

Outcome crop_bits(PageWork& work, bool force) {
    const Page mask = reading::border_of_bits(work.page);
    if (!force && !is_empty(mask) &&
        reading::covers_white_print(mask, work.page,
                                    reading::letter_height(work.letters, work.page))) {
        return {false, kPrintInTheDark, std::nullopt, true};
    }
    Outcome outcome =
        remove_ink(work.page, force ? Excess::kAllowed : Excess::kHeldBack, inner_part(work.page),
                   "border", [&](Page& changed) { paint_bits(changed, mask, false); });
    if (!outcome.done) return outcome;
    if (work.kept) paint_bits(*work.kept, mask, work.negative);
    const std::optional<Box> content = box_of_ink(work.page);
    if (!content) return {true, "no ink left inside the border"};
    work.content = content;
    outcome.why = text_of(*content);
    return outcome;
}

}  // namespace

Step border_step(const StepOptions& options) {
    const bool wanted = options.crop_border;
    const bool force = options.force;
    return {
        "crop", Effect::kTakesInk, [=](PageWork& work) -> Outcome {
            const Page& page = work.page;
            if (!wanted) return {false, kSwitchedOff};
            if (page.width < kShortestSide || page.height < kShortestSide) {
                return {false, "smaller than 24 pixels a side"};
            }
            if (page.width > kLongestCropped || page.height > kLongestCropped) {
                return {false, "larger than " + std::to_string(kLongestCropped) + " pixels a side"};
            }
            if (page.kind == PageKind::kBitonal) return crop_bits(work, force);
            return crop_greys(work, force);
        }};
}

}  // namespace tool::steps

// Dark borders of scanned pages. The page keeps its size: a border is painted over with the colour
// of the paper beside it, so that the binarization finds no edge where it was.
#include <vemoprepro/cleaning.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "reading/reading_grey.h"
#include "steps/grey_page.h"
#include "steps/ink_removal.h"
#include "steps/steps.h"

namespace tool {
namespace {

// Borders start at greys below `dark` on the page's edge and go on through greys below `light` that
// differ by less than `step`.
struct BorderGreys {
    int dark, light, step;
};
constexpr BorderGreys kBorder = {110, 190, 32};
// Told from paper that lies in deep shade.
constexpr BorderGreys kDeepBorder = {40, 90, 16};
constexpr int kShortestSide = 24;

// Ends inclusive.
struct Rectangle {
    int x0 = 0, x1 = 0, y0 = 0, y1 = 0;

    std::string text() const {
        return "content " + std::to_string(x1 - x0 + 1) + " x " + std::to_string(y1 - y0 + 1) +
               " pixels at " + std::to_string(x0) + ", " + std::to_string(y0);
    }
};

void record_content(PageRecord& record, const Rectangle& content) {
    record.content =
        Box{content.x0, content.y0, content.x1 - content.x0 + 1, content.y1 - content.y0 + 1};
}

Rectangle paint_border_white(Page& page, const BorderGreys& border) {
    Rectangle content;
    const bool grey = page.kind == PageKind::kGrey;
    if (cropimg(page.bytes.get(), grey ? PREPRO_CROP_GREY : PREPRO_CROP_RGB, page.height,
                page.width, static_cast<int>(page.stride()), border.dark, border.light, border.step,
                &content.x0, &content.x1, &content.y0, &content.y1) != 0) {
        throw std::bad_alloc();
    }
    return content;
}

void repaint_white_as_paper(Page& page) {
    if (page.kind == PageKind::kGrey) {
        unsigned char paper = 255;
        cropgrey_get(&paper, page.bytes.get(), page.height, page.width, page.width);
        cropgrey_replace(255, paper, page.bytes.get(), page.height, page.width, page.width);
        return;
    }
    std::array<unsigned char, 3> paper{};
    cropcolor_get(paper.data(), page.bytes.get(), page.height, page.width, page.width);
    const std::vector<unsigned char> from(static_cast<std::size_t>(page.width) * 3, 255);
    std::vector<unsigned char> to(from.size());
    for (std::size_t i = 0; i < to.size(); ++i) to[i] = paper[i % 3];
    cropcolor_replace(from.data(), to.data(), page.bytes.get(), page.height, page.width,
                      page.width);
}

// Share of the dark pixels in the inner part of the page that became white.
double dark_lost(const Page& before, const Page& after) {
    const int channels = before.kind == PageKind::kGrey ? 1 : 3;
    std::int64_t dark = 0, lost = 0;
    for (int y = before.height / 8; y < before.height - before.height / 8; ++y) {
        const unsigned char* old_row = before.row(y);
        const unsigned char* new_row = after.row(y);
        for (int x = before.width / 8; x < before.width - before.width / 8; ++x) {
            if (old_row[x * channels] >= kBorder.dark) continue;
            ++dark;
            lost += new_row[x * channels] == 255;
        }
    }
    return dark > 0 ? static_cast<double>(lost) / static_cast<double>(dark) : 0;
}

Outcome crop_greys(Page& page, bool force, PageRecord& record) {
    Page cropped = copy_of(page);
    const Rectangle content = paint_border_white(cropped, kBorder);
    if (content.x1 - content.x0 <= 1 && content.y1 - content.y0 <= 1) {
        return {false, "all of the page would be border"};
    }
    const double lost = dark_lost(page, cropped);
    if (!force && lost > kMostInk) {
        return {false,
                "would take " + percent(lost) + " of the ink inside the page (--force does it)",
                lost};
    }
    repaint_white_as_paper(cropped);
    page = std::move(cropped);
    record_content(record, content);
    return {true, content.text(), lost};
}

// Whether no more than the frame of 8 pixels, which is always painted, was taken for border.
bool only_frame(const Page& page, const Rectangle& content) {
    constexpr int kFrame = 9;
    return content.x0 < kFrame && content.y0 < kFrame &&
           content.x1 >= page.width - 1 - 2 * kFrame && content.y1 >= page.height - 1 - 2 * kFrame;
}

// For reading no print may go with the border, whatever share of the ink it is.
Outcome crop_around_print(Page& page, PageRecord& record) {
    for (const BorderGreys& border : {kBorder, kDeepBorder}) {
        Page cropped = copy_of(page);
        const Rectangle content = paint_border_white(cropped, border);
        const bool nothing_left = content.x1 - content.x0 <= 1 && content.y1 - content.y0 <= 1;
        if (only_frame(page, content)) return {false, "no border"};
        if (nothing_left || print_was_painted(page, cropped)) continue;
        repaint_white_as_paper(cropped);
        page = std::move(cropped);
        record_content(record, content);
        return {true, content.text()};
    }
    return {false, "print lies in the dark at the edges"};
}

// The box of the ink; false without ink.
bool box_of_ink(const Page& page, Rectangle& box) {
    box = {page.width, -1, page.height, -1};
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* row = page.row(y);
        for (int i = 0; i < static_cast<int>(page.stride()); ++i) {
            if (row[i] == 0) continue;
            const auto first = static_cast<int>(std::countl_zero(row[i]));
            const auto last = 7 - static_cast<int>(std::countr_zero(row[i]));
            box.x0 = std::min(box.x0, i * 8 + first);
            box.x1 = std::max(box.x1, i * 8 + last);
            box.y0 = std::min(box.y0, y);
            box.y1 = y;
        }
    }
    return box.y1 >= 0;
}

Outcome crop_bits(Page& page, bool force, PageRecord& record) {
    Outcome outcome = remove_ink(page, force, inner_part(page), "border", [](Page& changed) {
        const Page source = copy_of(changed);
        if (cropbmp(0, source.bytes.get(), source.height, source.width,
                    static_cast<int>(source.stride()), changed.bytes.get()) != 0) {
            throw std::bad_alloc();
        }
    });
    Rectangle content;
    if (!outcome.done) return outcome;
    if (!box_of_ink(page, content)) return {true, "no ink left inside the border"};
    record_content(record, content);
    outcome.why = content.text();
    return outcome;
}

}  // namespace

Step border_step(const Options& options, bool to_grey) {
    const bool wanted = options.crop_border;
    const bool force = options.force;
    const bool reading = options.for_reading;
    return {"crop", [=](Page& page, const PageFindings&, PageRecord& record) -> Outcome {
                if (!wanted) return {false, kSwitchedOff};
                if (page.width < kShortestSide || page.height < kShortestSide) {
                    return {false, "smaller than 24 pixels a side"};
                }
                if (page.kind == PageKind::kBitonal) return crop_bits(page, force, record);
                if (to_grey && page.kind == PageKind::kColour) page = grey_of(page);
                if (reading && page.kind == PageKind::kGrey) return crop_around_print(page, record);
                return crop_greys(page, force, record);
            }};
}

}  // namespace tool
